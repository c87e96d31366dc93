#pragma once

#include "geometry/defpolygon.h"

#include <QString>
#include <QStringView>
#include <QVector>

/// Splits a designation into a text prefix and its trailing decimal number.
///
/// "AB12" gives "AB" and 12. A designation that does not end in an ASCII digit gives itself and
/// -1; a number too long for an int becomes 0. A line feed at the very end counts as the end, and
/// a designation with a line feed elsewhere has no number.
void splitDef(const QString& def, QString& prefix, int& number);

/// An automatic designation: the prefix followed by the number in plain decimal.
QString numberedDef(const QString& prefix, int number);

/// Sorts objects by designation: prefixes ignoring case, then trailing numbers by value. The order
/// of objects with equal keys is unspecified.
void sortObjects(QVector<DefPolygon>& objects);

/// Whether two designations are the same, ignoring case.
inline bool sameDef(QStringView a, QStringView b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

/// A designation as a hash key that ignores case in the same way as sameDef.
struct DefKey {
    QStringView def;
};

inline bool operator==(const DefKey& a, const DefKey& b)
{
    return sameDef(a.def, b.def);
}

/// A hash of equal value for designations that sameDef holds for equal.
uint qHash(const DefKey& key, uint seed = 0);
