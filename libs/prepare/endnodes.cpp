#include "prepare/endnodes.h"

#include <QRandomGenerator>

#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace prep {

namespace {

constexpr uint32_t none = std::numeric_limits<uint32_t>::max();

/// The finalizer of splitmix64 (S. Vigna, public domain): each bit of the result depends on all.
uint64_t mixed(uint64_t value)
{
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    return value ^ (value >> 31);
}

uint64_t bitsOf(double value)
{
    value += 0.0; // one zero for both
    uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    return bits;
}

} // namespace

EndNodes::EndNodes(double tolerance, LayerOf layerOf)
    : m_tolerance(tolerance)
    , m_layerOf(std::move(layerOf))
    , m_key(QRandomGenerator::global()->generate64())
    , m_buckets(1, none)
{
}

void EndNodes::reserve(size_t ends)
{
    size_t count = 1;
    while (count < ends)
        count *= 2;
    m_buckets.assign(count, none);
}

double EndNodes::cellOf(double coordinate) const
{
    return m_tolerance > 0 ? std::floor(coordinate / m_tolerance) : coordinate;
}

size_t EndNodes::bucketOf(double column, double row, size_t layerHash) const
{
    const uint64_t hash = mixed(mixed(mixed(bitsOf(column) ^ m_key) ^ bitsOf(row)) ^ layerHash);
    return hash & (m_buckets.size() - 1);
}

uint32_t EndNodes::nearest(std::string_view layer, size_t layerHash, double x, double y) const
{
    // Nodes stand farther apart than the tolerance: few of them share a cell.
    const int reach = m_tolerance > 0 ? 1 : 0;
    uint32_t found = none;
    double least = m_tolerance;
    for (int i = -reach; i <= reach; ++i) {
        for (int k = -reach; k <= reach; ++k) {
            uint32_t number = m_buckets[bucketOf(cellOf(x) + i, cellOf(y) + k, layerHash)];
            for (; number != none; number = m_nodes[number].next) {
                const Node& node = m_nodes[number];
                const double distance = std::hypot(node.x - x, node.y - y);
                if (distance > least || (found != none && distance == least && number > found)
                    || m_layerOf(node.contours[0]) != layer)
                    continue;
                found = number;
                least = distance;
            }
        }
    }
    return found;
}

uint32_t EndNodes::add(double x, double y, uint32_t contour)
{
    const std::string_view layer = m_layerOf(contour);
    const size_t layerHash = std::hash<std::string_view>()(layer);
    uint32_t number = nearest(layer, layerHash, x, y);
    if (number == none) {
        number = static_cast<uint32_t>(m_nodes.size());
        uint32_t& bucket = m_buckets[bucketOf(cellOf(x), cellOf(y), layerHash)];
        m_nodes.push_back({ x, y, bucket, { 0, 0 }, 0 });
        bucket = number;
    }
    Node& node = m_nodes[number];
    if (node.degree < 2)
        node.contours[node.degree] = contour;
    ++node.degree;
    return number;
}

} // namespace prep
