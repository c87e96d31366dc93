#pragma once

#include "geometry/designation.h"

#include <QHash>
#include <QStringView>

#include <algorithm>
#include <vector>

/// A designation for comparing with many others, ignoring case; from DefNames.
struct DefName {
    uint hash;
    int size;
    const QChar* data; ///< for a long one, of the first that is the same

    QStringView text() const { return QStringView(data, size); }
};

inline bool operator==(const DefName& a, const DefName& b)
{
    // Case never changes the length.
    if (a.size != b.size)
        return false;
    return a.data == b.data || (a.hash == b.hash && sameDef(a.text(), b.text()));
}

inline uint qHash(const DefName& name, uint seed = 0)
{
    return name.hash ^ seed;
}

/// Gives designations their names. One long text may be shared by thousands of vertices and
/// objects; it is gone through once for all of them. Names point into what they were made of.
class DefNames {
public:
    DefName nameOf(QStringView def);

private:
    QHash<const QChar*, DefName> m_ofData; ///< the long ones by where their characters are
    QHash<DefName, const QChar*> m_first;
};

/// Calls `visit` with the range of those that have one name, for each name among the bearers; they
/// have a member `name`, and are put in another order. A hash table would take several times the
/// room and the time.
template <typename Bearer, typename Visit>
void forEachName(std::vector<Bearer>& bearers, Visit visit)
{
    std::sort(bearers.begin(), bearers.end(),
        [](const Bearer& a, const Bearer& b) { return a.name.hash < b.name.hash; });
    for (auto it = bearers.begin(); it != bearers.end();) {
        const auto otherHash = std::find_if(it, bearers.end(),
            [it](const Bearer& bearer) { return bearer.name.hash != it->name.hash; });
        // Hardly ever do several designations have one hash.
        while (it != otherHash) {
            const DefName name = it->name;
            const auto end = std::partition(
                it, otherHash, [name](const Bearer& bearer) { return bearer.name == name; });
            visit(it, end);
            it = end;
        }
    }
}
