#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <string_view>
#include <vector>

namespace prep {

/// Where ends of contours meet. An end within the tolerance of a node belongs to the nearest one;
/// of nodes equally near to the first one.
class EndNodes {
public:
    struct Node {
        double x;
        double y;
        uint32_t next; ///< in the same bucket
        uint32_t contours[2]; ///< the first two that end here
        uint32_t degree; ///< how many ends meet
    };

    /// Tells the layer of a contour.
    using LayerOf = std::function<std::string_view(uint32_t contour)>;

    EndNodes(double tolerance, LayerOf layerOf);

    /// Makes room for so many ends.
    void reserve(size_t ends);
    /// Adds an end of a contour; gives the number of its node.
    uint32_t add(double x, double y, uint32_t contour);
    const Node& node(uint32_t number) const { return m_nodes[number]; }

private:
    uint32_t nearest(std::string_view layer, size_t layerHash, double x, double y) const;
    size_t bucketOf(double column, double row, size_t layerHash) const;
    double cellOf(double coordinate) const;

    double m_tolerance;
    LayerOf m_layerOf;
    uint64_t m_key; ///< nobody can write a file whose ends all fall into one bucket
    std::deque<Node> m_nodes;
    std::vector<uint32_t> m_buckets; ///< the last node of each
};

} // namespace prep
