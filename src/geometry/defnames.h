#pragma once

#include "geometry/designation.h"

#include <QHash>
#include <QString>

/// A designation for comparing with many others, ignoring case; from DefNames.
struct DefName {
    uint hash;
    const QString* text; ///< for a long one, the first that is the same
};

inline bool operator==(const DefName& a, const DefName& b)
{
    return a.text == b.text || (a.hash == b.hash && sameDef(*a.text, *b.text));
}

inline uint qHash(const DefName& name, uint seed = 0)
{
    return name.hash ^ seed;
}

/// Gives designations their names. One long text may be shared by thousands of vertices and
/// objects; it is gone through once for all of them. Names point into what they were made of.
class DefNames {
public:
    DefName nameOf(const QString& def);

private:
    QHash<const QChar*, DefName> m_ofData; ///< the long ones by where their characters are
    QHash<DefName, const QString*> m_first;
};
