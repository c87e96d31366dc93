#include "plan/planpainter.h"

#include "geometry/conflicts.h"
#include "plan/plancanvas.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

const QColor lineColor(40, 70, 120);
const QColor areaColor(40, 70, 120, 24);
const QColor errorColor(208, 0, 0);
const QColor errorAreaColor(208, 0, 0, 32);
const QColor frameColor(120, 120, 120);

bool isPlace(const DefPoint& point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

QFont labelFont(bool bold)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(bold ? 14 : 11);
    font.setBold(bold);
    return font;
}

} // namespace

PlanSpace::PlanSpace(const QSizeF& size)
    : m_columns(static_cast<int>(size.width() / cell) + 1)
    , m_rows(static_cast<int>(size.height() / cell) + 1)
    , m_cells(static_cast<size_t>(m_columns) * static_cast<size_t>(m_rows))
{
}

bool PlanSpace::take(const QRectF& rect)
{
    if (!(rect.left() >= 0 && rect.top() >= 0 && rect.right() < m_columns * cell
            && rect.bottom() < m_rows * cell))
        return false;
    const auto cellOf = [](double value) { return static_cast<int>(value / cell); };
    const int left = cellOf(rect.left());
    const int right = cellOf(rect.right());
    const int top = cellOf(rect.top());
    const int bottom = cellOf(rect.bottom());
    const auto begin = [&](int row) {
        return m_cells.begin() + std::ptrdiff_t(row) * m_columns + left;
    };
    const int width = right - left + 1;
    for (int row = top; row <= bottom; ++row) {
        if (std::find(begin(row), begin(row) + width, true) != begin(row) + width)
            return false;
    }
    for (int row = top; row <= bottom; ++row)
        std::fill_n(begin(row), width, true);
    return true;
}

PlanPainter::PlanPainter(const QVector<DefPolygon>& objects)
    : m_objects(objects)
    , m_duplicates(duplicateDefs(objects))
{
    findExtent();
}

void PlanPainter::paint(PlanCanvas& canvas, const QSizeF& size, const QString& title)
{
    constexpr double margin = 48;
    m_frame = QRectF(QPointF(), size).adjusted(margin, margin, -margin, -margin);
    drawFrame(canvas, title);
    if (m_isEmpty)
        return;
    fit(m_frame);
    m_labels.clear();
    m_dots = PlanSpace(size);
    m_redDots = PlanSpace(size);
    for (int i = 0; i < m_objects.size(); ++i)
        drawObject(canvas, i);
    drawLabels(canvas, PlanSpace(size));
}

void PlanPainter::findExtent()
{
    for (const DefPolygon& object : m_objects) {
        for (const QVector<DefPoint>& contour : object.contours) {
            for (const DefPoint& vertex : contour) {
                if (!isPlace(vertex))
                    continue;
                m_minX = m_isEmpty ? vertex.x : std::min(m_minX, vertex.x);
                m_maxX = m_isEmpty ? vertex.x : std::max(m_maxX, vertex.x);
                m_minY = m_isEmpty ? vertex.y : std::min(m_minY, vertex.y);
                m_maxY = m_isEmpty ? vertex.y : std::max(m_maxY, vertex.y);
                m_isEmpty = false;
            }
        }
    }
}

void PlanPainter::fit(const QRectF& frame)
{
    constexpr double used = 0.9;
    // Halves, since a difference of large coordinates may leave the range of numbers; an extent at
    // the other end of the range, or none, would ask for a scale beyond it.
    const double halfWidth = m_maxX / 2 - m_minX / 2;
    const double halfHeight = m_maxY / 2 - m_minY / 2;
    m_scale = std::min({ used * frame.width() / 2 / halfWidth,
        used * frame.height() / 2 / halfHeight, std::numeric_limits<double>::max() });
}

QPointF PlanPainter::toPicture(double x, double y) const
{
    const QPointF center = m_frame.center();
    // Halves, since a sum of large coordinates may leave the range of numbers.
    return { center.x() + (x - (m_minX / 2 + m_maxX / 2)) * m_scale,
        center.y() - (y - (m_minY / 2 + m_maxY / 2)) * m_scale };
}

void PlanPainter::drawFrame(PlanCanvas& canvas, const QString& title) const
{
    constexpr double lineHeight = 18;
    const auto number = [](double value) { return QString::number(value, 'f', 2); };
    const QFont font = labelFont(false);
    canvas.drawContours({ QPolygonF(m_frame) }, {}, frameColor, frameColor);
    canvas.drawText(
        m_frame.topLeft() - QPointF(0, lineHeight / 2), title, labelFont(true), frameColor);
    if (m_isEmpty) {
        canvas.drawText(m_frame.center(), QStringLiteral("объектов нет"), font, frameColor);
        return;
    }
    const QPointF below = m_frame.bottomLeft() + QPointF(0, lineHeight);
    canvas.drawText(below,
        QStringLiteral("вправо X: от %1 до %2; вверх Y: от %3 до %4")
            .arg(number(m_minX), number(m_maxX), number(m_minY), number(m_maxY)),
        font, frameColor);
    canvas.drawText(below + QPointF(0, lineHeight),
        QStringLiteral("красным: обозначение повторяется или точка стоит в разных местах"), font,
        errorColor);
}

void PlanPainter::drawObject(PlanCanvas& canvas, int index)
{
    const DefPolygon& object = m_objects.at(index);
    const bool isRed = m_duplicates.testBit(index);
    QVector<QPolygonF> lines;
    QVector<QPolygonF> areas;
    // The centroid is taken in the picture: the products of large coordinates would drown it.
    DefPolygon firstContour{ {}, { {} } };
    for (const QVector<DefPoint>& contour : object.contours) {
        QPolygonF polygon;
        for (const DefPoint& vertex : contour) {
            if (isPlace(vertex))
                polygon.append(toPicture(vertex));
        }
        if (&contour == &object.contours.constFirst()) {
            for (const QPointF& place : qAsConst(polygon))
                firstContour.contours.first().append({ {}, place.x(), place.y() });
        }
        lines.append(polygon);
        if (contour.size() > 1 && coincide(contour.first(), contour.last()))
            areas.append(polygon);
    }
    canvas.drawContours(
        lines, areas, isRed ? errorColor : lineColor, isRed ? errorAreaColor : areaColor);
    drawPoints(canvas, object, conflictingPoints(object));

    if (!firstContour.contours.constFirst().isEmpty())
        m_labels.append({ firstContour.centroid(), object.def, isRed, true });
}

void PlanPainter::drawPoints(
    PlanCanvas& canvas, const DefPolygon& object, const QBitArray& conflicts)
{
    int index = 0;
    for (const QVector<DefPoint>& contour : object.contours) {
        for (int i = 0; i < contour.size(); ++i) {
            const DefPoint& vertex = contour.at(i);
            const bool isRed = conflicts.testBit(index++);
            const bool isClosing = i > 0 && i == contour.size() - 1
                && coincide(contour.first(), vertex) && contour.first().def == vertex.def;
            if (!isPlace(vertex) || isClosing)
                continue;
            const QPointF place = toPicture(vertex);
            // A dot on a dot, or a name on a name, would only make the picture large.
            if (!(isRed ? m_redDots : m_dots).take(QRectF(place, place)))
                continue;
            const double radius = isRed ? 4 : 1.8;
            canvas.drawDot(place, radius, isRed ? errorColor : lineColor);
            m_labels.append({ place, vertex.def, isRed, false });
        }
    }
}

void PlanPainter::drawLabels(PlanCanvas& canvas, PlanSpace space)
{
    // The ones that come first find room.
    const auto rank = [](const Label& label) {
        return (label.isRed ? 0 : 2) + (label.isObject ? 0 : 1);
    };
    std::stable_sort(m_labels.begin(), m_labels.end(),
        [rank](const Label& a, const Label& b) { return rank(a) < rank(b); });

    constexpr double offset = 4;
    const QFont fonts[] = { labelFont(false), labelFont(true) };
    const QFontMetricsF metrics[] = { QFontMetricsF(fonts[0]), QFontMetricsF(fonts[1]) };
    for (const Label& label : qAsConst(m_labels)) {
        const QFontMetricsF& metric = metrics[label.isObject ? 1 : 0];
        QRectF rect(0, 0, metric.horizontalAdvance(label.text), metric.height());
        if (label.isObject)
            rect.moveCenter(label.place);
        else
            rect.moveBottomLeft(label.place + QPointF(offset, -offset / 2));
        if (label.text.isEmpty() || !space.take(rect))
            continue;
        canvas.drawText(QPointF(rect.left(), rect.top() + metric.ascent()), label.text,
            fonts[label.isObject ? 1 : 0], label.isRed ? errorColor : QColor(Qt::black));
    }
}
