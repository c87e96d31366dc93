#include "plan/plancanvas.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr double lineWidth = 1.2;

/// By its attributes drawing programs know a group for a layer.
const QString inkscape = QStringLiteral("http://www.inkscape.org/namespaces/inkscape");

QPainterPath painterPath(const QVector<QPolygonF>& polygons)
{
    QPainterPath path;
    for (const QPolygonF& polygon : polygons)
        path.addPolygon(polygon);
    return path;
}

/// Whether a ring is large enough for its area to be seen beside its line.
bool isFilledFast(const QPolygonF& ring)
{
    constexpr double least = 24;
    const QRectF box = ring.boundingRect();
    return std::max(box.width(), box.height()) >= least;
}

/// Appends a number with two decimals.
void appendNumber(QString& text, double value)
{
    constexpr double most = 1e6;
    if (!(std::abs(value) < most)) {
        text += QString::number(value, 'f', 2);
        return;
    }
    qint64 hundredths = std::llround(value * 100);
    if (hundredths < 0)
        text += QLatin1Char('-');
    hundredths = std::abs(hundredths);
    std::array<QChar, 12> digits;
    size_t start = digits.size();
    for (int count = 0; count < 3 || hundredths > 0; ++count) {
        digits[--start] = QLatin1Char(static_cast<char>('0' + hundredths % 10));
        hundredths /= 10;
        if (count == 1)
            digits[--start] = QLatin1Char('.');
    }
    text.append(digits.data() + start, static_cast<int>(digits.size() - start));
}

QString number(double value)
{
    QString text;
    appendNumber(text, value);
    return text;
}

/// XML has no way to write other control characters.
QString withoutControls(QString text)
{
    for (QChar& c : text) {
        if (c < QLatin1Char(' ') || c.unicode() >= 0xFFFE)
            c = QLatin1Char(' ');
    }
    return QString::fromUtf8(text.toUtf8());
}

} // namespace

PainterCanvas::PainterCanvas(QPainter& painter, const QColor& paper)
    : m_painter(painter)
{
    m_painter.setRenderHint(QPainter::Antialiasing);
    m_painter.fillRect(m_painter.viewport(), paper);
}

void PainterCanvas::drawContours(const QVector<QPolygonF>& lines, const QVector<QPolygonF>& areas,
    const QColor& line, const QColor& area)
{
    if (m_isFast)
        return drawFast(lines, areas, line, area);
    m_painter.fillPath(painterPath(areas), area);
    m_painter.strokePath(painterPath(lines), QPen(line, lineWidth));
}

void PainterCanvas::setFast(bool fast)
{
    m_isFast = fast;
    m_painter.setRenderHint(QPainter::Antialiasing, !fast);
}

void PainterCanvas::drawFast(const QVector<QPolygonF>& lines, const QVector<QPolygonF>& areas,
    const QColor& line, const QColor& area)
{
    // Lines of one pixel and single rings are what a painter draws fast.
    if (areas.size() == 1 && isFilledFast(areas.first())) {
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(area);
        m_painter.drawPolygon(areas.first());
    } else if (areas.size() > 1) {
        m_painter.fillPath(painterPath(areas), area);
    }
    m_painter.setPen(QPen(line, 0));
    for (const QPolygonF& part : lines)
        m_painter.drawPolyline(part);
}

void PainterCanvas::drawDot(
    const QPointF& place, double radius, const QColor& color, const QString&, const QString&)
{
    if (m_isFast)
        return stampDot(place, radius, color);
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(color);
    m_painter.drawEllipse(place, radius, radius);
}

void PainterCanvas::stampDot(const QPointF& place, double radius, const QColor& color)
{
    if (m_stamp.isNull() || m_stampRadius != radius || m_stampColor != color) {
        m_stampRadius = radius;
        m_stampColor = color;
        const double ratio = m_painter.device()->devicePixelRatioF();
        const int side = static_cast<int>(std::ceil((2 * radius + 1) * ratio));
        m_stamp = QImage(side, side, QImage::Format_ARGB32_Premultiplied);
        m_stamp.setDevicePixelRatio(ratio);
        m_stamp.fill(Qt::transparent);
        QPainter painter(&m_stamp);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(QPointF(side, side) / (2 * ratio), radius, radius);
    }
    const double half = m_stamp.width() / (2 * m_stamp.devicePixelRatio());
    m_painter.drawImage((place - QPointF(half, half)).toPoint(), m_stamp);
}

void PainterCanvas::drawText(
    const QPointF& place, const QString& text, const QFont& font, const QColor& color)
{
    m_painter.setFont(font);
    m_painter.setPen(color);
    m_painter.drawText(place, text);
}

SvgCanvas::SvgCanvas(QIODevice& device, const QSize& size, const QString& title)
    : m_writer(&device)
{
    m_writer.setAutoFormatting(true);
    m_writer.setAutoFormattingIndent(1);
    m_writer.writeStartDocument();
    m_writer.writeStartElement(QStringLiteral("svg"));
    m_writer.writeDefaultNamespace(QStringLiteral("http://www.w3.org/2000/svg"));
    m_writer.writeNamespace(inkscape, QStringLiteral("inkscape"));
    attribute("width", QString::number(size.width()));
    attribute("height", QString::number(size.height()));
    attribute("viewBox", QStringLiteral("0 0 %1 %2").arg(size.width()).arg(size.height()));
    m_writer.writeTextElement(QStringLiteral("title"), withoutControls(title));
    m_writer.writeEmptyElement(QStringLiteral("rect"));
    attribute("width", QStringLiteral("100%"));
    attribute("height", QStringLiteral("100%"));
    fill(Qt::white);
}

SvgCanvas::~SvgCanvas()
{
    m_writer.writeEndDocument();
}

void SvgCanvas::drawContours(const QVector<QPolygonF>& lines, const QVector<QPolygonF>& areas,
    const QColor& line, const QColor& area)
{
    if (!areas.isEmpty()) {
        m_writer.writeEmptyElement(QStringLiteral("path"));
        attribute("d", pathOf(areas));
        attribute("fill-rule", QStringLiteral("evenodd"));
        fill(area);
    }
    if (!areas.isEmpty() && areas == lines) {
        stroke(line);
    } else if (!lines.isEmpty()) {
        m_writer.writeEmptyElement(QStringLiteral("path"));
        attribute("d", pathOf(lines));
        attribute("fill", QStringLiteral("none"));
        stroke(line);
    }
}

void SvgCanvas::stroke(const QColor& color)
{
    attribute("stroke", color.name());
    attribute("stroke-width", lineWidth);
}

void SvgCanvas::beginGroup(const QString& id, const QString& title, bool isLayer)
{
    m_writer.writeStartElement(QStringLiteral("g"));
    attribute("id", id);
    if (isLayer) {
        m_writer.writeAttribute(inkscape, QStringLiteral("groupmode"), QStringLiteral("layer"));
        m_writer.writeAttribute(inkscape, QStringLiteral("label"), withoutControls(title));
    } else {
        m_writer.writeTextElement(QStringLiteral("title"), withoutControls(title));
    }
}

void SvgCanvas::endGroup()
{
    m_writer.writeEndElement();
}

void SvgCanvas::drawDot(const QPointF& place, double radius, const QColor& color, const QString& id,
    const QString& title)
{
    m_writer.writeStartElement(QStringLiteral("circle"));
    attribute("id", id);
    attribute("cx", place.x());
    attribute("cy", place.y());
    attribute("r", radius);
    fill(color);
    m_writer.writeTextElement(QStringLiteral("title"), withoutControls(title));
    m_writer.writeEndElement();
}

void SvgCanvas::drawText(
    const QPointF& place, const QString& text, const QFont& font, const QColor& color)
{
    m_writer.writeStartElement(QStringLiteral("text"));
    attribute("x", place.x());
    attribute("y", place.y());
    attribute("font-family", font.family() + QStringLiteral(", sans-serif"));
    attribute("font-size", QString::number(font.pixelSize()));
    if (font.bold())
        attribute("font-weight", QStringLiteral("bold"));
    fill(color);
    m_writer.writeCharacters(withoutControls(text));
    m_writer.writeEndElement();
}

void SvgCanvas::attribute(const char* name, const QString& value)
{
    m_writer.writeAttribute(QString::fromLatin1(name), value);
}

void SvgCanvas::attribute(const char* name, double value)
{
    attribute(name, number(value));
}

void SvgCanvas::fill(const QColor& color)
{
    attribute("fill", color.name());
    if (color.alpha() < 255)
        attribute("fill-opacity", color.alphaF());
}

QString SvgCanvas::pathOf(const QVector<QPolygonF>& polygons) const
{
    constexpr int usualLength = 16;
    int places = 0;
    for (const QPolygonF& polygon : polygons)
        places += polygon.size();
    QString path;
    path.reserve(places * usualLength);
    for (const QPolygonF& polygon : polygons) {
        QLatin1Char command('M');
        for (const QPointF& place : polygon) {
            path += command;
            appendNumber(path, place.x());
            path += QLatin1Char(' ');
            appendNumber(path, place.y());
            command = QLatin1Char('L');
        }
    }
    return path;
}
