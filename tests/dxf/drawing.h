#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// The lines of the pairs written in `notation`: pairs parted by ", ", each one its group code, a
/// space and its value. "10 5, 1 ЗУ 1" are the lines "10", "5", "1", "ЗУ 1".
QStringList pairs(const char* notation);

/// The ten lines with which the drawings of the tests begin: an empty HEADER section and the start
/// of the ENTITIES section. The first pair of an entity then stands on lines 11 and 12.
QStringList drawingStart();

/// A drawing that breaks off after `entities`.
QStringList openDrawing(const char* entities);

/// A drawing whose ENTITIES section holds `entities`, properly ended.
QStringList drawing(const char* entities);

/// The same lines with the group codes right-aligned in three columns.
QStringList rightAligned(QStringList lines);

enum class LineEnd { Lf, CrLf };

/// The file of `lines`, each one ended, in the given codec.
QByteArray encoded(
    const QStringList& lines, const char* codecName = "UTF-8", LineEnd end = LineEnd::Lf);
