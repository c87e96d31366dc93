#include "geometry/pointcolumns.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// A column is so many times as wide as its points are apart in it, where they are spread evenly.
constexpr double columnWidth = 2;
constexpr size_t partsPerColumn = 2;
/// Of so many points of a bucket, and of the one before, the memory is fetched ahead.
constexpr size_t mostOfBucket = 3;

/// Into how many columns points of a range are split.
double columnCount(size_t count, double width, double height)
{
    const double shape = width / height;
    const double square = static_cast<double>(count) / columnWidth;
    const double columns = std::sqrt(std::isnan(shape) ? square : square * shape);
    return std::clamp(columns, 1.0, std::max(1.0, square));
}

/// The order of points in a column.
bool isBelow(const DefPoint& a, double x, double y)
{
    return a.y < y || (a.y == y && a.x < x);
}

} // namespace

PointColumns::Parts::Parts(double least, double greatest, size_t count)
    : m_least(least)
    , m_last(static_cast<double>(count - 1))
{
    if (least < greatest)
        m_partsPerUnit = static_cast<double>(count) / (greatest - least);
}

PointColumns::PointColumns(const DefPoint* points, int count)
{
    m_indices.reserve(static_cast<size_t>(count));
    double minY = std::numeric_limits<double>::infinity();
    double maxY = -minY;
    for (int i = 0; i < count; ++i) {
        if (!std::isfinite(points[i].x) || !std::isfinite(points[i].y))
            continue;
        m_indices.push_back(i);
        minY = std::min(minY, points[i].y);
        maxY = std::max(maxY, points[i].y);
    }
    if (m_indices.empty())
        return;
    const size_t size = m_indices.size();
    const double width = points[m_indices.back()].x - points[m_indices.front()].x;
    const auto columns = static_cast<size_t>(columnCount(size, width, maxY - minY));
    m_buckets.resize(size + 1);
    m_columns.reserve(columns);
    for (size_t i = 0; i < columns; ++i)
        addColumn(points, size * i / columns, size * (i + 1) / columns);
    m_buckets.back() = static_cast<int>(size);
    guideToColumns();
}

void PointColumns::addColumn(const DefPoint* points, size_t begin, size_t end)
{
    const std::vector<int> indices(&m_indices[begin], &m_indices[begin] + (end - begin));
    const auto inOrder = [points](
                             int a, int b) { return isBelow(points[a], points[b].x, points[b].y); };
    const auto outermost = std::minmax_element(indices.begin(), indices.end(), inOrder);
    const Parts buckets(points[*outermost.first].y, points[*outermost.second].y, indices.size());
    m_columns.push_back(
        { points[indices.front()].x, points[indices.back()].x, buckets, begin, end });

    // First the number of points of each bucket, then where it ends, then where it begins.
    for (const int index : indices)
        ++m_buckets[bucketAt(m_columns.back(), points[index].y)];
    int position = static_cast<int>(begin);
    for (size_t bucket = begin; bucket < end; ++bucket)
        position = m_buckets[bucket] += position;
    for (const int index : indices)
        m_indices[static_cast<size_t>(--m_buckets[bucketAt(m_columns.back(), points[index].y)])] =
            index;
    for (size_t bucket = begin; bucket < end; ++bucket) {
        const int bucketEnd = bucket + 1 < end ? m_buckets[bucket + 1] : static_cast<int>(end);
        if (bucketEnd - m_buckets[bucket] > 1)
            std::sort(
                m_indices.begin() + m_buckets[bucket], m_indices.begin() + bucketEnd, inOrder);
    }
}

void PointColumns::guideToColumns()
{
    const size_t parts = m_columns.size() * partsPerColumn;
    m_guide = Parts(m_columns.front().minX, m_columns.back().minX, parts);
    m_guided.reserve(parts + 1);
    for (size_t i = 0; i < m_columns.size(); ++i) {
        const size_t part = m_guide(m_columns[i].minX);
        m_guided.resize(std::max(m_guided.size(), part + 1), static_cast<int>(i));
    }
    m_guided.resize(parts + 1, static_cast<int>(m_columns.size()));
}

/// The last column that begins at or left of x, or the first one.
size_t PointColumns::columnAt(double x) const
{
    const size_t part = m_guide(x);
    const auto column =
        std::upper_bound(m_columns.begin() + m_guided[part], m_columns.begin() + m_guided[part + 1],
            x, [](double value, const Column& right) { return value < right.minX; });
    return static_cast<size_t>(std::max<std::ptrdiff_t>(column - m_columns.begin(), 1) - 1);
}

/// A position in a column that no point before (x, y) follows, or few of its bucket.
size_t PointColumns::startOf(const DefPoint* points, const Column& column, double x, double y) const
{
    constexpr int few = 8;
    const size_t bucket = bucketAt(column, y);
    const int begin = m_buckets[bucket];
    const int end = m_buckets[bucket + 1];
    if (end - begin <= few)
        return static_cast<size_t>(begin);
    const auto first = std::partition_point(m_indices.begin() + begin, m_indices.begin() + end,
        [=](int index) { return isBelow(points[index], x, y); });
    return static_cast<size_t>(first - m_indices.begin());
}

size_t PointColumns::expect(double x, double y) const
{
    const size_t bucket = bucketAt(m_columns[columnAt(x)], y);
    __builtin_prefetch(&m_buckets[bucket]);
    return bucket;
}

void PointColumns::expectPoints(const DefPoint* points, const size_t* expected, size_t count) const
{
    // One step for all places at a time: each waits for the one before.
    const auto beginOf = [&](size_t i) {
        return expected[i] < m_indices.size() ? static_cast<size_t>(m_buckets[expected[i]]) : 0;
    };
    for (size_t i = 0; i < count; ++i)
        __builtin_prefetch(&m_indices[beginOf(i)]);
    for (size_t i = 0; i < count; ++i) {
        const size_t begin = beginOf(i);
        const size_t end = std::min(begin + mostOfBucket, m_indices.size());
        for (size_t position = begin - (begin > 0 ? 1 : 0); position < end; ++position)
            __builtin_prefetch(&points[m_indices[position]].y);
    }
}
