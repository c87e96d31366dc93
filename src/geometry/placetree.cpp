#include "geometry/placetree.h"

#include <algorithm>
#include <cmath>

namespace {

/// Subtrees of at most this many sites are searched one by one.
constexpr size_t leafSize = 8;
/// As many leaves are searched where the points are not laid out to be slow.
constexpr size_t usualLeaves = 32;
/// The answer of a search through more than so many is kept: many objects at one place ask for it.
constexpr size_t costlyLeaves = 128;

/// How far `value` is out of a range; as the distance of a point in the range is computed in the
/// same way, this is never greater, whatever the rounding.
double offsetFrom(double least, double greatest, double value)
{
    if (value < least)
        return least - value;
    return value > greatest ? value - greatest : 0;
}

} // namespace

/// One search: what was found so far, and what can still change it.
class PlaceTree::Search {
public:
    Search(const PlaceTree& tree, double x, double y, const Nearest& start)
        : m_tree(tree)
        , m_x(x)
        , m_y(y)
        , m_nearest(start)
    {
    }

    /// Has the border looked up among these points when the first tie is met.
    void setSorted(const DefPoint* points, int count)
    {
        m_points = points;
        m_count = count;
    }

    /// Leaves only the points with the ranks from `begin` to before `end`.
    void setRanks(int begin, int end)
    {
        m_beginRank = begin;
        m_endRank = end;
    }

    Nearest run()
    {
        if (m_tree.isEmpty() || !std::isfinite(m_x) || !std::isfinite(m_y))
            return m_nearest;
        const Question question{ m_x, m_y, m_nearest.distance, m_nearest.border, m_beginRank,
            m_endRank };
        const auto known = m_tree.m_costly.find(question);
        if (known != m_tree.m_costly.end())
            return known->second;
        visit(0, m_tree.all());
        m_tree.countLeaves(m_leaves);
        if (m_leaves > costlyLeaves)
            m_tree.m_costly.emplace(question, m_nearest);
        return m_nearest;
    }

private:
    bool isFound() const { return m_nearest.left >= 0 || m_nearest.right >= 0; }

    void visit(size_t node, Range range)
    {
        if (m_tree.isLeaf(node)) {
            ++m_leaves;
            for (size_t i = range.begin; i < range.end; ++i) {
                const Site& site = m_tree.m_sites[i];
                if (site.rank >= m_beginRank && site.rank < m_endRank)
                    offer(site);
            }
            return;
        }
        const size_t first = 2 * node + 1;
        const size_t second = first + 1;
        const double toFirst = distanceTo(first);
        const double toSecond = distanceTo(second);
        const bool secondIsSooner = toSecond < toFirst
            || (toSecond == toFirst
                && toBorder(m_tree.m_nodes[second]) < toBorder(m_tree.m_nodes[first]));
        if (secondIsSooner && canGain(second, toSecond))
            visit(second, range.after());
        if (canGain(first, toFirst))
            visit(first, range.before());
        if (!secondIsSooner && canGain(second, toSecond))
            visit(second, range.after());
    }

    double distanceTo(size_t index) const
    {
        const Node& node = m_tree.m_nodes[index];
        const double dx = offsetFrom(node.minX, node.maxX, m_x);
        const double dy = offsetFrom(node.minY, node.maxY, m_y);
        const double toBox = dx * dx + dy * dy;
        // What is not a number leaves the other.
        return usesArcs() ? std::fmax(toBox, m_tree.m_arcs[index].leastDistance(m_x, m_y)) : toBox;
    }

    /// Where distances differ by less than their rounding, the closer bounds cost more than they
    /// spare.
    bool usesArcs() const
    {
        return !m_tree.m_arcs.empty() && m_leaves < m_tree.m_nodes.size() / 16;
    }

    bool canGain(size_t index, double distance)
    {
        const Node& node = m_tree.m_nodes[index];
        if (distance > m_nearest.distance || node.maxRank < m_beginRank
            || node.minRank >= m_endRank)
            return false;
        return distance < m_nearest.distance || (isFound() && canWinTie(node));
    }

    bool canWinTie(const Node& node)
    {
        findBorder();
        if (m_nearest.right < 0)
            return node.maxRank > m_nearest.left;
        return m_nearest.right != m_nearest.border && node.minRank < m_nearest.right
            && node.maxRank >= m_nearest.border;
    }

    /// How many ranks lie between the border and a subtree: the fewer, the sooner ties are won.
    int toBorder(const Node& node) const
    {
        if (m_nearest.border < 0)
            return 0;
        return std::max(node.minRank - m_nearest.border, m_nearest.border - 1 - node.maxRank);
    }

    void offer(const Site& site)
    {
        const double dx = site.x - m_x;
        const double dy = site.y - m_y;
        const double distance = dx * dx + dy * dy;
        if (distance == m_nearest.distance && isFound())
            findBorder();
        if (distance > m_nearest.distance || (distance == m_nearest.distance && !isFound()))
            return;
        if (distance < m_nearest.distance) {
            m_nearest.distance = distance;
            m_nearest.left = -1;
            m_nearest.right = -1;
        }
        const bool isRight = m_points ? site.x >= m_x : site.rank >= m_nearest.border;
        if (!isRight)
            m_nearest.left = std::max(m_nearest.left, site.rank);
        else if (m_nearest.right < 0 || site.rank < m_nearest.right)
            m_nearest.right = site.rank;
    }

    /// Those on either side of the border win every tie, so they are tried at once: where all
    /// points tie, nothing is left to do.
    void findBorder()
    {
        if (m_nearest.border >= 0)
            return;
        const DefPoint* const border = std::lower_bound(m_points, m_points + m_count, m_x,
            [](const DefPoint& point, double x) { return point.x < x; });
        m_nearest.border = static_cast<int>(border - m_points);
        const int first = std::max(m_nearest.border - 1, 0);
        const int end = std::min(m_nearest.border + 1, m_count);
        for (int rank = first; rank < end; ++rank)
            offer({ m_points[rank].x, m_points[rank].y, rank });
    }

    const PlaceTree& m_tree;
    double m_x;
    double m_y;
    const DefPoint* m_points = nullptr;
    int m_count = 0;
    int m_beginRank = 0;
    int m_endRank = std::numeric_limits<int>::max();
    size_t m_leaves = 0;
    Nearest m_nearest;
};

PlaceTree::PlaceTree(const DefPoint* points, int count)
{
    m_sites.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
        if (std::isfinite(points[i].x) && std::isfinite(points[i].y))
            m_sites.push_back({ points[i].x, points[i].y, i });
    }
    if (m_sites.empty())
        return;
    size_t leaves = 1;
    while (leaves * leafSize < m_sites.size())
        leaves *= 2;
    m_nodes.resize(2 * leaves - 1);
    build(0, all());
}

void PlaceTree::build(size_t index, Range range)
{
    Node& node = m_nodes[index];
    measure(node, range);
    if (isLeaf(index)) {
        const auto ranks = std::minmax_element(siteAt(range.begin), siteAt(range.end),
            [](const Site& a, const Site& b) { return a.rank < b.rank; });
        node.minRank = ranks.first->rank;
        node.maxRank = ranks.second->rank;
        return;
    }
    const bool splitsByY = node.maxY - node.minY > node.maxX - node.minX;
    std::nth_element(siteAt(range.begin), siteAt(range.middle()), siteAt(range.end),
        [splitsByY](const Site& a, const Site& b) { return splitsByY ? a.y < b.y : a.x < b.x; });
    const size_t first = 2 * index + 1;
    build(first, range.before());
    build(first + 1, range.after());
    node.minRank = std::min(m_nodes[first].minRank, m_nodes[first + 1].minRank);
    node.maxRank = std::max(m_nodes[first].maxRank, m_nodes[first + 1].maxRank);
}

void PlaceTree::measure(Node& node, Range range) const
{
    node.minX = node.maxX = m_sites[range.begin].x;
    node.minY = node.maxY = m_sites[range.begin].y;
    for (size_t i = range.begin + 1; i < range.end; ++i) {
        const Site& site = m_sites[i];
        node.minX = std::min(node.minX, site.x);
        node.maxX = std::max(node.maxX, site.x);
        node.minY = std::min(node.minY, site.y);
        node.maxY = std::max(node.maxY, site.y);
    }
}

/// The closer bounds are made when what searches have cost without them is as much as they cost.
void PlaceTree::countLeaves(size_t searched) const
{
    if (searched <= usualLeaves || !m_arcs.empty())
        return;
    m_leaves += searched;
    if (m_leaves < 2 * m_nodes.size())
        return;
    std::vector<ArcBound> arcs(m_nodes.size());
    bound(arcs, 0, all(), ArcBound());
    m_arcs = std::move(arcs);
}

void PlaceTree::bound(
    std::vector<ArcBound>& arcs, size_t index, Range range, const ArcBound& outer) const
{
    arcs[index] =
        ArcBound(&m_sites[range.begin], &m_sites[range.begin] + (range.end - range.begin), outer);
    if (isLeaf(index))
        return;
    bound(arcs, 2 * index + 1, range.before(), arcs[index]);
    bound(arcs, 2 * index + 2, range.after(), arcs[index]);
}

PlaceTree::Nearest PlaceTree::findSorted(
    const DefPoint* points, int count, double x, double y, double within) const
{
    Search search(*this, x, y, Nearest{ within });
    search.setSorted(points, count);
    return search.run();
}

PlaceTree::Nearest PlaceTree::findFirst(double x, double y, double within, int begin, int end) const
{
    Search search(*this, x, y, Nearest{ within, -1, -1, begin });
    search.setRanks(begin, end);
    return search.run();
}

PlaceTree::Nearest PlaceTree::findLast(double x, double y, double within, int begin, int end) const
{
    Search search(*this, x, y, Nearest{ within, -1, -1, end });
    search.setRanks(begin, end);
    return search.run();
}
