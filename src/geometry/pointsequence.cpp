#include "geometry/pointsequence.h"

#include <algorithm>
#include <iterator>

namespace {

/// A block that grows beyond this is split in two.
constexpr size_t mostInBlock = 1024;

} // namespace

PointSequence::PointSequence(const QVector<DefPoint>& points)
    : m_size(points.size())
{
    constexpr int portion = mostInBlock / 2;
    for (int start = 0; start == 0 || start < points.size(); start += portion) {
        const int end = std::min(start + portion, points.size());
        m_blocks.emplace_back(points.cbegin() + start, points.cbegin() + end);
        m_starts.push_back(start);
    }
}

size_t PointSequence::blockOf(int index) const
{
    const auto next = std::upper_bound(m_starts.cbegin(), m_starts.cend(), index);
    return static_cast<size_t>(std::distance(m_starts.cbegin(), next)) - 1;
}

const DefPoint& PointSequence::at(int index) const
{
    const size_t block = blockOf(index);
    return m_blocks[block][static_cast<size_t>(index - m_starts[block])];
}

void PointSequence::insert(int index, const DefPoint& point)
{
    const size_t block = blockOf(index);
    m_blocks[block].insert(m_blocks[block].begin() + (index - m_starts[block]), point);
    ++m_size;
    for (size_t i = block + 1; i < m_starts.size(); ++i)
        ++m_starts[i];
    if (m_blocks[block].size() > mostInBlock)
        splitBlock(block);
}

void PointSequence::splitBlock(size_t block)
{
    constexpr int half = mostInBlock / 2;
    std::vector<DefPoint>& points = m_blocks[block];
    std::vector<DefPoint> rest(points.begin() + half, points.end());
    points.resize(half);
    const auto next = static_cast<std::ptrdiff_t>(block) + 1;
    m_starts.insert(m_starts.begin() + next, m_starts[block] + half);
    m_blocks.insert(m_blocks.begin() + next, std::move(rest));
}
