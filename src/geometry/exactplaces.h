#pragma once

#include "geometry/defpoint.h"
#include "geometry/placehash.h"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <vector>

/// Finds points of a sequence that does not change by exactly their place.
///
/// Where points crowd, most questions are about the place of one of them, and nothing can be nearer
/// than that. Points very close to an axis are left out: squared, their distances from others may
/// vanish. So are those at infinity, which have no place of their own.
class ExactPlaces {
public:
    ExactPlaces() = default;
    /// Of `count` points, no two of which stand at one finite place.
    ExactPlaces(const DefPoint* points, int count);

    /// The index of the point at (x, y), or -1 where there is none or it is not known.
    int find(const DefPoint* points, double x, double y) const
    {
        if (m_slots.empty() || !isKnown(x, y))
            return -1;
        size_t slot = firstSlot(x, y);
        while (m_slots[slot] >= 0 && !isAt(points[m_slots[slot]], x, y))
            slot = (slot + 1) & (m_slots.size() - 1);
        return m_slots[slot];
    }

    /// Has the memory fetched that find() will look at first, and with what it gives for `count`
    /// places that of the points that are there.
    size_t expect(double x, double y) const
    {
        const size_t slot = firstSlot(x, y);
        __builtin_prefetch(&m_slots[slot]);
        return slot;
    }
    void expectPoints(const DefPoint* points, const size_t* expected, size_t count) const
    {
        for (size_t i = 0; i < count; ++i) {
            const int index = expected[i] < m_slots.size() ? m_slots[expected[i]] : -1;
            if (index >= 0)
                __builtin_prefetch(points + index);
        }
    }
    bool isEmpty() const { return m_slots.empty(); }

private:
    static bool isKnown(double x, double y)
    {
        constexpr double nearAxis = 1e-100;
        return std::abs(x) > nearAxis && std::abs(y) > nearAxis && std::isfinite(x)
            && std::isfinite(y);
    }
    static bool isAt(const DefPoint& point, double x, double y)
    {
        return point.x == x && point.y == y;
    }
    size_t firstSlot(double x, double y) const
    {
        quint64 bits[2];
        std::memcpy(&bits[0], &x, sizeof x);
        std::memcpy(&bits[1], &y, sizeof y);
        return static_cast<size_t>(m_hash(bits[0], bits[1])) & (m_slots.size() - 1);
    }

    PlaceHash m_hash;
    std::vector<int> m_slots; ///< open addressing; the size is a power of two, -1 where it is free
};
