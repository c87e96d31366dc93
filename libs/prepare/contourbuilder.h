#pragma once

#include "prepare/chords.h"
#include "prepare/vertexrow.h"

#include <optional>

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

    // What is appended follows what is there.
    void append(const PathShape& path);
    void append(const ConicShape& conic);
    /// False for a spline that cannot be drawn.
    bool append(const SplineShape& spline);

    /// Goes on with an edge of a boundary, which may run either way unless it is the whole of it.
    /// False for one that cannot be drawn.
    bool appendEdge(const HatchEdge& edge);

    /// The vertex at a place. Its digits are those of the drawing if nothing moves.
    FlatVertex vertex(const Place& place) const;

    const VertexRow& vertices() const { return m_vertices; }

    /// Whether the contour has arcs of a path as chords.
    bool hasBulges() const { return m_hasBulges; }
    /// Whether a spline was drawn through its fit points.
    bool hasFitPoints() const { return m_hasFitPoints; }
    bool takeCoarse() { return m_chords.takeCoarse(); }

private:
    bool appendShape(const HatchEdge& shape);
    FlatVertex vertex(const Planar& place) const;
    void put(const FlatVertex& vertex);
    void putPlaces();

    ChordMaker m_chords;
    bool m_swapXY;
    Affine m_map;
    VertexRow m_vertices;
    std::optional<FlatVertex> m_last; ///< the end of the last edge
    std::vector<FlatVertex> m_edge; ///< that is being built
    bool m_inEdge = false;
    std::vector<Planar> m_places;
    bool m_hasBulges = false;
    bool m_hasFitPoints = false;
};

} // namespace prep
