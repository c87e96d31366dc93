#pragma once

#include "geometry/defpoint.h"
#include "geometry/placetree.h"

#include <QPointF>
#include <QVector>

#include <limits>
#include <map>
#include <optional>
#include <utility>
#include <vector>

/// Finds points among points in any order, as a search does that takes them for sorted by x.
///
/// Such a search starts at the point that halving finds for the query's x, tries it and the one
/// before it, then goes forward and then backward, each time up to the first point whose x alone
/// is farther away than the nearest point met so far. Of several points at the same distance the
/// one met first wins. On points that are sorted it finds what NearestIndex finds. A point with
/// a coordinate that is not a number is never found and takes no part in the search.
///
/// Where the search would go on for long, whole stretches are passed at once: those in which no
/// point can end it. That bounds the cost where many points share an x, stand in either order of
/// x or close in on the query from both sides; where x comes nearer with steps back in between,
/// the search still goes step by step.
class SequenceIndex {
public:
    SequenceIndex() = default;
    explicit SequenceIndex(const QVector<DefPoint>& points);

    /// The point that the search ends with, or null when it meets none at a finite squared
    /// distance less than the largest; the pointer is into points().
    const DefPoint* find(const QPointF& query) const;

    /// The points that can be found, in the order given.
    const QVector<DefPoint>& points() const { return m_points; }

private:
    class Walk;

    struct Span {
        double least = std::numeric_limits<double>::infinity();
        double greatest = -std::numeric_limits<double>::infinity();

        void add(const Span& other);
    };
    /// What is known of a stretch of neighbouring points.
    struct Stretch {
        double minX;
        double maxX;
        Span rises; ///< the middles of the steps to a greater x
        Span falls; ///< the middles of those to a lesser one
    };

    Stretch stretchOf(int begin, int end) const;
    static Stretch joined(const Stretch& before, const Stretch& after, double lastX, double firstX);
    void build(size_t node, int begin, int end);
    const PlaceTree& tree() const;
    const DefPoint* pointAt(int index) const { return index < 0 ? nullptr : &m_points.at(index); }

    QVector<DefPoint> m_points;
    std::vector<Stretch> m_stretches; ///< a heap of halves; empty where there are few points
    mutable std::optional<PlaceTree> m_tree; ///< made when a search first goes on for long
    mutable std::map<std::pair<double, double>, int> m_costly; ///< what was found after long
};
