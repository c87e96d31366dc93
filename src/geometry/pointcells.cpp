#include "geometry/pointcells.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

/// Cells have so many to a unit. In the smallest, which are just wider than a search, points that
/// are more than a tolerance apart cannot come too close to be searched one by one.
constexpr double coarsestCells = 1.0 / 64;
constexpr double smallestCells = 32;
constexpr double refinement = 2;
static_assert(2 * PointCells::reach * smallestCells < 1, "a search touches two cells at most");
/// So many points may share a cell before cells are refined.
constexpr int crowd = 8;
/// More points than this in one of the smallest cells are better served by a tree.
constexpr int crowdInSmallest = 32;
/// What Slot::length can hold.
constexpr int mostCounted = 255;
constexpr size_t leastSlots = 1024;
/// From here on cells would be finer than the numbers themselves, and no search reaches from one
/// number to the next.
constexpr double cellLimit = 9007199254740992.0;

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
    m_next.resize(static_cast<size_t>(end - m_first), -1);
    while (m_end < end) {
        if (isHalfFull())
            relink(points, std::max(m_slots.size() * 2, leastSlots));
        const int length = link(points, m_end);
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

quint64 PointCells::cellCoordinate(double value, double cellsPerUnit)
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

size_t PointCells::slotOf(quint64 hash) const
{
    const quint32 tag = tagOf(hash);
    const size_t mask = m_slots.size() - 1;
    size_t position = static_cast<size_t>(hash) & mask;
    while (m_slots[position].head >= 0 && m_slots[position].tag != tag)
        position = (position + 1) & mask;
    return position;
}

int PointCells::link(const QVector<DefPoint>& points, int index)
{
    const DefPoint& point = points.at(index);
    if (!std::isfinite(point.x) || !std::isfinite(point.y))
        return 0;
    const quint64 hash =
        m_hash(cellCoordinate(point.x, m_cellsPerUnit), cellCoordinate(point.y, m_cellsPerUnit));
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
    for (int i = m_first; i < m_end; ++i) {
        if (isHalfFull()) {
            relink(points, slotCount * 2);
            return;
        }
        link(points, i);
    }
}
