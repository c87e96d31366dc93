#pragma once

#include "geometry/arcbound.h"
#include "geometry/defpoint.h"
#include "geometry/site.h"

#include <cstddef>
#include <limits>
#include <map>
#include <tuple>
#include <vector>

/// A k-d tree over the places of points that do not change.
///
/// A point is known by its rank, its index in the sequence that the tree was built from. Each
/// subtree knows the least and the greatest rank in it, so that of many points at exactly the
/// smallest distance only those are looked at that can still win the tie. Where the boxes of the
/// subtrees leave too many in question, each gets a closer bound; so a search may change the tree,
/// and two may not run at a time.
class PlaceTree {
public:
    /// The points at the smallest distance, reduced to the outermost two towards a border in the
    /// order of ranks.
    struct Nearest {
        /// The squared distance. At first only points nearer than this are looked for.
        double distance = std::numeric_limits<double>::max();
        int left = -1; ///< the last one before the border, or -1
        int right = -1; ///< the first one at or behind the border, or -1
        int border = -1; ///< in sorted points known only where several were equally near
    };

    PlaceTree() = default;
    /// Points with a coordinate that is not finite are never found.
    PlaceTree(const DefPoint* points, int count);

    bool isEmpty() const { return m_sites.empty(); }

    /// The points nearest to (x, y) among those at less than the squared distance `within`.
    /// `points` are those that the tree was built from and sorted; the border lies before the
    /// first of them that is not left of x. `left` is complete where there is no `right`, or where
    /// it stands directly before the border.
    Nearest findSorted(const DefPoint* points, int count, double x, double y,
        double within = std::numeric_limits<double>::max()) const;

    /// Of the points with the ranks from `begin` to before `end` that are nearest to (x, y), at
    /// less than the squared distance `within`, the one of the least rank as `right`.
    Nearest findFirst(double x, double y, double within, int begin, int end) const;
    /// The one of the greatest rank, as `left`.
    Nearest findLast(double x, double y, double within, int begin, int end) const;

private:
    class Search;
    /// x, y, the distance within, the border, the ranks from and before which.
    using Question = std::tuple<double, double, double, int, int, int>;

    /// The bounds of a subtree.
    struct Node {
        double minX;
        double maxX;
        double minY;
        double maxY;
        int minRank;
        int maxRank;
    };
    /// A half-open range of m_sites that is one subtree.
    struct Range {
        size_t begin;
        size_t end;
        size_t middle() const { return begin + (end - begin) / 2; }
        Range before() const { return { begin, middle() }; }
        Range after() const { return { middle(), end }; }
    };

    Range all() const { return { 0, m_sites.size() }; }
    bool isLeaf(size_t node) const { return node >= m_nodes.size() / 2; }
    std::vector<Site>::iterator siteAt(size_t position)
    {
        return m_sites.begin() + static_cast<std::ptrdiff_t>(position);
    }
    void build(size_t index, Range range);
    void measure(Node& node, Range range) const;

    void countLeaves(size_t searched) const;
    void bound(std::vector<ArcBound>& arcs, size_t index, Range range, const ArcBound& outer) const;

    std::vector<Site> m_sites;
    std::vector<Node> m_nodes; ///< as in a heap: the children of node n are 2n + 1 and 2n + 2
    mutable std::vector<ArcBound> m_arcs; ///< one for each node, once searches have been costly
    mutable size_t m_leaves = 0; ///< that were searched beyond what is usual
    mutable std::map<Question, Nearest> m_costly; ///< the answers that took long
};
