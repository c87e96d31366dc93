#include "survey/findings.h"

#include "geometry/conflicts.h"
#include "geometry/defnames.h"
#include "survey/beside.h"

#include <QHash>

#include <algorithm>
#include <utility>
#include <vector>

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
    DefNames names;
    QHash<DefName, int> indices;
    int vertexIndex = 0;
    for (const QVector<DefPoint>& contour : polygon.contours) {
        for (const DefPoint& vertex : contour) {
            if (!conflicting.testBit(vertexIndex++))
                continue;
            const DefName name = names.nameOf(vertex.def);
            const auto known = indices.constFind(name);
            const int index = known == indices.cend() ? conflicts.size() : *known;
            if (known == indices.cend()) {
                indices.insert(name, index);
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

namespace {

/// An object by the hash of its designation. A hash of them all would take several times the room.
struct Bearer {
    uint hash;
    int object;
};

/// Objects with a designation, those with the same one behind each other.
std::vector<Bearer> sortedBearers(const QVector<DefPolygon>& objects)
{
    DefNames names;
    std::vector<Bearer> bearers;
    bearers.reserve(static_cast<size_t>(objects.size()));
    for (int i = 0; i < objects.size(); ++i) {
        if (!objects.at(i).def.isEmpty())
            bearers.push_back({ names.nameOf(objects.at(i).def).hash, i });
    }
    std::sort(bearers.begin(), bearers.end(), [](const Bearer& a, const Bearer& b) {
        return a.hash < b.hash || (a.hash == b.hash && a.object < b.object);
    });
    return bearers;
}

/// Objects with one designation; some others may have the same hash and stand among them.
struct Group {
    int first;
    size_t begin;
    size_t end;
};

/// Adds the designations that occur twice among the bearers of one hash.
void addGroups(const std::vector<Bearer>& bearers, size_t begin, size_t end,
    const QVector<DefPolygon>& objects, std::vector<Group>& groups)
{
    // Hardly ever more than one.
    std::vector<std::pair<int, int>> firstAndCount;
    for (size_t i = begin; i < end; ++i) {
        const QString& def = objects.at(bearers[i].object).def;
        const auto known = std::find_if(firstAndCount.begin(), firstAndCount.end(),
            [&](const auto& entry) { return sameDef(objects.at(entry.first).def, def); });
        if (known == firstAndCount.end())
            firstAndCount.emplace_back(bearers[i].object, 1);
        else if (++known->second == 2)
            groups.push_back({ known->first, begin, end });
    }
}

/// The designations that several objects have, in the order of their first objects.
std::vector<Group> groupsOf(const std::vector<Bearer>& bearers, const QVector<DefPolygon>& objects)
{
    std::vector<Group> groups;
    for (size_t begin = 0; begin < bearers.size();) {
        size_t end = begin + 1;
        while (end < bearers.size() && bearers[end].hash == bearers[begin].hash)
            ++end;
        if (end - begin > 1)
            addGroups(bearers, begin, end, objects, groups);
        begin = end;
    }
    std::sort(groups.begin(), groups.end(),
        [](const Group& a, const Group& b) { return a.first < b.first; });
    return groups;
}

} // namespace

QString shortened(const QString& def)
{
    constexpr int most = 200;
    return def.size() <= most ? def : def.left(most) + QChar(0x2026);
}

Findings<PointConflict> findPointConflicts(
    const QVector<DefPolygon>& objects, int most, bool inOneThread)
{
    // With fewer objects a thread is not worth its start.
    constexpr int leastForThread = 5000;
    const auto findIn = [&objects, most](int begin, int end) {
        Findings<PointConflict> found;
        for (int i = begin; i < end; ++i)
            addConflictsOf({ i, shortened(objects.at(i).def) }, objects.at(i), most, found);
        return found;
    };
    if (inOneThread || objects.size() < leastForThread)
        return findIn(0, objects.size());
    const int middle = objects.size() / 2;
    auto looking = runBeside([&] { return findIn(middle, objects.size()); });
    Findings<PointConflict> found = findIn(0, middle);
    const Findings<PointConflict> others = looking.get();
    found.total += others.total;
    found.listed += others.listed.mid(0, most - found.listed.size());
    return found;
}

Findings<DuplicateDef> findDuplicateDefs(const QVector<DefPolygon>& objects, int most)
{
    Findings<DuplicateDef> found;
    const std::vector<Bearer> bearers = sortedBearers(objects);
    for (const Group& group : groupsOf(bearers, objects)) {
        if (found.total++ >= most)
            continue;
        DuplicateDef duplicate{ shortened(objects.at(group.first).def), {} };
        const QString& def = objects.at(group.first).def;
        for (size_t i = group.begin; i < group.end; ++i) {
            const int object = bearers[i].object;
            if (!sameDef(objects.at(object).def, def))
                continue;
            if (duplicate.objects.total++ < most)
                duplicate.objects.listed.append(object);
        }
        found.listed.append(duplicate);
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

    bool isEmpty() const { return minX > maxX; }
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
        const Extent extent(object);
        if (extent.isEmpty())
            continue;
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
