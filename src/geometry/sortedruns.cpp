#include "geometry/sortedruns.h"

#include <algorithm>
#include <numeric>

void SortedRuns::add(const QVector<DefPoint>& points, int begin, int end)
{
    if (begin == end)
        return;
    const auto isBefore = [&points](int a, int b) { return points.at(a) < points.at(b); };
    const auto at = [this](size_t i) { return m_indices.begin() + static_cast<std::ptrdiff_t>(i); };

    m_starts.push_back(m_indices.size());
    for (int i = begin; i < end; ++i) {
        if (!hasNan(points.at(i)))
            m_indices.push_back(i);
    }
    std::sort(at(m_starts.back()), m_indices.end(), isBefore);

    while (m_starts.size() > 1) {
        const Run last = rangeOf(m_starts.size() - 1);
        const Run previous = rangeOf(m_starts.size() - 2);
        if (previous.size() >= 2 * last.size() && last.size() > 0)
            break;
        std::inplace_merge(at(previous.begin), at(last.begin), m_indices.end(), isBefore);
        m_starts.pop_back();
    }
}

SortedRuns::Run SortedRuns::rangeOf(size_t run) const
{
    return { m_starts[run], run + 1 < m_starts.size() ? m_starts[run + 1] : m_indices.size() };
}

size_t SortedRuns::borderIn(const QVector<DefPoint>& points, Run range, double x) const
{
    const auto at = [this](size_t i) { return m_indices.begin() + static_cast<std::ptrdiff_t>(i); };
    const auto border = std::lower_bound(at(range.begin), at(range.end), x,
        [&points](int index, double value) { return points.at(index).x < value; });
    return static_cast<size_t>(border - m_indices.cbegin());
}
