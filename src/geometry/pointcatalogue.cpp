#include "geometry/pointcatalogue.h"

#include <algorithm>
#include <cmath>
#include <utility>

/// The points at the smallest distance met so far, reduced to the two that can win a tie: of those
/// at or right of the place's x the first in the order of points, of those left of it the last.
struct PointCatalogue::Sides {
    double x;
    double y;
    double distance = 2 * PointCells::reach * PointCells::reach; ///< squared
    const DefPoint* left = nullptr;
    const DefPoint* right = nullptr;

    /// Takes `point` into account; points may come in any order.
    void offer(const DefPoint& point)
    {
        const double d = squaredDistance(point, x, y);
        if (!(d <= distance))
            return;
        if (d < distance) {
            distance = d;
            left = nullptr;
            right = nullptr;
        }
        if (point.x >= x) {
            if (!right || point < *right)
                right = &point;
        } else if (!left || *left < point) {
            left = &point;
        }
    }
};

void PointCatalogue::clear()
{
    *this = PointCatalogue();
}

void PointCatalogue::arrange()
{
    QVector<DefPoint> points = std::move(m_points);
    clear();
    sortPoints(points);
    m_mergedDefs = mergeCoincident(points);
    m_points = std::move(points);
    m_arranged = static_cast<int>(
        std::find_if(m_points.cbegin(), m_points.cend(), hasNan) - m_points.cbegin());
    m_ordered = m_arranged;
    if (m_cells.add(m_points, m_arranged))
        return;
    m_columns = PointColumns(m_points.constData(), m_arranged);
    m_cells.startAt(m_arranged);
}

void PointCatalogue::insert(DefPoint point)
{
    m_points.append(std::move(point));
    m_cells.add(m_points, m_points.size());
}

const DefPoint* PointCatalogue::findCoincident(double x, double y)
{
    if (!std::isfinite(x) || !std::isfinite(y))
        return nullptr;

    Sides nearest{ x, y };
    if (!m_columns.isEmpty())
        findInColumns(nearest);
    m_cells.visitNear(x, y, [&](int index) { nearest.offer(m_points.at(index)); });

    const bool isTie = nearest.left && nearest.right;
    const DefPoint* point =
        isTie ? firstInOrder(nearest) : (nearest.right ? nearest.right : nearest.left);
    return point && coincide(point->x, point->y, x, y) ? point : nullptr;
}

/// Offers the nearest of the arranged points.
void PointCatalogue::findInColumns(Sides& nearest)
{
    const DefPoint* const points = m_points.constData();
    Sides found = nearest;
    if (m_columns.findNearest(points, found.x, found.y, found.distance,
            [&](int index) { found.offer(points[index]); })) {
        nearest = found;
        return;
    }
    if (m_tree.isEmpty())
        m_tree = PlaceTree(points, m_arranged);
    const PlaceTree::Nearest arranged =
        m_tree.findSorted(points, m_arranged, nearest.x, nearest.y, nearest.distance);
    for (const int index : { arranged.left, arranged.right }) {
        if (index >= 0)
            nearest.offer(points[index]);
    }
}

const DefPoint* PointCatalogue::firstInOrder(const Sides& tie)
{
    m_order.add(m_points, m_ordered, m_points.size());
    m_ordered = m_points.size();

    bool rightIsNext = true;
    bool leftIsNext = true;
    const auto visit = [&](const DefPoint* before, const DefPoint* after) {
        rightIsNext = rightIsNext && !(after && *after < *tie.right);
        leftIsNext = leftIsNext && !(before && *tie.left < *before);
    };
    const auto begin = m_points.cbegin();
    const auto end = begin + m_arranged;
    const auto border = std::lower_bound(
        begin, end, tie.x, [](const DefPoint& point, double x) { return point.x < x; });
    visit(border == begin ? nullptr : &*(border - 1), border == end ? nullptr : &*border);
    m_order.visitBorders(m_points, tie.x, visit);
    return leftIsNext && !rightIsNext ? tie.left : tie.right;
}
