#include "geometry/conflicts.h"

#include "geometry/defnames.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

/// The extent of all vertices that share a designation.
struct Spread {
    int count = 0;
    bool finite = true;
    double minX = std::numeric_limits<double>::infinity();
    double maxX = -std::numeric_limits<double>::infinity();
    double minY = std::numeric_limits<double>::infinity();
    double maxY = -std::numeric_limits<double>::infinity();

    void add(const DefPoint& point)
    {
        ++count;
        finite = finite && std::isfinite(point.x) && std::isfinite(point.y);
        minX = std::min(minX, point.x);
        maxX = std::max(maxX, point.x);
        minY = std::min(minY, point.y);
        maxY = std::max(maxY, point.y);
    }

    /// Whether one of the other vertices is out of tolerance from `point`, itself one of them.
    bool conflictsWith(const DefPoint& point) const
    {
        if (count < 2)
            return false;
        // An infinite or undefined coordinate differs from every other, its own like included.
        if (!finite)
            return true;
        return std::max(point.x - minX, maxX - point.x) > DefPoint::epsilon
            || std::max(point.y - minY, maxY - point.y) > DefPoint::epsilon;
    }
};

int vertexCount(const DefPolygon& polygon)
{
    int count = 0;
    for (const QVector<DefPoint>& contour : polygon.contours)
        count += contour.size();
    return count;
}

/// A vertex with a designation.
struct Bearer {
    DefName name;
    int vertex; ///< its place among those of all contours
    const DefPoint* point;
};

/// The vertices with a designation, those with the same one near each other. A hash table of them
/// would take several times the room.
std::vector<Bearer> sortedBearers(const DefPolygon& polygon)
{
    DefNames names;
    std::vector<Bearer> bearers;
    bearers.reserve(static_cast<size_t>(vertexCount(polygon)));
    int vertex = 0;
    for (const QVector<DefPoint>& contour : polygon.contours) {
        for (const DefPoint& point : contour) {
            if (!point.def.isEmpty())
                bearers.push_back({ names.nameOf(point.def), vertex, &point });
            ++vertex;
        }
    }
    std::sort(bearers.begin(), bearers.end(),
        [](const Bearer& a, const Bearer& b) { return a.name.hash < b.name.hash; });
    return bearers;
}

using BearerIterator = std::vector<Bearer>::iterator;

/// Marks what conflicts among the vertices of one designation.
void markConflicts(QBitArray& marks, BearerIterator begin, BearerIterator end)
{
    Spread spread;
    std::for_each(begin, end, [&](const Bearer& bearer) { spread.add(*bearer.point); });
    std::for_each(begin, end, [&](const Bearer& bearer) {
        marks.setBit(bearer.vertex, spread.conflictsWith(*bearer.point));
    });
}

/// Marks the objects with this designation, if there are several, and only then.
void markBearers(QBitArray& marks, const QVector<DefPolygon>& objects, const QString& def)
{
    int first = -1;
    for (int i = 0; i < objects.size(); ++i) {
        const QString& other = objects.at(i).def;
        // Case never changes the length, and comparing texts costs most.
        if (other.size() != def.size() || !sameDef(other, def))
            continue;
        marks.setBit(i, first >= 0);
        if (first < 0)
            first = i;
        else
            marks.setBit(first);
    }
}

} // namespace

QBitArray duplicateDefs(const QVector<DefPolygon>& objects)
{
    QBitArray result(objects.size());
    DefNames names;
    QHash<DefName, int> firstBearer;
    firstBearer.reserve(objects.size());
    for (int i = 0; i < objects.size(); ++i) {
        const QString& def = objects.at(i).def;
        if (def.isEmpty())
            continue;
        const DefName name = names.nameOf(def);
        const auto first = firstBearer.constFind(name);
        if (first == firstBearer.constEnd()) {
            firstBearer.insert(name, i);
            continue;
        }
        result.setBit(*first);
        result.setBit(i);
    }
    return result;
}

void updateDuplicateDefs(
    QBitArray& marks, const QVector<DefPolygon>& objects, int renamed, const QString& before)
{
    const QString& def = objects.at(renamed).def;
    marks.clearBit(renamed);
    if (!before.isEmpty())
        markBearers(marks, objects, before);
    if (!def.isEmpty())
        markBearers(marks, objects, def);
}

QBitArray conflictingPoints(const DefPolygon& polygon)
{
    QBitArray result(vertexCount(polygon));
    std::vector<Bearer> bearers = sortedBearers(polygon);
    for (auto it = bearers.begin(); it != bearers.end();) {
        const auto otherHash = std::find_if(it, bearers.end(),
            [it](const Bearer& bearer) { return bearer.name.hash != it->name.hash; });
        // Hardly ever do several designations have one hash.
        while (it != otherHash) {
            const DefName name = it->name;
            const auto end = std::partition(
                it, otherHash, [name](const Bearer& bearer) { return bearer.name == name; });
            markConflicts(result, it, end);
            it = end;
        }
    }
    return result;
}
