#include "plan/plancanvas.h"

#include <QPainter>
#include <QPainterPath>

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

QString number(double value)
{
    return QString::number(value, 'f', 2);
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
    m_painter.fillPath(painterPath(areas), area);
    m_painter.strokePath(painterPath(lines), QPen(line, lineWidth));
}

void PainterCanvas::drawDot(
    const QPointF& place, double radius, const QColor& color, const QString&, const QString&)
{
    m_painter.setPen(Qt::NoPen);
    m_painter.setBrush(color);
    m_painter.drawEllipse(place, radius, radius);
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
    if (lines.isEmpty())
        return;
    m_writer.writeEmptyElement(QStringLiteral("path"));
    attribute("d", pathOf(lines));
    attribute("fill", QStringLiteral("none"));
    attribute("stroke", line.name());
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
    QString path;
    for (const QPolygonF& polygon : polygons) {
        QLatin1Char command('M');
        for (const QPointF& place : polygon) {
            path += command + number(place.x()) + QLatin1Char(' ') + number(place.y());
            command = QLatin1Char('L');
        }
    }
    return path;
}
