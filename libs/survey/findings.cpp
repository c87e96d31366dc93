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

/// Adds what one object has; lists no more than `most` in all.
void addConflictsOf(
    const ObjectName& object, const DefPolygon& polygon, int most, Findings<PointConflict>& found)
{
    const QBitArray conflicting = conflictingPoints(polygon);
    if (conflicting.count(true) == 0)
        return;
    struct Conflict {
        QString def;
        QVector<QPointF> places;
    };
    QVector<Conflict> conflicts;
    QHash<DefKey, int> indices;
    int vertexIndex = 0;
    for (const QVector<DefPoint>& contour : polygon.contours) {
        for (const DefPoint& vertex : contour) {
            if (!conflicting.testBit(vertexIndex++))
                continue;
            const auto known = indices.constFind(DefKey{ vertex.def });
            const int index = known == indices.cend() ? conflicts.size() : *known;
            if (known == indices.cend()) {
                indices.insert(DefKey{ vertex.def }, index);
                conflicts.append({ vertex.def, {} });
            }
            conflicts[index].places.append(QPointF(vertex.x, vertex.y));
        }
    }
    found.total += conflicts.size();
    for (int i = 0; i < conflicts.size() && found.listed.size() < most; ++i) {
        QVector<QPointF>& places = conflicts[i].places;
        makeUnique(places);
        found.listed.append(
            { object, shortened(conflicts.at(i).def), { places.mid(0, most), places.size() } });
    }
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

QString shortened(const QString& def)
{
    constexpr int most = 200;
    return def.size() <= most ? def : def.left(most) + QChar(0x2026);
}

Findings<PointConflict> findPointConflicts(const QVector<DefPolygon>& objects, int most)
{
    Findings<PointConflict> found;
    for (int i = 0; i < objects.size(); ++i)
        addConflictsOf({ i, shortened(objects.at(i).def) }, objects.at(i), most, found);
    return found;
}

Findings<DuplicateDef> findDuplicateDefs(const QVector<DefPolygon>& objects, int most)
{
    constexpr int unlisted = -1;
    Findings<DuplicateDef> found;
    const QBitArray duplicates = duplicateDefs(objects);
    QHash<DefKey, int> indices;
    for (int i = 0; i < objects.size(); ++i) {
        if (!duplicates.testBit(i))
            continue;
        const QString& def = objects.at(i).def;
        const auto known = indices.constFind(DefKey{ def });
        int index = unlisted;
        if (known != indices.cend()) {
            index = *known;
        } else {
            ++found.total;
            if (found.listed.size() < most) {
                index = found.listed.size();
                found.listed.append({ shortened(def), {} });
            }
            indices.insert(DefKey{ def }, index);
        }
        if (index == unlisted)
            continue;
        Findings<int>& bearers = found.listed[index].objects;
        ++bearers.total;
        if (bearers.listed.size() < most)
            bearers.listed.append(i);
    }
    return found;
}

Findings<IncompleteObject> findIncompleteObjects(
    const QVector<DefPolygon>& objects, const QVector<Shape>& shapes, int most)
{
    Findings<IncompleteObject> found;
    for (int i = 0; i < objects.size(); ++i) {
        const int needed = static_cast<int>(shapes.value(i, Shape::Line));
        const auto& contours = objects.at(i).contours;
        const auto add = [&](int contour, int vertices) {
            if (found.total++ < most)
                found.listed.append(
                    { { i, shortened(objects.at(i).def) }, contour, vertices, needed });
        };
        if (contours.isEmpty())
            add(-1, 0);
        for (int contour = 0; contour < contours.size(); ++contour) {
            const bool isArea = needed == static_cast<int>(Shape::Area);
            const int vertices =
                isArea ? openSize(contours.at(contour)) : contours.at(contour).size();
            if (vertices < needed)
                add(contour, vertices);
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

namespace {

/// The extent of an object's places.
struct Extent {
    double minX = std::numeric_limits<double>::infinity();
    double maxX = -std::numeric_limits<double>::infinity();
    double minY = std::numeric_limits<double>::infinity();
    double maxY = -std::numeric_limits<double>::infinity();

    explicit Extent(const DefPolygon& object)
    {
        for (const QVector<DefPoint>& contour : object.contours) {
            for (const DefPoint& vertex : contour) {
                minX = std::min(minX, vertex.x);
                maxX = std::max(maxX, vertex.x);
                minY = std::min(minY, vertex.y);
                maxY = std::max(maxY, vertex.y);
            }
        }
    }
};

/// Whether an object of this extent is a small one in degrees.
bool isInDegrees(const Extent& extent)
{
    constexpr double most = 0.36;
    const auto isOnEarth = [](double least, double greatest, double limit) {
        return greatest <= limit && least >= -limit && (least >= 1 || greatest <= -1);
    };
    return extent.maxX - extent.minX <= most && extent.maxY - extent.minY <= most
        && isOnEarth(extent.minX, extent.maxX, 180) && isOnEarth(extent.minY, extent.maxY, 90);
}

} // namespace

std::optional<QPointF> guessDegrees(const QVector<DefPolygon>& objects)
{
    qint64 total = 0;
    qint64 inDegrees = 0;
    QPointF sum;
    for (const DefPolygon& object : objects) {
        if (object.contours.isEmpty())
            continue;
        const Extent extent(object);
        ++total;
        if (!isInDegrees(extent))
            continue;
        ++inDegrees;
        sum += QPointF(extent.minX / 2 + extent.maxX / 2, extent.minY / 2 + extent.maxY / 2);
    }
    if (total == 0 || inDegrees * 10 < total * 9)
        return {};
    return sum / static_cast<double>(inDegrees);
}
