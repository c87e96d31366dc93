#include "geometry/nearestindex.h"

#include "geometry/nearestpoint.h"

#include <algorithm>
#include <cmath>

namespace {

/// Subtrees of at most this many sites are searched one by one.
constexpr size_t leafSize = 8;

} // namespace

NearestIndex::NearestIndex(const QVector<DefPoint>& points)
    : m_points(points)
    , m_hasNan(std::any_of(points.cbegin(), points.cend(), hasNan))
{
    collectSites();
    m_splitsByY.resize(m_sites.size());
    build({ 0, m_sites.size() });
}

void NearestIndex::collectSites()
{
    m_sites.reserve(static_cast<size_t>(m_points.size()));
    for (int i = 0; i < m_points.size(); ++i) {
        const DefPoint& point = m_points.at(i);
        // An infinitely distant point is never the nearest.
        if (!std::isfinite(point.x) || !std::isfinite(point.y))
            continue;
        if (!m_sites.empty() && m_sites.back().x == point.x && m_sites.back().y == point.y)
            m_sites.back().last = i;
        else
            m_sites.push_back({ point.x, point.y, i, i });
    }
}

void NearestIndex::build(Range range)
{
    if (range.size() <= leafSize)
        return;
    const auto begin = m_sites.begin() + static_cast<std::ptrdiff_t>(range.begin);
    const auto end = m_sites.begin() + static_cast<std::ptrdiff_t>(range.end);
    const auto middle = m_sites.begin() + static_cast<std::ptrdiff_t>(range.middle());

    const auto byX = [](const Site& a, const Site& b) { return a.x < b.x; };
    const auto byY = [](const Site& a, const Site& b) { return a.y < b.y; };
    const auto x = std::minmax_element(begin, end, byX);
    const auto y = std::minmax_element(begin, end, byY);
    const bool splitsByY = y.second->y - y.first->y > x.second->x - x.first->x;
    if (splitsByY)
        std::nth_element(begin, middle, end, byY);
    else
        std::nth_element(begin, middle, end, byX);
    m_splitsByY[range.middle()] = splitsByY;

    build({ range.begin, range.middle() });
    build({ range.middle() + 1, range.end });
}

void NearestIndex::offerSite(const Site& site, NearestSides& nearest) const
{
    const double dx = site.x - nearest.x;
    const double dy = site.y - nearest.y;
    if (dx * dx + dy * dy <= nearest.distance)
        nearest.offer(m_points.at(site.first), m_points.at(site.last));
}

void NearestIndex::visit(Range range, NearestSides& nearest) const
{
    if (range.size() <= leafSize) {
        for (size_t i = range.begin; i < range.end; ++i)
            offerSite(m_sites[i], nearest);
        return;
    }

    const size_t middle = range.middle();
    const Site& site = m_sites[middle];
    const double offset = m_splitsByY[middle] ? nearest.y - site.y : nearest.x - site.x;
    const Range before{ range.begin, middle };
    const Range after{ middle + 1, range.end };
    visit(offset < 0 ? before : after, nearest);
    offerSite(site, nearest);
    // Equality counts: a point at the same distance may come first in the order of points.
    if (offset * offset <= nearest.distance)
        visit(offset < 0 ? after : before, nearest);
}

void NearestIndex::collect(NearestSides& nearest) const
{
    visit({ 0, m_sites.size() }, nearest);
}

const DefPoint* NearestIndex::find(const QPointF& query) const
{
    if (m_hasNan)
        return findNearestPoint(m_points, query);

    NearestSides nearest{ query.x(), query.y() };
    collect(nearest);
    if (!nearest.isTie())
        return nearest.single();

    const auto lower = std::lower_bound(m_points.cbegin(), m_points.cend(), query.x(),
        [](const DefPoint& point, double x) { return point.x < x; });
    const bool predecessorWins = nearest.right != &*lower && nearest.left == &*(lower - 1);
    return predecessorWins ? nearest.left : nearest.right;
}
