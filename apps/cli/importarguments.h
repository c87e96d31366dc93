#pragma once

#include "importgeometryinterface.h"
#include "importrun/importrun.h"

#include <QCommandLineOption>
#include <QList>
#include <QVector>

class QCommandLineParser;

/// A file of the command line and how it is imported.
struct ImportTask {
    const Format* format; ///< never null
    ImportOptions options; ///< the encoding may be "auto" until it is resolved
    QString subfolder; ///< where a folder was named: the place of the file below it

    const QString& fileName() const { return options.objectFileName; }
};

/// A file of the command line.
struct InputFile {
    QString name;
    const Format* format; ///< never null
    QString subfolder; ///< where a folder was named: the file's place below it, "." in it itself
};

/// The options that say which files are read; importCommandLineOptions() has them, too.
QList<QCommandLineOption> inputFileOptions();

/// The options that say which files are imported, and how.
QList<QCommandLineOption> importCommandLineOptions();

/// The files of the command line, and of the folders on it, in order. `formatOfOther`, which may be
/// null, tells the format of a file that is none of those known.
QVector<InputFile> readInputFiles(
    const QCommandLineParser& parser, const Format* (*formatOfOther)(const QString& fileName));

/// The same, each with what the options say of all of them.
QVector<ImportTask> readImportTasks(const QCommandLineParser& parser,
    const Format* (*formatOfOther)(const QString& fileName) = nullptr);

/// Has the files read in one thread each where the user asks for one job; whether that is so. Of
/// commands that have the option.
bool keepToOneJob(const QCommandLineParser& parser, QVector<ImportTask>& tasks);

/// The option --columns, for the commands that know of the host's catalogue.
QCommandLineOption columnsOption();

/// The columns of the catalogue that --columns names.
GeometryInfo readColumns(const QCommandLineParser& parser);

/// The codec of this name, that of the system for the default, or "auto". Fails for an unknown
/// name.
QByteArray encodingOf(const QString& text);

/// The names that --encoding takes, one a line.
QString encodingList();

/// The largest column that can be asked for; every row of the result has a cell for it.
constexpr int maxColumn = 1000;

/// The value of an option as a whole number between `least` and `most`.
int readNumber(const QCommandLineParser& parser, const QString& option, int least, int most);

/// A whole number between `least` and `most`; `what` says whose value it is.
int parseNumber(const QString& text, const QString& what, int least, int most);
