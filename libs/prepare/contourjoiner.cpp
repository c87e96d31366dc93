#include "prepare/contourjoiner.h"

#include <cmath>
#include <unordered_map>
#include <utility>

namespace prep {

namespace {

/// A square cell of the plane, on one layer.
struct Cell {
    double column;
    double row;
    std::string_view layer;

    bool operator==(const Cell& other) const
    {
        return column == other.column && row == other.row && layer == other.layer;
    }
};

struct CellHash {
    size_t operator()(const Cell& cell) const
    {
        const std::hash<double> hash;
        const size_t place = hash(cell.column) * 31 + hash(cell.row);
        return place * 31 + std::hash<std::string_view>()(cell.layer);
    }
};

} // namespace

/// Gives ends that meet the same node: an end takes the nearest node within the tolerance, or
/// becomes one.
class ContourJoiner::NodeFinder {
public:
    NodeFinder(double tolerance, std::deque<Node>& nodes)
        : m_tolerance(tolerance)
        , m_nodes(nodes)
    {
    }

    size_t find(std::string_view layer, const FlatVertex& end)
    {
        const double column = cellOf(end.x);
        const double row = cellOf(end.y);
        const Entry* nearest = nullptr;
        double least = m_tolerance;
        const int reach = m_tolerance > 0 ? 1 : 0;
        for (int i = -reach; i <= reach; ++i) {
            for (int k = -reach; k <= reach; ++k) {
                const auto [first, last] = m_cells.equal_range({ column + i, row + k, layer });
                for (auto it = first; it != last; ++it) {
                    const double distance = std::hypot(it->second.x - end.x, it->second.y - end.y);
                    if (distance > least || (nearest && distance == least))
                        continue;
                    nearest = &it->second;
                    least = distance;
                }
            }
        }
        if (nearest)
            return nearest->node;
        m_cells.insert({ { column, row, layer }, { end.x, end.y, m_nodes.size() } });
        m_nodes.emplace_back();
        return m_nodes.size() - 1;
    }

private:
    struct Entry {
        double x;
        double y;
        size_t node;
    };

    /// Nodes stand farther apart than the tolerance: few of them share a cell.
    double cellOf(double coordinate) const
    {
        return m_tolerance > 0 ? std::floor(coordinate / m_tolerance) : coordinate;
    }

    double m_tolerance;
    std::deque<Node>& m_nodes;
    std::unordered_multimap<Cell, Entry, CellHash> m_cells;
};

ContourJoiner::ContourJoiner(double tolerance, FlatSink& sink, PrepareReport& report)
    : m_tolerance(tolerance)
    , m_sink(sink)
    , m_report(report)
{
}

void ContourJoiner::takeContour(
    std::string_view layer, const std::vector<FlatVertex>& vertices, bool closed)
{
    Contour contour;
    contour.layer = layer;
    contour.first = m_vertices.size();
    contour.count = vertices.size();
    contour.state = closed ? State::Closed : State::Unknown;
    m_contours.push_back(contour);
    m_vertices.insert(m_vertices.end(), vertices.begin(), vertices.end());
}

void ContourJoiner::takePoint(std::string_view layer, const FlatVertex& place)
{
    m_sink.takePoint(layer, place);
}

void ContourJoiner::takeLabel(FlatLabel label)
{
    m_sink.takeLabel(std::move(label));
}

void ContourJoiner::finish()
{
    findNodes();
    std::vector<size_t> loop;
    for (size_t i = 0; i < m_contours.size(); ++i) {
        const State state = m_contours[i].state;
        if (state == State::Unknown && findLoop(i, loop))
            writeLoop(loop);
        else if (state != State::Written)
            write(m_contours[i]);
    }
}

void ContourJoiner::findNodes()
{
    NodeFinder finder(m_tolerance, m_nodes);
    for (size_t i = 0; i < m_contours.size(); ++i) {
        Contour& contour = m_contours[i];
        if (contour.state == State::Closed)
            continue;
        contour.startNode = finder.find(contour.layer, m_vertices[contour.first]);
        contour.endNode = finder.find(contour.layer, m_vertices[contour.first + contour.count - 1]);
        for (const size_t node : { contour.startNode, contour.endNode }) {
            if (m_nodes[node].degree < 2)
                m_nodes[node].contours[m_nodes[node].degree] = i;
            ++m_nodes[node].degree;
        }
    }
}

/// The contour that meets this one at a node where two ends meet.
size_t ContourJoiner::nextOf(size_t contour, size_t node) const
{
    const auto& contours = m_nodes[node].contours;
    return contours[0] == contour ? contours[1] : contours[0];
}

bool ContourJoiner::findLoop(size_t start, std::vector<size_t>& loop)
{
    loop.clear();
    size_t vertices = 0;
    size_t current = start;
    size_t node = m_contours[start].endNode;
    for (;;) {
        loop.push_back(current);
        vertices += m_contours[current].count - 1;
        if (m_nodes[node].degree != 2)
            break;
        current = nextOf(current, node);
        if (current == start)
            break;
        const Contour& next = m_contours[current];
        if (next.state != State::Unknown)
            break;
        node = next.startNode == node ? next.endNode : next.startNode;
    }
    const bool isLoop =
        node == m_contours[start].startNode && m_nodes[node].degree == 2 && vertices >= 3;
    // Nobody walks this way again.
    for (const size_t contour : loop)
        m_contours[contour].state = isLoop ? State::Written : State::Open;
    return isLoop;
}

void ContourJoiner::append(
    const Contour& contour, bool reversed, std::vector<FlatVertex>& vertices) const
{
    // The last vertex is the first one of what follows.
    for (size_t i = 0; i + 1 < contour.count; ++i)
        vertices.push_back(m_vertices[contour.first + (reversed ? contour.count - 1 - i : i)]);
}

void ContourJoiner::writeLoop(const std::vector<size_t>& loop)
{
    std::vector<FlatVertex> vertices;
    size_t node = m_contours[loop.front()].startNode;
    for (const size_t index : loop) {
        const Contour& contour = m_contours[index];
        const bool reversed = contour.startNode != node;
        append(contour, reversed, vertices);
        node = reversed ? contour.startNode : contour.endNode;
    }
    m_report.note(Note::Joined, static_cast<qint64>(loop.size()));
    m_sink.takeContour(m_contours[loop.front()].layer, vertices, true);
}

void ContourJoiner::write(const Contour& contour)
{
    const auto first = m_vertices.begin() + static_cast<std::ptrdiff_t>(contour.first);
    const std::vector<FlatVertex> vertices(
        first, first + static_cast<std::ptrdiff_t>(contour.count));
    m_sink.takeContour(contour.layer, vertices, contour.state == State::Closed);
}

} // namespace prep
