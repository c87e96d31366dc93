#pragma once

#include "geometry/defpoint.h"

#include <QVector>

#include <cstddef>
#include <vector>

/// The order of points that come one by one, for searches between their coming.
///
/// The points are those of the caller's vector, known by their indices: four bytes a point. They
/// stand in sorted runs, each at least twice as long as the next, so that there are few of them
/// and a point is merged into a longer one only a few times.
class SortedRuns {
public:
    /// Adds the points from `points[begin]` to before `points[end]`.
    void add(const QVector<DefPoint>& points, int begin, int end);

    /// Calls `visit` for each run with its last point left of `x` and its first one that is not;
    /// either may be null.
    template <typename Visit>
    void visitBorders(const QVector<DefPoint>& points, double x, Visit visit) const
    {
        for (size_t run = 0; run < m_starts.size(); ++run) {
            const Run range = rangeOf(run);
            const size_t border = borderIn(points, range, x);
            visit(border > range.begin ? &pointAt(points, border - 1) : nullptr,
                border < range.end ? &pointAt(points, border) : nullptr);
        }
    }

private:
    /// A half-open range of m_indices.
    struct Run {
        size_t begin;
        size_t end;
        size_t size() const { return end - begin; }
    };

    Run rangeOf(size_t run) const;
    const DefPoint& pointAt(const QVector<DefPoint>& points, size_t position) const
    {
        return points.at(m_indices[position]);
    }
    size_t borderIn(const QVector<DefPoint>& points, Run range, double x) const;

    std::vector<int> m_indices;
    std::vector<size_t> m_starts; ///< where in m_indices each run begins
};
