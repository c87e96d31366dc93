#pragma once

#include "geometry/defpoint.h"
#include "geometry/placehash.h"

#include <QVector>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <vector>

/// A hash of square cells that gives the points near a place.
///
/// It holds the points of the caller's vector from an index on, by their indices; a coordinate
/// that is not finite is near no place. Cells are coarse at first, so that neighbouring vertices
/// share one that is at hand, or sized for the points that come first if these are many, and become
/// finer when points crowd one. The hash is keyed at random,
/// so that no file can be written to make cells collide; what is found does not depend on the key.
class PointCells {
public:
    /// All points are found that are within this distance of a place in both coordinates.
    static constexpr double reach = 0.0145;

    PointCells();

    /// Drops all points; the next one to be added is `points[index]`.
    void startAt(int index);
    /// Adds the points before `points[end]` that are not held yet; those that are must be at their
    /// places. False, and nothing is held for sure, when too many share one of the smallest cells.
    bool add(const QVector<DefPoint>& points, int end);

    /// So many places can be expected at once.
    static constexpr size_t mostExpected = 16;
    /// Has the memory fetched where the cell of a place is looked up. With what it gives for
    /// `count` places, expectPoints() does so with the first few points of their cells.
    size_t expect(double x, double y) const
    {
        if (m_slots.empty())
            return 0;
        const size_t slot = homeOf(cellHash(x, y));
        __builtin_prefetch(&m_slots[slot]);
        return slot;
    }
    void expectPoints(const DefPoint* points, const size_t* expected, size_t count) const;

    /// Calls `visit` with the index of each point within reach of (x, y), and with some others.
    template <typename Visit>
    void visitNear(double x, double y, Visit visit) const
    {
        if (m_slots.empty())
            return;
        const CellSpan rows(y, m_cellsPerUnit);
        for (const quint64 cellX : CellSpan(x, m_cellsPerUnit)) {
            for (const quint64 cellY : rows)
                visitChain(m_slots[slotOf(m_hash(cellX, cellY))], visit);
        }
    }

private:
    /// An entry of the hash table: the points of a cell as a chain through m_next.
    struct Slot {
        quint32 tag : 24;
        quint32 length : 8; ///< number of points, or the most that fits
        int head; ///< the point added last, or -1
    };

    /// The cell coordinates that a search around a value touches: one or two, for a cell is wider
    /// than the search.
    class CellSpan {
    public:
        CellSpan(double value, double cellsPerUnit)
        {
            // Most places are so far from the borders of their cell that no rounding matters.
            constexpr double roundingLimit = 1LL << 40;
            constexpr double slack = 1.0 / 1024;
            const double scaled = value * cellsPerUnit;
            if (std::abs(scaled) < roundingLimit) {
                const qint64 cell = floorOf(scaled);
                const double offset = scaled - static_cast<double>(cell);
                const double margin = reach * cellsPerUnit + slack;
                if (offset > margin && offset < 1 - margin) {
                    m_cells.fill(static_cast<quint64>(cell));
                    return;
                }
            }
            m_cells = { cellCoordinate(value - reach, cellsPerUnit),
                cellCoordinate(value + reach, cellsPerUnit) };
        }
        const quint64* begin() const { return m_cells.data(); }
        const quint64* end() const { return begin() + (m_cells.front() == m_cells.back() ? 1 : 2); }

    private:
        std::array<quint64, 2> m_cells;
    };

    template <typename Visit>
    void visitChain(const Slot& slot, Visit visit) const
    {
        if (slot.head < 0)
            return;
        visit(slot.head);
        if (slot.length < 2)
            return;
        for (int i = next(slot.head); i >= 0; i = next(i))
            visit(i);
    }

    static qint64 floorOf(double value)
    {
        const auto truncated = static_cast<qint64>(value);
        return static_cast<double>(truncated) > value ? truncated - 1 : truncated;
    }
    static quint64 cellCoordinate(double value, double cellsPerUnit)
    {
        // From here on cells would be finer than the numbers themselves, and no search reaches from
        // one number to the next.
        constexpr double cellLimit = 9007199254740992.0;
        const double scaled = value * cellsPerUnit;
        if (std::abs(scaled) < cellLimit)
            return static_cast<quint64>(floorOf(scaled));
        quint64 bits;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    }
    quint64 cellHash(double x, double y) const
    {
        return m_hash(cellCoordinate(x, m_cellsPerUnit), cellCoordinate(y, m_cellsPerUnit));
    }
    /// The part of a hash that tells cells in the same neighbourhood of the table apart; two that
    /// share it only share their chain.
    static quint32 tagOf(quint64 hash) { return static_cast<quint32>(hash >> 40); }
    /// Where the slot of a cell is looked for first.
    size_t homeOf(quint64 hash) const { return static_cast<size_t>(hash) & (m_slots.size() - 1); }
    size_t slotOf(quint64 hash) const;
    bool isHalfFull() const { return m_usedSlots * 2 >= m_slots.size(); }
    int& next(int index) { return m_next[static_cast<size_t>(index - m_first)]; }
    const int& next(int index) const { return m_next[static_cast<size_t>(index - m_first)]; }
    bool startWith(const QVector<DefPoint>& points, int end);
    int link(quint64 hash, int index);
    void relink(const QVector<DefPoint>& points, size_t slotCount);

    PlaceHash m_hash;
    double m_cellsPerUnit;
    std::vector<Slot> m_slots; ///< open addressing; the size is a power of two
    size_t m_usedSlots = 0;
    std::vector<int> m_next; ///< for each point the next one of its cell, or -1
    int m_first = 0; ///< the points from here on are held
    int m_end = 0; ///< so many points are held, or before the first that is
};
