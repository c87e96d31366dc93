#pragma once

#include "geometry/defpolygon.h"
#include "import/formats.h"
#include "import/importoptions.h"
#include "importgeometryinterface.h"

#include <QByteArray>
#include <QCommandLineOption>
#include <QStringList>
#include <QVector>

class QCommandLineParser;

/// What the command line says of an import beside the file; the defaults are those of the dialog
/// at a first run.
struct ImportArguments {
    const Format* format = nullptr; ///< null to go by the suffix of the file's name
    ImportOptions options = ImportOptions::offered();

    /// The name of the codec in force.
    QByteArray codecName() const;
    /// The format of a file; it is a wrong use of the command when there is none.
    const Format& formatOf(const QString& fileName) const;
};

/// The options of the command line that every command has.
QList<QCommandLineOption> importCommandLineOptions();

ImportArguments readImportArguments(const QCommandLineParser& parser);

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
Import runImport(const QString& fileName, const ImportArguments& arguments);
