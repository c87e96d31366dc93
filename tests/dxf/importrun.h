#pragma once

#include "import/dxfimport.h"

#include <QTemporaryDir>

/// What the user sets for an import, apart from the files.
struct ImportOptions {
    bool searchPointDefs = false;
    bool searchObjectDefs = false;
    bool swapXY = false;
    QString pointPref;
    int pointStartNum = 1;
    QString objectPref;
    int objectStartNum = 1;
    QByteArray encoding = "UTF-8";
};

/// What an import leaves behind.
struct ImportOutcome {
    bool result = false;
    QStringList messages;
    QVector<DefPolygon> objects;
};

/// An importer whose inner steps a test can call one by one.
class OpenDxfImport : public DxfImport {
public:
    using DxfImport::checkDxfFile;
    using DxfImport::code;
    using DxfImport::decodeText;
    using DxfImport::filterObjectDefs;
    using DxfImport::loadPoints;
    using DxfImport::points;
    using DxfImport::pointsFromPolygons;
    using DxfImport::readCodeValue;
    using DxfImport::texts;
    using DxfImport::unread;
    using DxfImport::value;

    /// Opens a file as the driver does for a pass.
    bool open(const QString& fileName)
    {
        in.close();
        return in.open(fileName, codec);
    }
    int lineNum() const { return in.lineNum(); }
};

/// A folder for the files of one test, gone when the test is over.
class TestFolder {
public:
    /// Writes a file and returns its full name.
    QString write(const QString& name, const QByteArray& content) const;
    QString path(const QString& name) const { return m_dir.filePath(name); }

private:
    QTemporaryDir m_dir;
};

/// Runs the importer over files.
ImportOutcome importFiles(
    const ImportOptions& options, const QString& objectFile, const QString& pointFile = QString());

/// Runs the importer over a drawing, in a file of its own.
ImportOutcome importDrawing(const ImportOptions& options, const QByteArray& drawing);
ImportOutcome importDrawing(const ImportOptions& options, const QStringList& lines);

/// Runs the importer over an object drawing and a separate drawing of points.
ImportOutcome importDrawings(
    const ImportOptions& options, const QByteArray& objectDrawing, const QByteArray& pointDrawing);

/// The messages that are shown while it lives.
class MessageCollector {
public:
    MessageCollector();
    ~MessageCollector();
    MessageCollector(const MessageCollector&) = delete;
    MessageCollector& operator=(const MessageCollector&) = delete;

    QStringList messages() const;
};

/// A text with its nullness: <null> stands for a null one.
QString describe(const QString& def);
/// A point as "def(x,y)", to the last digit of its coordinates.
QString describe(const DefPoint& point);
/// An object as "def: [a(0,0) b(1,0)] [...]", one pair of brackets a contour.
QString describe(const DefPolygon& object);

/// The descriptions of points or of objects in order, parted by "; ".
template <typename Record>
QString describeAll(const QVector<Record>& records)
{
    QStringList all;
    for (const Record& record : records)
        all << describe(record);
    return all.join(QLatin1String("; "));
}

QString describeAll(const PointCatalogue& points);

/// The message of a failed read, with its line number.
QString readError(int line);
/// The message for a file that is refused.
QString formatError(const QString& fileName);
