#include "geometry/sequenceindex.h"

#include "geometry/pointorder.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Stretches of at most this many points are walked step by step.
constexpr int shortest = 64;
/// After so many stretches that could not be passed at once a walk goes on step by step, so that
/// trying never costs much more than walking.
constexpr int mostAttempts = 48;
/// The answer of a search that goes farther is kept: many objects at one place ask for it.
constexpr int costlySteps = 256;

double square(double value)
{
    return value * value;
}

} // namespace

/// One search and the nearest point that it has met.
class SequenceIndex::Walk {
public:
    Walk(const SequenceIndex& index, const QPointF& query)
        : m_index(index)
        , m_points(index.m_points)
        , m_x(query.x())
        , m_y(query.y())
    {
    }

    /// The index of what is found, or -1.
    int run()
    {
        const int lower = startOfSearch();
        if (lower < m_points.size())
            offer(lower);
        if (lower > 0)
            offer(lower - 1);
        walk(lower + 1, m_points.size(), true);
        walk(0, lower - 1, false);
        return m_best;
    }

    bool wasCostly() const { return m_steps > costlySteps; }

private:
    /// Where halving ends; written out, for a library's search may halve points in no order
    /// otherwise.
    int startOfSearch() const
    {
        int first = 0;
        for (int length = m_points.size(); length > 0;) {
            const int half = length / 2;
            if (m_points.at(first + half).x < m_x) {
                first += half + 1;
                length -= half + 1;
            } else {
                length = half;
            }
        }
        return first;
    }

    void offer(int index)
    {
        const double distance = squaredDistance(m_points.at(index), m_x, m_y);
        if (distance < m_distance) {
            m_best = index;
            m_distance = distance;
        }
    }

    /// Meets the points from `begin` to before `end`, in order or in reverse.
    void walk(int begin, int end, bool forward)
    {
        m_begin = begin;
        m_end = end;
        m_forward = forward;
        m_attempts = 0;
        const int near = std::min(shortest, end - begin);
        const int border = forward ? begin + near : end - near;
        if (forward ? !stepThrough(begin, border) : !stepThrough(border, end))
            return;
        (forward ? m_begin : m_end) = border;
        if (m_index.m_stretches.empty())
            stepThrough(m_begin, m_end);
        else
            pass(0, 0, m_points.size());
    }

    /// Meets points one by one; false when one of them ended the walk.
    bool stepThrough(int begin, int end)
    {
        for (int left = end - begin; left > 0; --left) {
            const int index = m_forward ? end - left : begin + left - 1;
            if (square(m_points.at(index).x - m_x) > m_distance)
                return false;
            offer(index);
            ++m_steps;
        }
        return true;
    }

    /// Meets those points of a stretch that belong to the walk; false when one of them ended it.
    bool pass(size_t node, int begin, int end)
    {
        const int from = std::max(begin, m_begin);
        const int to = std::min(end, m_end);
        if (from >= to)
            return true;
        if (to - from <= shortest || end - begin <= shortest)
            return stepThrough(from, to);
        if (m_attempts < mostAttempts && passAtOnce(m_index.m_stretches[node], from, to))
            return true;
        const int middle = begin + (end - begin) / 2;
        const size_t first = 2 * node + 1;
        return m_forward ? pass(first, begin, middle) && pass(first + 1, middle, end)
                         : pass(first + 1, middle, end) && pass(first, begin, middle);
    }

    /// Takes the nearest of the points if none of them can end the walk.
    bool passAtOnce(const Stretch& stretch, int begin, int end)
    {
        const double farthest = std::max(square(stretch.minX - m_x), square(stretch.maxX - m_x));
        if (farthest > m_distance)
            return false;
        m_steps += shortest;
        const PlaceTree& tree = m_index.tree();
        const PlaceTree::Nearest nearest = m_forward
            ? tree.findFirst(m_x, m_y, m_distance, begin, end)
            : tree.findLast(m_x, m_y, m_distance, begin, end);
        if (nearest.distance < farthest && !comesNearer(stretch)) {
            ++m_attempts;
            return false;
        }
        if (const int found = m_forward ? nearest.right : nearest.left; found >= 0) {
            m_best = found;
            m_distance = nearest.distance;
        }
        return true;
    }

    /// Whether each point's x is at least as near as those of the points met before: each step
    /// leads to the query's side of its middle. The middles are rounded, so they do not count.
    bool comesNearer(const Stretch& stretch) const
    {
        const Span& toGreater = m_forward ? stretch.rises : stretch.falls;
        const Span& toLesser = m_forward ? stretch.falls : stretch.rises;
        return toGreater.greatest < m_x && m_x < toLesser.least;
    }

    const SequenceIndex& m_index;
    const QVector<DefPoint>& m_points;
    double m_x;
    double m_y;
    int m_best = -1;
    double m_distance = std::numeric_limits<double>::max();
    int m_begin = 0; ///< the points of the walk that are not met yet
    int m_end = 0;
    bool m_forward = true;
    int m_attempts = 0;
    int m_steps = 0; ///< of all walks; a search in the tree counts as some
};

void SequenceIndex::Span::add(const Span& other)
{
    least = std::min(least, other.least);
    greatest = std::max(greatest, other.greatest);
}

SequenceIndex::SequenceIndex(const QVector<DefPoint>& points)
    : m_points(points)
{
    removeNan(m_points);
    size_t stretches = 1;
    for (int size = m_points.size(); size > shortest; size = (size + 1) / 2)
        stretches = 2 * stretches + 1;
    if (stretches == 1)
        return;
    m_stretches.resize(stretches);
    build(0, 0, m_points.size());
}

const DefPoint* SequenceIndex::find(const QPointF& query) const
{
    if (!std::isfinite(query.x()) || !std::isfinite(query.y()))
        return nullptr;
    const auto place = std::make_pair(query.x(), query.y());
    if (const auto known = m_costly.find(place); known != m_costly.end())
        return pointAt(known->second);
    Walk walk(*this, query);
    const int found = walk.run();
    if (walk.wasCostly())
        m_costly.emplace(place, found);
    return pointAt(found);
}

SequenceIndex::Stretch SequenceIndex::stretchOf(int begin, int end) const
{
    const double x = m_points.at(begin).x;
    Stretch stretch{ x, x, {}, {} };
    for (int i = begin + 1; i < end; ++i) {
        const double next = m_points.at(i).x;
        stretch = joined(stretch, { next, next, {}, {} }, m_points.at(i - 1).x, next);
    }
    return stretch;
}

SequenceIndex::Stretch SequenceIndex::joined(
    const Stretch& before, const Stretch& after, double lastX, double firstX)
{
    Stretch stretch{ std::min(before.minX, after.minX), std::max(before.maxX, after.maxX),
        before.rises, before.falls };
    stretch.rises.add(after.rises);
    stretch.falls.add(after.falls);
    const double middle = lastX / 2 + firstX / 2;
    if (lastX < firstX)
        stretch.rises.add({ middle, middle });
    else if (lastX > firstX)
        stretch.falls.add({ middle, middle });
    return stretch;
}

void SequenceIndex::build(size_t node, int begin, int end)
{
    if (end - begin <= shortest) {
        m_stretches[node] = stretchOf(begin, end);
        return;
    }
    const int middle = begin + (end - begin) / 2;
    const size_t first = 2 * node + 1;
    build(first, begin, middle);
    build(first + 1, middle, end);
    m_stretches[node] = joined(m_stretches[first], m_stretches[first + 1],
        m_points.at(middle - 1).x, m_points.at(middle).x);
}

const PlaceTree& SequenceIndex::tree() const
{
    if (!m_tree)
        m_tree.emplace(m_points.constData(), m_points.size());
    return *m_tree;
}
