#include "geometry/conflicts.h"

#include "geometry/designation.h"

#include <QHash>
#include <QRandomGenerator>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace {

/// The extent of all vertices that share a designation.
struct Spread {
    const QString* def = nullptr;
    uint hash = 0; ///< of the designation
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

/// Finds the spread of a designation. A QHash would need memory for each of them.
class SpreadTable {
public:
    /// For so many designations at most.
    explicit SpreadTable(int most)
    {
        size_t size = 2;
        while (size < 2 * static_cast<size_t>(most))
            size *= 2;
        m_slots.assign(size, -1);
    }

    /// The index of the designation's spread, which is appended where there is none.
    int spreadOf(const QString& def, std::vector<Spread>& spreads)
    {
        // A seed of its own: nobody can write a file whose designations collide.
        static const uint seed = QRandomGenerator::system()->generate();
        const uint hash = hashOfDef(def, seed);
        const size_t mask = m_slots.size() - 1;
        size_t slot = hash & mask;
        for (; m_slots[slot] >= 0; slot = (slot + 1) & mask) {
            const Spread& spread = spreads[static_cast<size_t>(m_slots[slot])];
            if (spread.hash == hash && (spread.def->isSharedWith(def) || sameDef(*spread.def, def)))
                return m_slots[slot];
        }
        m_slots[slot] = static_cast<int>(spreads.size());
        spreads.emplace_back();
        spreads.back().def = &def;
        spreads.back().hash = hash;
        return m_slots[slot];
    }

private:
    std::vector<int> m_slots; ///< indices of spreads; -1 where there is none
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
    std::vector<int> spreadOfVertex;
    spreads.reserve(static_cast<size_t>(count));
    spreadOfVertex.reserve(static_cast<size_t>(count));
    SpreadTable table(count);
    for (const QVector<DefPoint>& contour : polygon.contours) {
        for (const DefPoint& point : contour) {
            const int spread = table.spreadOf(point.def, spreads);
            spreads[static_cast<size_t>(spread)].add(point);
            spreadOfVertex.push_back(spread);
        }
    }

    QBitArray result(count);
    int vertex = 0;
    for (const QVector<DefPoint>& contour : polygon.contours) {
        for (const DefPoint& point : contour) {
            const int index = spreadOfVertex[static_cast<size_t>(vertex)];
            const Spread& spread = spreads[static_cast<size_t>(index)];
            result.setBit(vertex, !point.def.isEmpty() && spread.conflictsWith(point));
            ++vertex;
        }
    }
    return result;
}
