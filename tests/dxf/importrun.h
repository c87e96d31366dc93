#pragma once

#include "import/dxfimport.h"
#include "support/importing.h"

/// An importer whose inner steps a test can call one by one.
class OpenDxfImport : public DxfImport {
public:
    using DxfImport::checkDxfFile;
    using DxfImport::codec;
    using DxfImport::labels;
    using DxfImport::loadPoints;
    using DxfImport::pairs;
    using DxfImport::points;
    using DxfImport::pointsFromPolygons;

    /// Opens a file as the driver does for a pass.
    bool open(const QString& fileName)
    {
        in.close();
        return in.open(fileName, codec);
    }
    int lineNum() const { return in.lineNum(); }
};

/// Runs the importer over a drawing, in a file of its own.
ImportOutcome importDrawing(const ImportOptions& options, const QByteArray& drawing);
ImportOutcome importDrawing(const ImportOptions& options, const QStringList& lines);

/// Runs the importer over an object drawing and a separate drawing of points.
ImportOutcome importDrawings(
    const ImportOptions& options, const QByteArray& objectDrawing, const QByteArray& pointDrawing);

/// The points of a catalogue.
QVector<DefPoint> pointsOf(const PointCatalogue& catalogue);

/// The message of a failed read, with its line number.
QString readError(int line);
/// The message for a file that is refused.
QString formatError(const QString& fileName);
