#include "geometry/nearestindex.h"

#include "geometry/pointorder.h"

NearestIndex::NearestIndex(const QVector<DefPoint>& points)
    : m_points(points)
{
    removeNan(m_points);
    m_tree = PlaceTree(m_points.constData(), m_points.size());
}

const DefPoint* NearestIndex::find(const QPointF& query) const
{
    const PlaceTree::Nearest nearest =
        m_tree.findSorted(m_points.constData(), m_points.size(), query.x(), query.y());
    const bool predecessorWins =
        nearest.left >= 0 && nearest.right != nearest.border && nearest.left == nearest.border - 1;
    const int index = nearest.right < 0 || predecessorWins ? nearest.left : nearest.right;
    return index < 0 ? nullptr : &m_points.at(index);
}
