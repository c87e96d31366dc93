#include "prepare/dxfwriter.h"

#include "prepare/dxfencoding.h"
#include "prepare/plainnumber.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace prep {

bool DxfWriter::Label::operator<(const Label& other) const
{
    return std::tie(x, y, number) < std::tie(other.x, other.y, other.number);
}

DxfWriter::DxfWriter(QIODevice& out, const QByteArray& codec, PrepareReport& report)
    : m_out(out)
    , m_report(report)
{
    writeHeader(codec);
}

void DxfWriter::writeHeader(const QByteArray& codec)
{
    // Release 12 needs no tables. It knows no UTF-8, which came with Release 2007 (AC1021).
    m_out.pair(0, "SECTION");
    m_out.pair(2, "HEADER");
    m_out.pair(9, "$ACADVER");
    m_out.pair(1, codec == "UTF-8" ? "AC1021" : "AC1009");
    const QByteArray codePage = codePageOf(codec);
    if (!codePage.isEmpty()) {
        m_out.pair(9, "$DWGCODEPAGE");
        m_out.pair(3, codePage.constData());
    }
    m_out.pair(0, "ENDSEC");
    m_out.pair(0, "SECTION");
    m_out.pair(2, "ENTITIES");
}

void DxfWriter::number(int code, double value)
{
    m_out.pair(code, plainText(value));
}

void DxfWriter::place(int xCode, const FlatVertex& vertex)
{
    const auto coordinate = [this](int code, double value, std::string_view digits) {
        if (digits.empty())
            number(code, value);
        else
            m_out.pair(code, digits);
    };
    coordinate(xCode, vertex.x, vertex.xDigits);
    coordinate(xCode + 10, vertex.y, vertex.yDigits);
}

void DxfWriter::noteX(double x)
{
    m_leastX = m_isEmpty ? x : std::min(m_leastX, x);
    m_isEmpty = false;
}

void DxfWriter::start(std::string_view type, std::string_view layer)
{
    m_out.pair(0, type);
    m_out.pair(8, layer);
}

void DxfWriter::takeContour(std::string_view layer, const VertexRow& vertices, bool closed)
{
    ++m_report.contours;
    noteX(vertices.leastX());
    VertexCursor cursor = vertices.cursor();
    std::string_view x;
    std::string_view y;
    if (vertices.size() == 2 && !closed) {
        start("LINE", layer);
        for (int code = 10; cursor.next(x, y); ++code) {
            m_out.pair(code, x);
            m_out.pair(code + 10, y);
        }
        m_out.settle();
        return;
    }
    start("POLYLINE", layer);
    m_out.pair(66, "1");
    m_out.pair(70, closed ? "1" : "0");
    while (cursor.next(x, y)) {
        start("VERTEX", layer);
        m_out.pair(10, x);
        m_out.pair(20, y);
        m_out.settle();
    }
    start("SEQEND", layer);
    m_out.settle();
}

void DxfWriter::takePoint(std::string_view layer, const FlatVertex& vertex)
{
    const size_t before = m_out.size();
    start("POINT", layer);
    place(10, vertex);
    noteX(vertex.x);
    ++m_pointCount;
    const std::string_view kept = m_heap.add(m_out.cutFrom(before));
    // What stands side by side is written as one.
    const bool follows =
        !m_points.empty() && m_points.back().data() + m_points.back().size() == kept.data();
    if (follows)
        m_points.back() = { m_points.back().data(), m_points.back().size() + kept.size() };
    else
        m_points.push_back(kept);
}

void DxfWriter::takeLabel(const FlatLabel& label)
{
    const size_t before = m_out.size();
    writeLabel(label);
    if (m_labels.empty())
        m_firstLayer = label.layer;
    const std::string_view pairs = m_heap.add(m_out.cutFrom(before));
    m_labels.push_back({ label.place.x, label.place.y, pairs.data(),
        static_cast<uint32_t>(pairs.size()), static_cast<uint32_t>(m_labels.size()) });
}

size_t DxfWriter::heldSize() const
{
    return m_heap.size() + m_labels.size() * sizeof(Label)
        + m_points.size() * sizeof(std::string_view);
}

void DxfWriter::finish()
{
    std::sort(m_labels.begin(), m_labels.end());
    if (m_labels.empty())
        m_report.note(Note::PointsWithoutTexts, m_pointCount);
    else
        writePoints();
    for (const Label& label : m_labels) {
        m_out.text({ label.pairs, label.size });
        m_out.settle();
    }
    m_report.labels += static_cast<qint64>(m_labels.size());
    m_out.pair(0, "ENDSEC");
    m_out.pair(0, "EOF");
    m_out.flush();
}

void DxfWriter::writePoints()
{
    if (m_pointCount == 0)
        addPointAside();
    for (const std::string_view points : m_points) {
        m_out.text(points);
        m_out.settle();
    }
    m_report.points += m_pointCount;
}

/// A point to the left of everything names no vertex.
void DxfWriter::addPointAside()
{
    const Label& first = m_labels.front();
    const double left = m_isEmpty ? first.x : std::min(m_leastX, first.x);
    start("POINT", m_firstLayer);
    place(10, { std::floor(left) - 1, first.y, {}, {} });
    ++m_pointCount;
    m_report.note(Note::PointAdded);
}

void DxfWriter::writeLabel(const FlatLabel& label)
{
    // Texts that are aligned or fitted between two points (3 and 5) have but one here.
    const bool betweenPoints = label.horizontal == 3 || label.horizontal == 5;
    const int horizontal = betweenPoints ? 0 : label.horizontal;
    start("TEXT", label.layer);
    place(10, label.place);
    number(40, label.height);
    m_out.pair(1, label.text);
    if (label.rotation != 0)
        number(50, label.rotation);
    if (horizontal == 0 && label.vertical == 0)
        return;
    m_out.pair(72, std::to_string(horizontal));
    place(11, label.place);
    m_out.pair(73, std::to_string(label.vertical));
}

} // namespace prep
