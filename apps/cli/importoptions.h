#pragma once

#include "geometry/defpolygon.h"
#include "importgeometryinterface.h"

#include <QByteArray>
#include <QCommandLineOption>
#include <QStringList>
#include <QVector>

class QCommandLineParser;

enum class Format { Mif, Dxf };

/// What an import needs to know; the defaults are those of the dialog at a first run.
struct ImportOptions {
    QString format; ///< "mif" or "dxf"; empty to go by the extension
    QString pointFileName; ///< separate file of points; empty for none
    bool searchPointDefs = true;
    QString pointPref = QStringLiteral("н");
    int pointStartNum = 1;
    bool searchObjectDefs = true;
    QString objectPref = QStringLiteral(":ЗУ");
    int objectStartNum = 1;
    QByteArray encoding = "Default"; ///< a codec name, or "Default" for that of the system

    /// The name of the codec in force.
    QByteArray codecName() const;
    Format formatOf(const QString& fileName) const;
};

/// The options of the command line that every command has.
QList<QCommandLineOption> importCommandLineOptions();

ImportOptions readImportOptions(const QCommandLineParser& parser);

/// The option --columns, for the commands that know of the host's catalogue.
QCommandLineOption columnsOption();

/// The columns of the catalogue that --columns names.
GeometryInfo readColumns(const QCommandLineParser& parser);

/// The names that --encoding takes, one a line.
QString encodingList();

/// The largest column that can be asked for; every row of the result has a cell for it.
constexpr int maxColumn = 1000;

/// The value of an option as a whole number between `least` and `most`.
int readNumber(const QCommandLineParser& parser, const QString& option, int least, int most);

/// A whole number between `least` and `most`; `what` says whose value it is.
int parseNumber(const QString& text, const QString& what, int least, int most);

/// What an import gave.
struct Import {
    QVector<DefPolygon> objects;
    QStringList messages; ///< what the reader reported, in order
};

/// Reads a file as the dialog does.
Import runImport(const QString& fileName, const ImportOptions& options);
