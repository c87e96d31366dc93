#include "geometry/conflicts.h"

#include "geometry/defnames.h"

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

std::vector<Bearer> bearersOf(const DefPolygon& polygon)
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
    return bearers;
}

/// An object with a designation.
struct ObjectName {
    DefName name;
    int object; ///< its index
};

std::vector<ObjectName> objectNames(const QVector<DefPolygon>& objects)
{
    DefNames names;
    std::vector<ObjectName> bearers;
    bearers.reserve(static_cast<size_t>(objects.size()));
    for (int i = 0; i < objects.size(); ++i) {
        const QString& def = objects.at(i).def;
        if (!def.isEmpty())
            bearers.push_back({ names.nameOf(def), i });
    }
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
    std::vector<ObjectName> bearers = objectNames(objects);
    forEachName(bearers, [&](auto begin, auto end) {
        const bool isShared = end - begin > 1;
        std::for_each(
            begin, end, [&](const ObjectName& bearer) { result.setBit(bearer.object, isShared); });
    });
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
    std::vector<Bearer> bearers = bearersOf(polygon);
    forEachName(bearers, [&](auto begin, auto end) { markConflicts(result, begin, end); });
    return result;
}
