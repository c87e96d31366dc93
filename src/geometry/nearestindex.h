#pragma once

#include "geometry/defpoint.h"

#include <QPointF>
#include <QVector>

#include <limits>
#include <vector>

/// The points at the smallest distance met so far, reduced to the two that can win a tie: of those
/// at or right of the query's x the first in the order of points, of those left of it the last.
struct NearestSides {
    double x;
    double y;
    /// Only points at this squared distance or nearer are of interest.
    double distance = std::numeric_limits<double>::max();
    const DefPoint* left = nullptr;
    const DefPoint* right = nullptr;

    /// Takes `point` into account; points may come in any order.
    void offer(const DefPoint& point) { offer(point, point); }

    /// Takes into account points at one place, of which `first` and `last` are the outermost in
    /// the order of points.
    void offer(const DefPoint& first, const DefPoint& last)
    {
        const double d = squaredDistance(first, x, y);
        if (!(d <= distance) || !(d < std::numeric_limits<double>::max()))
            return;
        if (d < distance) {
            distance = d;
            left = nullptr;
            right = nullptr;
        }
        if (first.x >= x) {
            if (!right || first < *right)
                right = &first;
        } else if (!left || *left < last) {
            left = &last;
        }
    }

    bool isTie() const { return left && right; }
    /// The nearest point when there is no tie between the sides; may be null.
    const DefPoint* single() const { return right ? right : left; }
};

/// Finds nearest points among points that do not change, with the answers of findNearestPoint at
/// a cost that grows with the logarithm of their number and with the number of places at exactly
/// the smallest distance.
///
/// A k-d tree over the distinct places. Points with a coordinate that is not a number leave no
/// order to rely on: all queries then go to findNearestPoint itself.
class NearestIndex {
public:
    NearestIndex() = default;
    /// `points` must be sorted with the ordering of DefPoint.
    explicit NearestIndex(const QVector<DefPoint>& points);

    /// What findNearestPoint returns for these points; the pointer is into points().
    const DefPoint* find(const QPointF& query) const;

    /// Offers to `nearest` all points that could be the nearest one.
    void collect(NearestSides& nearest) const;

    /// The points as given.
    const QVector<DefPoint>& points() const { return m_points; }

private:
    /// All points that have the same coordinates: a run of the sorted points.
    struct Site {
        double x;
        double y;
        int first;
        int last;
    };
    /// A half-open range of m_sites that is one subtree.
    struct Range {
        size_t begin;
        size_t end;
        size_t size() const { return end - begin; }
        size_t middle() const { return begin + size() / 2; }
    };

    void collectSites();
    void build(Range range);
    void offerSite(const Site& site, NearestSides& nearest) const;
    void visit(Range range, NearestSides& nearest) const;

    QVector<DefPoint> m_points;
    std::vector<Site> m_sites;
    std::vector<bool> m_splitsByY; ///< for the middle site of a subtree: the axis that it splits
    bool m_hasNan = false;
};
