#pragma once

#include "import/importoptions.h"
#include "support/records.h"
#include "support/statuslog.h"
#include "support/tempfiles.h"

/// Options under which new points and objects are 1, 2 and so on, and nothing is searched.
inline ImportOptions numbered()
{
    ImportOptions options;
    options.pointStartNum = 1;
    options.objectStartNum = 1;
    options.encoding = "UTF-8";
    return options;
}

/// Options under which new points are т1, т2 and so on, and new objects об1.
inline ImportOptions prefixed()
{
    ImportOptions options = numbered();
    options.pointPref = QStringLiteral("т");
    options.objectPref = QStringLiteral("об");
    return options;
}

/// What an import leaves behind.
struct ImportOutcome {
    bool result = false;
    QStringList messages;
    QVector<DefPolygon> objects;
};

/// Sets the options and the full names of the files of any importer.
template <typename Importer>
void prepare(Importer& importer, const ImportOptions& options, const QString& objectFile,
    const QString& pointFile = {})
{
    static_cast<ImportOptions&>(importer) = options;
    importer.setEncoding(options.encoding);
    importer.objectFileName = objectFile;
    importer.pointFileName = pointFile;
}

/// Runs an importer that is prepared.
template <typename Importer>
ImportOutcome run(Importer& importer)
{
    ImportOutcome outcome;
    importer.map = &outcome.objects;
    const StatusLog log;
    outcome.result = importer.importMap();
    outcome.messages = log.messages();
    return outcome;
}

/// Runs an importer of its own over files.
template <typename Importer>
ImportOutcome importFiles(
    const ImportOptions& options, const QString& objectFile, const QString& pointFile = {})
{
    Importer importer;
    prepare(importer, options, objectFile, pointFile);
    return run(importer);
}

/// The same as prepare(), with files that are given by their names in the folder.
template <typename Importer>
void prepare(Importer& importer, const ImportOptions& options, const TempFiles& files,
    const QString& objectFile, const QString& pointFile = {})
{
    prepare(importer, options, files.path(objectFile),
        pointFile.isEmpty() ? QString() : files.path(pointFile));
}

/// All that an import leaves, line by line: the result as "true" or "false", the messages with
/// bare file names behind "! ", and the objects.
template <typename Importer>
QStringList outcomeOf(Importer& importer, const TempFiles& files)
{
    const ImportOutcome outcome = run(importer);
    QStringList texts{ outcome.result ? QStringLiteral("true") : QStringLiteral("false") };
    for (QString message : outcome.messages)
        texts.append(
            QStringLiteral("! ") + message.remove(files.path(QString()) + QLatin1Char('/')));
    return texts + describe(outcome.objects);
}

/// What an importer of its own leaves of the given files.
template <typename Importer>
QStringList outcomeOf(const ImportOptions& options, const TempFiles& files,
    const QString& objectFile, const QString& pointFile = {})
{
    Importer importer;
    prepare(importer, options, files, objectFile, pointFile);
    return outcomeOf(importer, files);
}
