#include "geometry/conflicts.h"

#include "geometry/designation.h"

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
    QHash<DefKey, int> firstBearer;
    firstBearer.reserve(objects.size());
    for (int i = 0; i < objects.size(); ++i) {
        const DefKey key{ objects.at(i).def };
        if (key.def.isEmpty())
            continue;
        const auto first = firstBearer.constFind(key);
        if (first == firstBearer.constEnd()) {
            firstBearer.insert(key, i);
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
    const int count = vertexCount(polygon);
    std::vector<Spread> spreads;
    std::vector<size_t> spreadOfVertex;
    spreadOfVertex.reserve(static_cast<size_t>(count));
    QHash<DefKey, size_t> spreadOfDef;
    spreadOfDef.reserve(count);

    for (const QVector<DefPoint>& contour : polygon.contours) {
        for (const DefPoint& point : contour) {
            const auto known = spreadOfDef.constFind(DefKey{ point.def });
            const size_t spread = known != spreadOfDef.constEnd() ? *known : spreads.size();
            if (spread == spreads.size()) {
                spreads.emplace_back();
                spreadOfDef.insert(DefKey{ point.def }, spread);
            }
            spreads[spread].add(point);
            spreadOfVertex.push_back(spread);
        }
    }

    QBitArray result(count);
    int vertex = 0;
    for (const QVector<DefPoint>& contour : polygon.contours) {
        for (const DefPoint& point : contour) {
            const Spread& spread = spreads[spreadOfVertex[static_cast<size_t>(vertex)]];
            result.setBit(vertex, !point.def.isEmpty() && spread.conflictsWith(point));
            ++vertex;
        }
    }
    return result;
}
