#pragma once

#include <QtGlobal>

#include <algorithm>
#include <vector>

/// Where a drawing has long stretches of entities that build no object, as a first pass over it
/// has seen; a second pass over the same file need not look at them again.
class DxfStretches {
public:
    /// A place between two pairs of lines.
    struct Place {
        qint64 position; ///< in bytes from the start of the file
        int line; ///< so many lines are before it
    };

    void clear() { *this = DxfStretches(); }

    /// The entity that starts at `place` is, or is not, one that a second pass must see.
    void note(const Place& place, bool isWanted)
    {
        if (isWanted)
            end(place);
        else if (!m_isOpen)
            m_start = place;
        m_isOpen = !isWanted;
    }
    /// The file ends at `place`; its size is remembered by that.
    void finish(const Place& place)
    {
        end(place);
        m_isOpen = false;
        m_fileSize = place.position;
    }

    /// Whether they were noted of a file of this size.
    bool fit(qint64 fileSize) const { return fileSize == m_fileSize; }
    /// The end of the stretch that `position` is in; null when it is in none.
    const Place* endOf(qint64 position) const
    {
        const auto next = std::upper_bound(m_stretches.cbegin(), m_stretches.cend(), position,
            [](qint64 value, const Stretch& stretch) { return value < stretch.end.position; });
        return next != m_stretches.cend() && next->start <= position ? &next->end : nullptr;
    }

private:
    struct Stretch {
        qint64 start;
        Place end;
    };
    /// To go on elsewhere in the file costs more than to read through less than this.
    static constexpr qint64 leastSize = 1 << 16;

    void end(const Place& place)
    {
        if (m_isOpen && place.position - m_start.position >= leastSize)
            m_stretches.push_back({ m_start.position, place });
    }

    std::vector<Stretch> m_stretches; ///< in the order of the file
    Place m_start{ 0, 0 };
    bool m_isOpen = false;
    qint64 m_fileSize = -1;
};
