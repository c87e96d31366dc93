#pragma once

#include "prepare/flatsink.h"
#include "prepare/preparereport.h"

#include <cstddef>
#include <deque>

namespace prep {

/// Joins open contours of one layer that meet end to end into closed ones, before they go to
/// another sink.
///
/// Only simple loops are joined: rows of contours in which each end meets exactly one other one.
/// Where three or more ends meet nothing says which belong together, and all stay as they are. A
/// loop stands where its first contour stood, the rest keeps its order.
class ContourJoiner : public FlatSink {
public:
    /// Ends meet within `tolerance`. Contours are kept until finish().
    ContourJoiner(double tolerance, FlatSink& sink, PrepareReport& report);

    void takeContour(
        std::string_view layer, const std::vector<FlatVertex>& vertices, bool closed) override;
    void takePoint(std::string_view layer, const FlatVertex& place) override;
    void takeLabel(FlatLabel label) override;

    void finish();

private:
    enum class State {
        Unknown,
        Closed, ///< was closed as it came
        Open, ///< belongs to no loop
        Written, ///< as a part of a loop
    };
    struct Contour {
        std::string_view layer;
        size_t first = 0; ///< of its vertices
        size_t count = 0;
        State state = State::Unknown;
        size_t startNode = 0;
        size_t endNode = 0;
    };
    struct Node {
        size_t contours[2] = { 0, 0 };
        size_t degree = 0; ///< how many ends meet
    };
    class NodeFinder;

    void findNodes();
    bool findLoop(size_t start, std::vector<size_t>& loop);
    size_t nextOf(size_t contour, size_t node) const;
    void writeLoop(const std::vector<size_t>& loop);
    void append(const Contour& contour, bool reversed, std::vector<FlatVertex>& vertices) const;
    void write(const Contour& contour);

    double m_tolerance;
    FlatSink& m_sink;
    PrepareReport& m_report;
    std::deque<FlatVertex> m_vertices;
    std::deque<Contour> m_contours;
    std::deque<Node> m_nodes;
};

} // namespace prep
