#pragma once

#include "prepare/endnodes.h"
#include "prepare/flatsink.h"
#include "prepare/preparereport.h"
#include "prepare/textheap.h"

#include <deque>
#include <string_view>
#include <vector>

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

    void takeContour(std::string_view layer, const VertexRow& vertices, bool closed) override;
    void takePoint(std::string_view layer, const FlatVertex& place) override;
    void takeLabel(const FlatLabel& label) override;
    size_t heldSize() const override;

    void finish();

private:
    enum class State : uint8_t {
        Unknown,
        Closed, ///< was closed as it came
        Open, ///< belongs to no loop
        Written, ///< as a part of a loop
    };
    /// There may be one for every few bytes of a file, so it is kept small.
    struct Contour {
        const char* text; ///< of its vertices
        const char* layerName;
        uint32_t textSize;
        uint32_t layerSize;
        uint32_t startNode = 0;
        uint32_t endNode = 0;
        uint8_t segments; ///< up to three; more makes no difference
        State state;

        std::string_view vertices() const { return { text, textSize }; }
        std::string_view layer() const { return { layerName, layerSize }; }
    };
    void findNodes();
    bool findLoop(uint32_t start, std::vector<uint32_t>& loop);
    uint32_t nextOf(uint32_t contour, uint32_t node) const;
    void writeLoop(const std::vector<uint32_t>& loop);
    void append(const Contour& contour, bool reversed);
    void write(const Contour& contour);

    FlatSink& m_sink;
    PrepareReport& m_report;
    TextHeap m_heap;
    std::deque<Contour> m_contours;
    EndNodes m_nodes;
    VertexRow m_row; ///< that is handed on
};

} // namespace prep
