#pragma once

#include "support/records.h"
#include "support/statuslog.h"
#include "support/tempfiles.h"

/// What the caller of an import sets, but for the collection.
struct ImportOptions {
    bool searchPointDefs = false;
    QString pointPref = QStringLiteral("т");
    int pointStartNum = 1;
    bool searchObjectDefs = false;
    QString objectPref = QStringLiteral("об");
    int objectStartNum = 1;
    bool swapXY = false;
    QByteArray encoding = "UTF-8";
};

/// Sets the options and the files, given by name, of any importer.
template <typename Importer>
void prepare(Importer& importer, const ImportOptions& options, const TempFiles& files,
    const QString& objectFile, const QString& pointFile = {})
{
    importer.searchPointDefs = options.searchPointDefs;
    importer.pointPref = options.pointPref;
    importer.pointStartNum = options.pointStartNum;
    importer.searchObjectDefs = options.searchObjectDefs;
    importer.objectPref = options.objectPref;
    importer.objectStartNum = options.objectStartNum;
    importer.swapXY = options.swapXY;
    importer.setEncoding(options.encoding);
    importer.objectFileName = files.path(objectFile);
    if (!pointFile.isEmpty())
        importer.pointFileName = files.path(pointFile);
}

/// All that an import leaves, line by line: the result as "true" or "false", the messages with
/// bare file names behind "! ", and the objects.
template <typename Importer>
QStringList outcomeOf(Importer& importer, const TempFiles& files)
{
    QVector<DefPolygon> objects;
    importer.map = &objects;
    StatusLog log;
    QStringList outcome{ importer.importMap() ? QStringLiteral("true") : QStringLiteral("false") };
    for (QString message : log.take())
        outcome.append(
            QStringLiteral("! ") + message.remove(files.path(QString()) + QLatin1Char('/')));
    return outcome + describe(objects);
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
