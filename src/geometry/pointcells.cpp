#include "geometry/pointcells.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Cells have so many to a unit. In the smallest, which are just wider than a search, points that
/// are more than a tolerance apart cannot come too close to be searched one by one.
constexpr double coarsestCells = 1.0 / 64;
constexpr double smallestCells = 32;
constexpr double refinement = 2;
static_assert(2 * PointCells::reach * smallestCells < 1, "a search touches two cells at most");
/// So many points may share a cell before cells are refined.
constexpr int crowd = 8;
/// Of evenly spread points so many share a cell.
constexpr int usualInCell = 2;
/// Of so many points of a cell the memory is fetched ahead.
constexpr int mostFetched = 3;
/// More points than this in one of the smallest cells are better served by a tree.
constexpr int crowdInSmallest = 32;
/// When points are linked anew, the memory of so many is fetched at once.
constexpr int mostRelinked = 32;
/// What Slot::length can hold.
constexpr int mostCounted = 255;
constexpr size_t leastSlots = 1024;

/// The smallest range that holds some finite numbers.
class Range {
public:
    void include(double value)
    {
        if (!std::isfinite(value))
            return;
        m_least = std::min(m_least, value);
        m_greatest = std::max(m_greatest, value);
    }
    double size() const { return m_least < m_greatest ? m_greatest - m_least : 0; }

private:
    double m_least = std::numeric_limits<double>::infinity();
    double m_greatest = -std::numeric_limits<double>::infinity();
};

bool isFinite(const DefPoint& point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

} // namespace

PointCells::PointCells()
{
    startAt(0);
}

void PointCells::startAt(int index)
{
    m_slots.clear();
    m_usedSlots = 0;
    m_next.clear();
    m_cellsPerUnit = coarsestCells;
    m_first = index;
    m_end = index;
}

bool PointCells::add(const QVector<DefPoint>& points, int end)
{
    if (m_end == m_first && m_end < end && !startWith(points, end))
        return false;
    while (m_end < end) {
        m_next.push_back(-1);
        if (isHalfFull())
            relink(points, std::max(m_slots.size() * 2, leastSlots));
        const DefPoint& point = points.at(m_end);
        const int length = isFinite(point) ? link(cellHash(point.x, point.y), m_end) : 0;
        ++m_end;
        if (length > crowd && m_cellsPerUnit < smallestCells) {
            m_cellsPerUnit *= refinement;
            relink(points, m_slots.size());
        } else if (length > crowdInSmallest) {
            return false;
        }
    }
    return true;
}

/// Chooses cells for points that come all at once, as if they were spread evenly: refining the
/// cells and growing the table later means to look up each point again. False, before anything is
/// made, when there are too few cells for so many points.
bool PointCells::startWith(const QVector<DefPoint>& points, int end)
{
    Range x;
    Range y;
    int finite = 0;
    for (int i = m_first; i < end; ++i) {
        const DefPoint& point = points.at(i);
        x.include(point.x);
        y.include(point.y);
        finite += isFinite(point) ? 1 : 0;
    }
    // A range that is a multiple of a cell's width can begin and end within a cell.
    const double mostCells = (x.size() * smallestCells + 2) * (y.size() * smallestCells + 2);
    if (mostCells * crowdInSmallest < finite)
        return false;

    const int count = end - m_first;
    const auto cellCount = [&] {
        return (x.size() * m_cellsPerUnit + 1) * (y.size() * m_cellsPerUnit + 1);
    };
    while (m_cellsPerUnit < smallestCells && cellCount() * usualInCell < count)
        m_cellsPerUnit *= refinement;
    size_t slotCount = leastSlots;
    while (slotCount < static_cast<size_t>(count))
        slotCount *= 2;
    m_slots.assign(slotCount, Slot{ 0, 0, -1 });
    m_next.reserve(static_cast<size_t>(count));
    return true;
}

void PointCells::expectPoints(const DefPoint* points, const size_t* expected, size_t count) const
{
    std::array<int, mostExpected> indices{};
    for (size_t i = 0; i < count; ++i)
        indices[i] = expected[i] < m_slots.size() ? m_slots[expected[i]].head : -1;
    // One step for all places at a time: each waits for the one before.
    for (int step = 0; step < mostFetched; ++step) {
        for (size_t i = 0; i < count; ++i) {
            int& index = indices[i];
            if (step > 0 && index >= 0)
                index = next(index);
            if (index < 0)
                continue;
            __builtin_prefetch(points + index);
            __builtin_prefetch(&next(index));
        }
    }
}

size_t PointCells::slotOf(quint64 hash) const
{
    const quint32 tag = tagOf(hash);
    const size_t mask = m_slots.size() - 1;
    size_t position = homeOf(hash);
    while (m_slots[position].head >= 0 && m_slots[position].tag != tag)
        position = (position + 1) & mask;
    return position;
}

int PointCells::link(quint64 hash, int index)
{
    Slot& slot = m_slots[slotOf(hash)];
    m_usedSlots += slot.head < 0 ? 1 : 0;
    slot.tag = tagOf(hash) & 0xFFFFFF;
    next(index) = slot.head;
    slot.head = index;
    if (slot.length < mostCounted)
        ++slot.length;
    return slot.length;
}

void PointCells::relink(const QVector<DefPoint>& points, size_t slotCount)
{
    m_slots.assign(slotCount, Slot{ 0, 0, -1 });
    m_usedSlots = 0;
    std::array<quint64, mostRelinked> hashes{};
    for (int begin = m_first; begin < m_end; begin += mostRelinked) {
        const int end = std::min(begin + mostRelinked, m_end);
        auto hash = hashes.begin();
        for (int i = begin; i < end; ++i) {
            *hash = cellHash(points.at(i).x, points.at(i).y);
            __builtin_prefetch(&m_slots[homeOf(*hash++)]);
        }
        hash = hashes.begin();
        for (int i = begin; i < end; ++i, ++hash) {
            if (isHalfFull()) {
                relink(points, slotCount * 2);
                return;
            }
            if (isFinite(points.at(i)))
                link(*hash, i);
        }
    }
}
