#pragma once

#include "packedinput.h"
#include "readback.h"
#include "require.h"
#include "support/importing.h"

#include <QFile>
#include <QTextCodec>
#include <QTextStream>

/// Whether a file holds the word nan, in which case it may hold an undefined coordinate, among
/// which the order of the literal writings is open.
inline bool mayHoldUndefined(const QString& fileName, const QByteArray& encoding)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QTextStream in(&file);
    if (QTextCodec* codec = QTextCodec::codecForName(encoding))
        in.setCodec(codec);
    return in.readAll().contains(QLatin1String("nan"), Qt::CaseInsensitive);
}

inline int vertexCount(const QVector<DefPolygon>& objects)
{
    int count = 0;
    for (const DefPolygon& object : objects) {
        for (const QVector<DefPoint>& contour : object.contours)
            count += contour.size();
    }
    return count;
}

/// Imports files, requires of the outcome what holds for every input and, where it is defined,
/// that the literal importer's is the same. `objectText` is what the object file holds.
template <typename Importer, typename Literal>
void requireSoundImport(const ImportOptions& options, const QString& objectFile,
    const QString& pointFile, const QByteArray& objectText)
{
    Importer importer;
    prepare(importer, options, objectFile, pointFile);
    ImportOutcome outcome = run(importer);
    // A line of a MIF file may hold both vertices of an object.
    require(vertexCount(outcome.objects) <= objectText.count('\n') + 1 + outcome.objects.size(),
        "vertices do not outnumber lines");
    require(outcome.result || !outcome.messages.isEmpty(), "a failure is told");
    requireReadBack(outcome.objects);

    if (mayHoldUndefined(objectFile, options.encoding)
        || mayHoldUndefined(pointFile, options.encoding))
        return;
    Literal literal;
    prepare(literal, options, objectFile, pointFile);
    const ImportOutcome expected = run(literal);
    require(outcome.result == expected.result, "the literal import ends the same way");
    require(outcome.messages == expected.messages, "the literal import says the same");
    require(sameObjects(outcome.objects, expected.objects), "the literal import builds the same");
    require(importer.pointStartNum == literal.pointStartNum
            && importer.objectStartNum == literal.objectStartNum,
        "the literal import counts the same");
}
