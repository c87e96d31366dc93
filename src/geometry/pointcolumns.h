#pragma once

#include "geometry/defpoint.h"

#include <cmath>
#include <cstddef>
#include <vector>

/// Finds the nearest of sorted points that do not change, however close together they stand.
///
/// The points are those of the caller's sequence, known by their indices.
/// Slices of the order, equally many points each, are columns of the plane; in a column the points
/// are ordered by y and found through buckets of equal height. So neither the extent of the points
/// nor how evenly they are spread matters much. A search is given up where too many points are
/// about equally near, or too many columns: what it costs at most does not depend on the layout.
class PointColumns {
public:
    PointColumns() = default;
    /// Of `count` points, sorted by x, no two of which stand at one place. Those with a coordinate
    /// that is not finite are left out.
    PointColumns(const DefPoint* points, int count);

    bool isEmpty() const { return m_columns.empty(); }

    /// Calls `offer` with the index of each point at the smallest squared distance from (x, y), and
    /// with some of those met before it. Looked for are points at no more than the squared distance
    /// `within`. False where the search was given up; what was offered says nothing then.
    template <typename Offer>
    bool findNearest(const DefPoint* points, double x, double y, double within, Offer offer) const;

    /// Has the memory fetched that findNearest() will look at first; with what it gives for `count`
    /// places, expectPoints() does so with the points that are there.
    size_t expect(double x, double y) const;
    void expectPoints(const DefPoint* points, const size_t* expected, size_t count) const;

private:
    /// The parts of equal size of a range, by their numbers: of two values, the greater one is
    /// never in a lower part, whatever the rounding. What is out of the range is in the outermost.
    class Parts {
    public:
        Parts() = default;
        Parts(double least, double greatest, size_t count);
        size_t operator()(double value) const
        {
            const double part = (value - m_least) * m_partsPerUnit;
            if (!(part > 0))
                return 0;
            return part < m_last ? static_cast<size_t>(part) : static_cast<size_t>(m_last);
        }

    private:
        double m_least = 0;
        double m_partsPerUnit = 0;
        double m_last = 0;
    };
    struct Column {
        double minX;
        double maxX;
        Parts buckets;
        size_t begin; ///< of its points in m_indices, and of its buckets, which are as many
        size_t end;
    };
    /// The squared distance to which a search is narrowed that has nothing else to find.
    static constexpr double nothingElse = -1;
    /// Whether no two points, one of them at this place, are at the squared distance 0. Very close
    /// to an axis the squares of distances may vanish.
    static bool standsAlone(double x, double y)
    {
        constexpr double nearAxis = 1e-100;
        return std::abs(x) > nearAxis && std::abs(y) > nearAxis;
    }
    /// One search: the smallest distance so far, and the steps that are left.
    struct Search {
        double x;
        double y;
        double distance; ///< squared
        int steps;
    };

    void addColumn(const DefPoint* points, size_t begin, size_t end);
    void guideToColumns();
    size_t columnAt(double x) const;
    size_t bucketAt(const Column& column, double y) const
    {
        return column.begin + column.buckets(y);
    }
    size_t startOf(const DefPoint* points, const Column& column, double x, double y) const;
    template <typename Offer>
    bool searchColumn(
        const DefPoint* points, const Column& column, Search& search, Offer& offer) const;

    std::vector<int> m_indices; ///< column by column, in each by y, then x
    std::vector<int> m_buckets; ///< where in m_indices each begins; behind the last one, their end
    std::vector<Column> m_columns;
    Parts m_guide; ///< by minX
    std::vector<int> m_guided; ///< where in m_columns each part of the guide begins, and their end
};

template <typename Offer>
bool PointColumns::findNearest(
    const DefPoint* points, double x, double y, double within, Offer offer) const
{
    // Beyond this a tree is quicker.
    constexpr int mostSteps = 128;
    Search search{ x, y, within, mostSteps };
    const size_t middle = columnAt(x);
    for (size_t i = middle; i < m_columns.size(); ++i) {
        const double dx = m_columns[i].minX - x;
        if (i > middle && dx * dx > search.distance)
            break;
        if (!searchColumn(points, m_columns[i], search, offer))
            return false;
    }
    for (size_t i = middle; i-- > 0;) {
        const double dx = m_columns[i].maxX - x;
        if (dx * dx > search.distance)
            break;
        if (!searchColumn(points, m_columns[i], search, offer))
            return false;
    }
    return true;
}

template <typename Offer>
bool PointColumns::searchColumn(
    const DefPoint* points, const Column& column, Search& search, Offer& offer) const
{
    const auto visit = [&](size_t position, double direction) {
        const int index = m_indices[position];
        const double dy = points[index].y - search.y;
        const double distance = squaredDistance(points[index], search.x, search.y);
        if (distance <= search.distance) {
            search.distance = distance;
            offer(index);
            if (distance == 0 && standsAlone(search.x, search.y))
                search.distance = nothingElse;
        } else if (dy * direction > 0 && dy * dy > search.distance) {
            return false;
        }
        return --search.steps > 0 && search.distance >= 0;
    };
    --search.steps;
    const size_t start = startOf(points, column, search.x, search.y);
    for (size_t i = start; i < column.end && visit(i, 1); ++i) { }
    for (size_t i = start; search.distance >= 0 && i > column.begin && visit(i - 1, -1); --i) { }
    return search.steps > 0;
}
