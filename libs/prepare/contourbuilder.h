#pragma once

#include "prepare/chords.h"
#include "prepare/flatsink.h"

namespace prep {

/// Builds the vertices of a contour from the shapes of a drawing, in the coordinates of the result.
class ContourBuilder {
public:
    ContourBuilder(double tolerance, qint64 chordLimit, bool swapXY)
        : m_chords(tolerance, chordLimit)
        , m_swapXY(swapXY)
    {
    }

    /// Starts a new contour of shapes that `map` moves.
    void start(const Affine& map);

    /// Goes on with a boundary of edges; each of them may run either way.
    void appendEdge(std::vector<FlatVertex> edge);

    // What is appended follows what is there.
    void append(const PathShape& path);
    void append(const ConicShape& conic);
    /// False for a spline that cannot be drawn.
    bool append(const SplineShape& spline);

    /// The vertex at a place. Its digits are those of the drawing if nothing moves.
    FlatVertex vertex(const Place& place) const;
    FlatVertex vertex(const Planar& place) const;

    const std::vector<FlatVertex>& vertices() const { return m_vertices; }
    /// Whether all coordinates are numbers.
    bool isFinite() const;
    /// Gives the vertices away.
    std::vector<FlatVertex> takeVertices();

    /// Whether the contour has arcs of a path as chords.
    bool hasBulges() const { return m_hasBulges; }
    /// Whether a spline was drawn through its fit points.
    bool hasFitPoints() const { return m_hasFitPoints; }
    bool takeCoarse() { return m_chords.takeCoarse(); }

private:
    void appendPlaces();

    ChordMaker m_chords;
    bool m_swapXY;
    Affine m_map;
    std::vector<FlatVertex> m_vertices;
    std::vector<Planar> m_places;
    bool m_hasBulges = false;
    bool m_hasFitPoints = false;
};

} // namespace prep
