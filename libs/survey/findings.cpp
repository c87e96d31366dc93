#include "survey/findings.h"

#include "geometry/conflicts.h"
#include "geometry/designation.h"

#include <QHash>

#include <algorithm>

namespace {

bool isBefore(const QPointF& a, const QPointF& b)
{
    return a.x() < b.x() || (a.x() == b.x() && a.y() < b.y());
}

/// Each place once, by exact coordinates.
void makeUnique(QVector<QPointF>& places)
{
    std::sort(places.begin(), places.end(), isBefore);
    const auto isSame = [](const QPointF& a, const QPointF& b) {
        return a.x() == b.x() && a.y() == b.y();
    };
    places.erase(std::unique(places.begin(), places.end(), isSame), places.end());
}

void findConflictsOf(int object, const DefPolygon& polygon, QVector<PointConflict>& found)
{
    const QBitArray conflicting = conflictingPoints(polygon);
    if (conflicting.count(true) == 0)
        return;
    const int first = found.size();
    QHash<DefKey, int> indices;
    int vertexIndex = 0;
    for (const QVector<DefPoint>& contour : polygon.contours) {
        for (const DefPoint& vertex : contour) {
            if (!conflicting.testBit(vertexIndex++))
                continue;
            const auto known = indices.constFind(DefKey{ vertex.def });
            const int index = known == indices.cend() ? found.size() : *known;
            if (known == indices.cend()) {
                indices.insert(DefKey{ vertex.def }, index);
                found.append({ object, vertex.def, {} });
            }
            found[index].places.append(QPointF(vertex.x, vertex.y));
        }
    }
    for (int i = first; i < found.size(); ++i)
        makeUnique(found[i].places);
}

/// The vertices of a contour without the one that closes it.
int openSize(const QVector<DefPoint>& contour)
{
    const bool closed = contour.size() > 1 && coincide(contour.first(), contour.last());
    return contour.size() - (closed ? 1 : 0);
}

bool isBetween(double value, double least, double most)
{
    return value >= least && value < most;
}

/// Whether `easting` beside `northing` bears the number of a zone.
bool hasZone(double easting, double northing)
{
    constexpr double million = 1e6;
    return (isBetween(easting, million, 4 * million) && isBetween(northing, 1e5, million))
        || (isBetween(easting, 10 * million, 33 * million)
            && isBetween(northing, 4 * million, 10 * million));
}

bool isEastingFirst(const DefPoint& vertex)
{
    return hasZone(vertex.x, vertex.y)
        || (isBetween(vertex.x, 1e5, 1e6) && isBetween(vertex.y, 4e6, 1e7));
}

} // namespace

QVector<PointConflict> findPointConflicts(const QVector<DefPolygon>& objects)
{
    QVector<PointConflict> found;
    for (int i = 0; i < objects.size(); ++i)
        findConflictsOf(i, objects.at(i), found);
    return found;
}

QVector<DuplicateDef> findDuplicateDefs(const QVector<DefPolygon>& objects)
{
    QVector<DuplicateDef> found;
    const QBitArray duplicates = duplicateDefs(objects);
    QHash<DefKey, int> indices;
    for (int i = 0; i < objects.size(); ++i) {
        if (!duplicates.testBit(i))
            continue;
        const QString& def = objects.at(i).def;
        const auto known = indices.constFind(DefKey{ def });
        if (known != indices.cend()) {
            found[*known].objects.append(i);
            continue;
        }
        indices.insert(DefKey{ def }, found.size());
        found.append({ def, { i } });
    }
    return found;
}

QVector<IncompleteObject> findIncompleteObjects(
    const QVector<DefPolygon>& objects, const QVector<Shape>& shapes)
{
    QVector<IncompleteObject> found;
    for (int i = 0; i < objects.size(); ++i) {
        const int needed = static_cast<int>(shapes.value(i, Shape::Line));
        const auto& contours = objects.at(i).contours;
        if (contours.isEmpty())
            found.append({ i, -1, 0, needed });
        for (int contour = 0; contour < contours.size(); ++contour) {
            const bool isArea = needed == static_cast<int>(Shape::Area);
            const int vertices =
                isArea ? openSize(contours.at(contour)) : contours.at(contour).size();
            if (vertices < needed)
                found.append({ i, contour, vertices, needed });
        }
    }
    return found;
}

AxisOrder guessAxisOrder(const QVector<DefPolygon>& objects)
{
    qint64 total = 0;
    qint64 eastingFirst = 0;
    qint64 northingFirst = 0;
    for (const DefPolygon& object : objects) {
        for (const QVector<DefPoint>& contour : object.contours) {
            for (const DefPoint& vertex : contour) {
                ++total;
                eastingFirst += isEastingFirst(vertex) ? 1 : 0;
                northingFirst += hasZone(vertex.y, vertex.x) ? 1 : 0;
            }
        }
    }
    const auto isMost = [total](qint64 count) { return total > 0 && count * 10 >= total * 9; };
    if (isMost(eastingFirst))
        return AxisOrder::EastingFirst;
    return isMost(northingFirst) ? AxisOrder::NorthingFirst : AxisOrder::Unknown;
}
