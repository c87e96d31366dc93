#pragma once

#include "geometry/defpoint.h"
#include "geometry/nearestindex.h"
#include "geometry/pointsequence.h"

#include <QVector>

#include <optional>
#include <set>
#include <utility>
#include <vector>

/// Sorts points with the ordering of DefPoint. The order of points with equal coordinates is
/// unspecified, and so is the whole order where a coordinate is not a number.
void sortPoints(QVector<DefPoint>& points);

/// Keeps of each run of neighbouring points the first and drops those that coincide with it; the
/// designations are not compared.
void mergeCoincident(QVector<DefPoint>& points);

/// The catalogue of named points that gives the vertices of objects their designations.
///
/// Its answers are those of findNearestPoint over a vector kept sorted with the ordering of
/// DefPoint, to the last tie; but a search and an insertion cost the same whatever the number and
/// the layout of the points. Points are kept in the order in which they came and found through
/// a hash of square cells. Where many points share a cell, a k-d tree serves them. Ties between
/// equal distances are decided by an ordered set that is built when the first one is met. Once
/// a coordinate is not a number the order of points is lost: where a point is near, what that
/// vector would be is then searched step by step, at the cost of such a search.
class PointCatalogue {
public:
    PointCatalogue();

    /// Drops all points.
    void clear();
    bool isEmpty() const { return m_points.isEmpty(); }
    int size() const { return m_points.size(); }

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
    /// Adds a point that later searches find. To be called on an arranged catalogue.
    void insert(DefPoint point);

private:
    /// An entry of the hash table: the points of a cell as a chain through m_next.
    struct Slot {
        quint32 tag : 24;
        quint32 length : 8; ///< number of points, or the most that fits
        int head;
    };

    void giveUpOrder();
    void catchUp();
    void refineCells();
    void indexArranged();
    int addToCell(int index);
    int link(int index);
    bool isHalfFull() const;
    void rehash(size_t slotCount);
    Slot& slotOf(quint64 cell);
    void visitCell(quint64 cell, NearestSides& nearest);
    const DefPoint* bestOf(const NearestSides& nearest);
    const DefPoint* firstInOrder(const NearestSides& tie);

    QVector<DefPoint> m_points;
    int m_arranged = 0; ///< so many points at the front are sorted and merged
    bool m_hasNan = false;
    std::optional<PointSequence> m_sequence; ///< all points, once the order is lost

    int m_indexed = 0; ///< so many points at the front can be found
    NearestIndex m_arrangedIndex; ///< the arranged points, where they would crowd a cell
    int m_firstInCells = 0; ///< the points from here on are in the cells
    double m_cellsPerUnit;
    std::vector<Slot> m_slots; ///< open addressing; the size is a power of two
    size_t m_usedSlots = 0;
    std::vector<int> m_next; ///< for each point the next one of its cell, or -1

    using Place = std::pair<double, double>;
    std::set<Place> m_insertedPlaces; ///< in order; completed when a tie asks for it
    int m_ordered = 0; ///< so many points at the front are arranged or in m_insertedPlaces
};
