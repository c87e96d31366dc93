#pragma once

#include "geometry/defpoint.h"
#include "geometry/placetree.h"
#include "geometry/pointcells.h"
#include "geometry/pointcolumns.h"
#include "geometry/pointorder.h"
#include "geometry/sortedruns.h"

#include <QVector>

/// The catalogue of named points that gives the vertices of objects their designations.
///
/// Its answers are those of a search for the nearest point in a vector that is kept sorted, to the
/// last tie (see NearestIndex); but a search and an insertion cost the same whatever the number
/// and the layout of the points. Points are kept in the order in which they came and found through
/// a hash of square cells; arranged points that would crowd a cell are found through columns, or
/// through a k-d tree where that would take long.
/// Which of two points at equal distances stands next to the place in the order of all is looked
/// up in sorted runs, which are filled when that is first asked. A point with a coordinate that is
/// not a number is never found and disturbs no other's order.
class PointCatalogue {
public:
    /// Drops all points.
    void clear();
    bool isEmpty() const { return m_points.isEmpty(); }
    int size() const { return m_points.size(); }

    /// Makes room for so many more points.
    void makeRoom(int count) { m_points.reserve(m_points.size() + count); }
    /// Adds a point without regard to order; to be followed by arrange().
    void append(const DefPoint& point) { m_points.append(point); }
    /// Sorts the points and merges those that coincide.
    void arrange();
    /// The point at `index`, zero-based: arranged points in their order, then the others as they
    /// came.
    const DefPoint& at(int index) const { return m_points.at(index); }
    /// Names the point at `index`; to be called before points are inserted.
    void setDef(int index, const QString& def) { m_points[index].def = def; }

    /// The point nearest to (x, y) if it coincides with that place, else null. The pointer holds
    /// until the next change of the catalogue.
    const DefPoint* findCoincident(double x, double y);
    /// So many places can be expected at once.
    static constexpr size_t mostExpected = PointCells::mostExpected;
    /// Has the memory fetched that findCoincident() will look at first; a moment later
    /// expectPoints(), given what came of it for `count` places, does so with the points that are
    /// there. Neither changes an answer.
    size_t expect(double x, double y) const
    {
        return m_columns.isEmpty() ? m_cells.expect(x, y) : m_columns.expect(x, y);
    }
    void expectPoints(const size_t* expected, size_t count) const
    {
        if (m_columns.isEmpty())
            m_cells.expectPoints(m_points.constData(), expected, count);
        else
            m_columns.expectPoints(m_points.constData(), expected, count);
    }
    /// Adds a point that later searches find. To be called on an arranged catalogue.
    void insert(DefPoint point);

private:
    struct Sides;

    void findInColumns(Sides& nearest);
    const DefPoint* firstInOrder(const Sides& tie);

    QVector<DefPoint> m_points;
    /// Freed now, between those of other points, they would leave holes that every later allocation
    /// meets.
    QVector<QString> m_mergedDefs;
    int m_arranged = 0; ///< so many points at the front are sorted and merged
    PointColumns m_columns; ///< the arranged points, where they would crowd a cell
    PlaceTree m_tree; ///< the same ones, from the first search on that the columns give up
    PointCells m_cells; ///< the other points
    SortedRuns m_order; ///< the points that are not arranged; completed when a tie asks for it
    int m_ordered = 0; ///< so many points at the front are arranged or in m_order
};
