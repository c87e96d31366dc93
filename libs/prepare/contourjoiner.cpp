#include "prepare/contourjoiner.h"

#include "prepare/plainnumber.h"

#include <algorithm>
#include <utility>

namespace prep {

namespace {

/// The last line of a text that ends with a line end, which is taken away.
std::string_view takeLastLine(std::string_view& text)
{
    const std::string_view lines = text.substr(0, text.size() - 1);
    const size_t before = lines.rfind('\n');
    const size_t start = before == std::string_view::npos ? 0 : before + 1;
    const std::string_view line = lines.substr(start);
    text = text.substr(0, start);
    return line;
}

FlatVertex vertexOf(std::string_view x, std::string_view y)
{
    return { toNumber(x).value_or(0), toNumber(y).value_or(0), x, y };
}

FlatVertex firstVertex(std::string_view text)
{
    std::string_view x;
    std::string_view y;
    VertexCursor(text).next(x, y);
    return vertexOf(x, y);
}

FlatVertex takeLastVertex(std::string_view& text)
{
    const std::string_view y = takeLastLine(text);
    const std::string_view x = takeLastLine(text);
    return vertexOf(x, y);
}

} // namespace

ContourJoiner::ContourJoiner(double tolerance, FlatSink& sink, PrepareReport& report)
    : m_sink(sink)
    , m_report(report)
    , m_nodes(tolerance, [this](uint32_t contour) { return m_contours[contour].layer(); })
{
}

void ContourJoiner::takeContour(std::string_view layer, const VertexRow& vertices, bool closed)
{
    const std::string_view text = m_heap.add(vertices.text());
    m_contours.push_back({ text.data(), layer.data(), static_cast<uint32_t>(text.size()),
        static_cast<uint32_t>(layer.size()), 0, 0,
        static_cast<uint8_t>(std::min<size_t>(vertices.size() - 1, 3)),
        closed ? State::Closed : State::Unknown });
}

size_t ContourJoiner::heldSize() const
{
    // A contour, its two nodes and their buckets.
    constexpr size_t contourSize = sizeof(Contour) + 2 * sizeof(EndNodes::Node) + 16;
    return m_heap.size() + m_contours.size() * contourSize + m_sink.heldSize();
}

void ContourJoiner::takePoint(std::string_view layer, const FlatVertex& place)
{
    m_sink.takePoint(layer, place);
}

void ContourJoiner::takeLabel(const FlatLabel& label)
{
    m_sink.takeLabel(label);
}

void ContourJoiner::finish()
{
    findNodes();
    std::vector<uint32_t> loop;
    for (uint32_t i = 0; i < m_contours.size(); ++i) {
        const State state = m_contours[i].state;
        if (state == State::Unknown && findLoop(i, loop))
            writeLoop(loop);
        else if (state != State::Written)
            write(m_contours[i]);
    }
}

void ContourJoiner::findNodes()
{
    const auto isOpen = [](const Contour& contour) { return contour.state != State::Closed; };
    const auto open = std::count_if(m_contours.begin(), m_contours.end(), isOpen);
    m_nodes.reserve(2 * static_cast<size_t>(open));
    for (uint32_t i = 0; i < m_contours.size(); ++i) {
        Contour& contour = m_contours[i];
        if (!isOpen(contour))
            continue;
        std::string_view text = contour.vertices();
        const FlatVertex start = firstVertex(text);
        const FlatVertex end = takeLastVertex(text);
        contour.startNode = m_nodes.add(start.x, start.y, i);
        contour.endNode = m_nodes.add(end.x, end.y, i);
    }
}

/// The contour that meets this one at a node where two ends meet.
uint32_t ContourJoiner::nextOf(uint32_t contour, uint32_t node) const
{
    const auto& contours = m_nodes.node(node).contours;
    return contours[0] == contour ? contours[1] : contours[0];
}

bool ContourJoiner::findLoop(uint32_t start, std::vector<uint32_t>& loop)
{
    loop.clear();
    size_t segments = 0;
    uint32_t current = start;
    uint32_t node = m_contours[start].endNode;
    for (;;) {
        loop.push_back(current);
        segments += m_contours[current].segments;
        if (m_nodes.node(node).degree != 2)
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
        node == m_contours[start].startNode && m_nodes.node(node).degree == 2 && segments >= 3;
    // Nobody walks this way again.
    for (const uint32_t contour : loop)
        m_contours[contour].state = isLoop ? State::Written : State::Open;
    return isLoop;
}

/// Appends all vertices but the last one, which is the first one of what follows.
void ContourJoiner::append(const Contour& contour, bool reversed)
{
    std::string_view text = contour.vertices();
    if (reversed) {
        for (FlatVertex vertex = takeLastVertex(text); !text.empty(); vertex = takeLastVertex(text))
            m_row.append(vertex);
        return;
    }
    takeLastVertex(text);
    VertexCursor cursor(text);
    std::string_view x;
    std::string_view y;
    while (cursor.next(x, y))
        m_row.append(vertexOf(x, y));
}

void ContourJoiner::writeLoop(const std::vector<uint32_t>& loop)
{
    m_row.clear();
    uint32_t node = m_contours[loop.front()].startNode;
    for (const uint32_t index : loop) {
        const Contour& contour = m_contours[index];
        const bool reversed = contour.startNode != node;
        append(contour, reversed);
        node = reversed ? contour.startNode : contour.endNode;
    }
    m_report.note(Note::Joined, static_cast<qint64>(loop.size()));
    m_sink.takeContour(m_contours[loop.front()].layer(), m_row, true);
}

void ContourJoiner::write(const Contour& contour)
{
    m_row.clear();
    VertexCursor cursor(contour.vertices());
    std::string_view x;
    std::string_view y;
    while (cursor.next(x, y))
        m_row.append(vertexOf(x, y));
    m_sink.takeContour(contour.layer(), m_row, contour.state == State::Closed);
}

} // namespace prep
