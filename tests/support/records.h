#pragma once

#include "geometry/defpolygon.h"

#include <QMetaType>
#include <QStringList>
#include <QVector>

// For columns of test data.
Q_DECLARE_METATYPE(DefPoint)

/// A text with its nullness: <null> stands for a null one.
QString describe(const QString& def);

/// A coordinate as short text that stands for this very double, the sign of zero included.
QString describe(double coordinate);

/// A point as "def x y".
QString describe(const DefPoint& point);

/// An object as "def [def x y; def x y] [def x y]", with brackets around each contour.
QString describe(const DefPolygon& object);

/// Points or objects, one text each.
template <typename Record>
QStringList describe(const QVector<Record>& records)
{
    QStringList result;
    for (const Record& record : records)
        result.append(describe(record));
    return result;
}

/// Points or objects in one text, parted by "; ".
template <typename Record>
QString describeAll(const QVector<Record>& records)
{
    return describe(records).join(QStringLiteral("; "));
}

/// Whether the objects are the same to the last bit of a coordinate and to the nullness of a text.
bool sameObjects(const QVector<DefPolygon>& a, const QVector<DefPolygon>& b);

/// Objects without contours that bear the given designations.
QVector<DefPolygon> objectsNamed(const QStringList& defs);

/// The designations of objects in their order.
QStringList defsOf(const QVector<DefPolygon>& objects);

/// The lines of a UTF-8 text.
QStringList lines(const char* text);
