#include "geometry/exactplaces.h"

ExactPlaces::ExactPlaces(const DefPoint* points, int count)
{
    size_t size = 1;
    while (size < 2 * static_cast<size_t>(count))
        size *= 2;
    m_slots.assign(size, -1);
    for (int i = 0; i < count; ++i) {
        if (!isKnown(points[i].x, points[i].y))
            continue;
        size_t slot = firstSlot(points[i].x, points[i].y);
        while (m_slots[slot] >= 0)
            slot = (slot + 1) & (size - 1);
        m_slots[slot] = i;
    }
}
