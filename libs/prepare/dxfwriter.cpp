#include "prepare/dxfwriter.h"

#include "prepare/dxfencoding.h"
#include "prepare/plainnumber.h"

#include <algorithm>
#include <cmath>

namespace prep {

namespace {

bool isBefore(const FlatVertex& a, const FlatVertex& b)
{
    return a.x < b.x || (a.x == b.x && a.y < b.y);
}

} // namespace

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
    m_leastX = m_isEmpty ? vertex.x : std::min(m_leastX, vertex.x);
    m_isEmpty = false;
}

void DxfWriter::start(std::string_view type, std::string_view layer)
{
    m_out.settle();
    m_out.pair(0, type);
    m_out.pair(8, layer);
}

void DxfWriter::takeContour(
    std::string_view layer, const std::vector<FlatVertex>& vertices, bool closed)
{
    ++m_report.contours;
    if (vertices.size() == 2 && !closed) {
        start("LINE", layer);
        place(10, vertices[0]);
        place(11, vertices[1]);
        return;
    }
    start("POLYLINE", layer);
    m_out.pair(66, "1");
    m_out.pair(70, closed ? "1" : "0");
    for (const FlatVertex& vertex : vertices) {
        start("VERTEX", layer);
        place(10, vertex);
    }
    start("SEQEND", layer);
}

void DxfWriter::takePoint(std::string_view layer, const FlatVertex& place)
{
    m_points.push_back({ layer, place });
}

void DxfWriter::takeLabel(FlatLabel label)
{
    m_labels.push_back(std::move(label));
}

void DxfWriter::finish()
{
    std::stable_sort(m_labels.begin(), m_labels.end(),
        [](const FlatLabel& a, const FlatLabel& b) { return isBefore(a.place, b.place); });
    if (m_labels.empty())
        m_report.note(Note::PointsWithoutTexts, static_cast<qint64>(m_points.size()));
    else
        writePoints();
    for (const FlatLabel& label : m_labels)
        writeLabel(label);
    m_report.labels += static_cast<qint64>(m_labels.size());
    m_out.pair(0, "ENDSEC");
    m_out.pair(0, "EOF");
    m_out.flush();
}

void DxfWriter::writePoints()
{
    if (m_points.empty())
        addPointAside();
    for (const Point& point : m_points) {
        start("POINT", point.layer);
        place(10, point.place);
    }
    m_report.points += static_cast<qint64>(m_points.size());
}

/// A point to the left of everything names no vertex.
void DxfWriter::addPointAside()
{
    FlatVertex aside = m_labels.front().place;
    const double left = m_isEmpty ? aside.x : std::min(m_leastX, aside.x);
    aside.x = std::floor(left) - 1;
    aside.xDigits = {};
    m_points.push_back({ m_labels.front().layer, aside });
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
