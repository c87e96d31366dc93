#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace prep {

/// Where ends of contours meet. An end within the tolerance of a node belongs to the nearest one;
/// of nodes equally near to the first one.
class EndNodes {
public:
    struct Node {
        double x;
        double y;
        uint32_t layer;
        uint32_t next; ///< in the same bucket
        uint32_t contours[2]; ///< the first two that end here
        uint32_t degree; ///< how many ends meet
    };

    explicit EndNodes(double tolerance);

    /// Makes room for so many ends.
    void reserve(size_t ends);
    /// Adds an end of a contour; gives the number of its node.
    uint32_t add(uint32_t layer, double x, double y, uint32_t contour);
    const Node& node(uint32_t number) const { return m_nodes[number]; }

private:
    uint32_t nearest(uint32_t layer, double x, double y) const;
    size_t bucketOf(double column, double row, uint32_t layer) const;
    double cellOf(double coordinate) const;

    double m_tolerance;
    uint64_t m_key; ///< nobody can write a file whose ends all fall into one bucket
    std::deque<Node> m_nodes;
    std::vector<uint32_t> m_buckets; ///< the last node of each
};

} // namespace prep
