#include "geometry/pointcatalogue.h"

#include "geometry/nearestpoint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

/// Cells are squares with so many to a unit: at first coarse ones, so that neighbouring vertices
/// share a cell that is at hand, finer ones once points crowd a cell. In the finest, points
/// a tolerance apart cannot come too close to be searched one by one.
constexpr double coarsestCells = 1.0 / 64;
constexpr double finestCells = 4;
constexpr double refinement = 2;
/// So many points may share a cell before cells are refined.
constexpr int crowd = 8;
/// More arranged points than this in a finest cell are better served by a tree.
constexpr int denseCrowd = 128;
/// A point that coincides with a place, and every nearer one, is within this distance of it in
/// each coordinate: the diagonal of the tolerance square, rounded up.
constexpr double reach = DefPoint::epsilon * 1.45;
/// Up to this size std::sort cannot leave its range even where there is no strict order.
constexpr int sortThreshold = 16;
/// From here on cells would be finer than the numbers themselves.
constexpr double cellLimit = 4503599627370496.0;

quint64 cellCoordinate(double value, double cellsPerUnit)
{
    const double scaled = value * cellsPerUnit;
    if (std::abs(scaled) < cellLimit) {
        const auto truncated = static_cast<qint64>(scaled);
        return static_cast<quint64>(
            static_cast<double>(truncated) > scaled ? truncated - 1 : truncated);
    }
    quint64 bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// A hash that stands for the cell; two cells that share one only share their chain.
quint64 cellHash(quint64 cellX, quint64 cellY)
{
    quint64 hash = cellX * 0x9E3779B97F4A7C15ull ^ (cellY + 0x632BE59BD9B4E019ull);
    hash = (hash ^ (hash >> 32)) * 0xD6E8FEB86659FD93ull;
    hash = (hash ^ (hash >> 32)) * 0xD6E8FEB86659FD93ull;
    return hash ^ (hash >> 32);
}

/// The part of a cell's hash that tells it from others in the same neighbourhood of the table.
quint32 tagOf(quint64 cell)
{
    return static_cast<quint32>(cell >> 40);
}

/// The cell coordinates that a search around a value touches: one or two, for a cell is wider than
/// the search.
class CellSpan {
public:
    CellSpan(double value, double cellsPerUnit)
        : m_cells{ cellCoordinate(value - reach, cellsPerUnit),
            cellCoordinate(value + reach, cellsPerUnit) }
    {
    }
    const quint64* begin() const { return m_cells.data(); }
    const quint64* end() const { return begin() + (m_cells.front() == m_cells.back() ? 1 : 2); }

private:
    std::array<quint64, 2> m_cells;
};

} // namespace

void sortPoints(QVector<DefPoint>& points)
{
    const bool unordered =
        points.size() > sortThreshold && std::any_of(points.cbegin(), points.cend(), hasNan);
    if (unordered)
        std::stable_sort(points.begin(), points.end());
    else
        std::sort(points.begin(), points.end());
}

void mergeCoincident(QVector<DefPoint>& points)
{
    if (points.isEmpty())
        return;
    auto kept = points.begin();
    for (auto it = kept + 1; it != points.end(); ++it) {
        if (!coincide(*kept, *it) && ++kept != it)
            *kept = std::move(*it);
    }
    points.erase(kept + 1, points.end());
}

PointCatalogue::PointCatalogue()
    : m_cellsPerUnit(coarsestCells)
{
}

void PointCatalogue::clear()
{
    *this = PointCatalogue();
}

void PointCatalogue::arrange()
{
    QVector<DefPoint> points = std::move(m_points);
    clear();
    sortPoints(points);
    mergeCoincident(points);
    m_points = std::move(points);
    m_arranged = m_points.size();
    m_ordered = m_arranged;
    m_hasNan = std::any_of(m_points.cbegin(), m_points.cend(), hasNan);
}

void PointCatalogue::giveUpOrder()
{
    if (m_sequence)
        return;
    QVector<DefPoint> sorted = m_points;
    if (m_arranged < m_points.size())
        sortPoints(sorted);
    m_sequence.emplace(sorted);
}

void PointCatalogue::insert(DefPoint point)
{
    m_hasNan = m_hasNan || hasNan(point);
    if (m_hasNan) {
        giveUpOrder();
        const auto isBefore = [&point](const DefPoint& other) { return other < point; };
        m_sequence->insert(partitionIndex(*m_sequence, isBefore), point);
    }
    m_points.append(std::move(point));
}

const DefPoint* PointCatalogue::findCoincident(double x, double y)
{
    if (!std::isfinite(x) || !std::isfinite(y))
        return nullptr;

    catchUp();
    NearestSides nearest{ x, y, 2 * reach * reach };
    m_arrangedIndex.collect(nearest);
    const CellSpan rows(y, m_cellsPerUnit);
    for (const quint64 cellX : CellSpan(x, m_cellsPerUnit)) {
        for (const quint64 cellY : rows)
            visitCell(cellHash(cellX, cellY), nearest);
    }
    if (!nearest.left && !nearest.right)
        return nullptr;
    const DefPoint* point = bestOf(nearest);
    return point && coincide(point->x, point->y, x, y) ? point : nullptr;
}

const DefPoint* PointCatalogue::bestOf(const NearestSides& nearest)
{
    if (!m_hasNan)
        return nearest.isTie() ? firstInOrder(nearest) : nearest.single();
    giveUpOrder();
    return findNearestIn(*m_sequence, QPointF(nearest.x, nearest.y));
}

void PointCatalogue::catchUp()
{
    if (m_indexed == m_points.size())
        return;
    m_next.resize(static_cast<size_t>(m_points.size()), -1);
    for (; m_indexed < m_points.size(); ++m_indexed) {
        const int length = addToCell(m_indexed);
        if (length > crowd && m_cellsPerUnit < finestCells)
            refineCells();
        else if (length > denseCrowd && m_indexed < m_arranged)
            indexArranged();
    }
}

void PointCatalogue::refineCells()
{
    m_cellsPerUnit *= refinement;
    rehash(m_slots.size());
    addToCell(m_indexed);
}

void PointCatalogue::indexArranged()
{
    m_arrangedIndex = NearestIndex(m_points.mid(0, m_arranged));
    m_firstInCells = m_arranged;
    m_indexed = m_arranged - 1;
    rehash(m_slots.size());
}

int PointCatalogue::addToCell(int index)
{
    if (isHalfFull())
        rehash(std::max<size_t>(m_slots.size() * 2, 1024));
    return link(index);
}

int PointCatalogue::link(int index)
{
    const DefPoint& point = m_points.at(index);
    // An infinitely distant point is never the nearest.
    if (!std::isfinite(point.x) || !std::isfinite(point.y))
        return 0;
    const quint64 cell =
        cellHash(cellCoordinate(point.x, m_cellsPerUnit), cellCoordinate(point.y, m_cellsPerUnit));
    Slot& slot = slotOf(cell);
    m_usedSlots += slot.head < 0 ? 1 : 0;
    slot.tag = tagOf(cell) & 0xFFFFFF;
    m_next[static_cast<size_t>(index)] = slot.head;
    slot.head = index;
    if (slot.length <= denseCrowd)
        ++slot.length;
    return slot.length;
}

bool PointCatalogue::isHalfFull() const
{
    return m_usedSlots * 2 >= m_slots.size();
}

void PointCatalogue::rehash(size_t slotCount)
{
    m_slots.assign(slotCount, Slot{ 0, 0, -1 });
    m_usedSlots = 0;
    for (int i = m_firstInCells; i < m_indexed; ++i) {
        if (isHalfFull()) {
            rehash(slotCount * 2);
            return;
        }
        link(i);
    }
}

PointCatalogue::Slot& PointCatalogue::slotOf(quint64 cell)
{
    const quint32 tag = tagOf(cell);
    const size_t mask = m_slots.size() - 1;
    size_t position = static_cast<size_t>(cell) & mask;
    while (m_slots[position].head >= 0 && m_slots[position].tag != tag)
        position = (position + 1) & mask;
    return m_slots[position];
}

void PointCatalogue::visitCell(quint64 cell, NearestSides& nearest)
{
    if (m_slots.empty())
        return;
    for (int i = slotOf(cell).head; i >= 0; i = m_next[static_cast<size_t>(i)])
        nearest.offer(m_points.at(i));
}

const DefPoint* PointCatalogue::firstInOrder(const NearestSides& tie)
{
    for (; m_ordered < m_points.size(); ++m_ordered)
        m_insertedPlaces.emplace(m_points.at(m_ordered).x, m_points.at(m_ordered).y);

    // The first place at or right of the query, and the last one left of it, among all points.
    const auto arrangedEnd = m_points.cbegin() + m_arranged;
    const auto arranged = std::lower_bound(m_points.cbegin(), arrangedEnd, tie.x,
        [](const DefPoint& point, double x) { return point.x < x; });
    const auto inserted =
        m_insertedPlaces.lower_bound({ tie.x, -std::numeric_limits<double>::infinity() });

    const Place right{ tie.right->x, tie.right->y };
    const Place left{ tie.left->x, tie.left->y };
    const bool rightIsLowerBound =
        (arranged == arrangedEnd || !(Place(arranged->x, arranged->y) < right))
        && (inserted == m_insertedPlaces.end() || !(*inserted < right));
    if (rightIsLowerBound)
        return tie.right;
    const bool leftIsPredecessor =
        (arranged == m_points.cbegin() || !(left < Place((arranged - 1)->x, (arranged - 1)->y)))
        && (inserted == m_insertedPlaces.begin() || !(left < *std::prev(inserted)));
    return leftIsPredecessor ? tie.left : tie.right;
}
