#include "plan/planlabels.h"

#include "plan/plancanvas.h"

#include <QFontMetricsF>
#include <QPolygonF>

#include <algorithm>

namespace {

/// Between a name and the frame.
constexpr double gap = 2;

/// Moves a rectangle into the frame, where it fits in.
QRectF movedInto(QRectF rect, const QRectF& frame)
{
    if (rect.right() > frame.right() - gap)
        rect.moveRight(frame.right() - gap);
    if (rect.left() < frame.left() + gap)
        rect.moveLeft(frame.left() + gap);
    if (rect.bottom() > frame.bottom() - gap)
        rect.moveBottom(frame.bottom() - gap);
    if (rect.top() < frame.top() + gap)
        rect.moveTop(frame.top() + gap);
    return rect;
}

/// Where a name of this size may stand, the best place first.
QVector<QRectF> candidates(const PlanLabel& label, const QSizeF& size, const QRectF& frame)
{
    constexpr double offset = 4;
    QRectF rect(QPointF(), size);
    rect.moveCenter(label.place);
    if (label.isObject)
        return { movedInto(rect, frame) };
    const double right = size.width() / 2 + offset;
    const double up = -size.height() / 2 - offset / 2;
    return { rect.translated(right, up), rect.translated(-right, up), rect.translated(right, -up),
        rect.translated(-right, -up) };
}

/// Only as high as letters mostly are, so that it hides little.
void drawGround(PlanCanvas& canvas, const QPointF& place, double width,
    const QFontMetricsF& metrics, QColor paper)
{
    constexpr double around = 1;
    constexpr int opacity = 170;
    paper.setAlpha(opacity);
    const QRectF ground(place.x() - around, place.y() - metrics.capHeight() - around,
        width + 2 * around, metrics.capHeight() + metrics.descent() / 2 + 2 * around);
    canvas.drawContours({}, { QPolygonF(ground) }, paper, paper);
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

bool PlanSpace::isTaken(const QPointF& place) const
{
    const bool isInside = place.x() >= 0 && place.y() >= 0 && place.x() < m_columns * cell
        && place.y() < m_rows * cell;
    return !isInside
        || m_cells[static_cast<size_t>(place.y() / cell) * static_cast<size_t>(m_columns)
            + static_cast<size_t>(place.x() / cell)];
}

QString planText(const QString& text)
{
    constexpr int most = 64;
    return text.size() <= most ? text : text.left(most) + QChar(0x2026);
}

void drawOnGround(PlanCanvas& canvas, const QPointF& place, const QString& text, bool bold,
    const QColor& color, const QColor& paper)
{
    const QFont font = planFont(bold);
    const QFontMetricsF metrics(font);
    drawGround(canvas, place, metrics.horizontalAdvance(text), metrics, paper);
    canvas.drawText(place, text, font, color);
}

void drawPlanLabels(PlanCanvas& canvas, QVector<PlanLabel> labels, const QRectF& frame,
    PlanSpace space, const PlanColors& colors)
{
    const auto rank = [](const PlanLabel& label) {
        return (label.isRed ? 0 : 2) + (label.isObject ? 0 : 1);
    };
    std::stable_sort(labels.begin(), labels.end(),
        [rank](const PlanLabel& a, const PlanLabel& b) { return rank(a) < rank(b); });

    const QRectF inner = frame.adjusted(gap, gap, -gap, -gap);
    const QFont fonts[] = { planFont(false), planFont(true) };
    const QFontMetricsF metrics[] = { QFontMetricsF(fonts[0]), QFontMetricsF(fonts[1]) };
    for (const PlanLabel& label : qAsConst(labels)) {
        const QFontMetricsF& metric = metrics[label.isObject ? 1 : 0];
        // Measuring costs most: a name whose middle is taken has no room.
        if (label.text.isEmpty()
            || (label.isObject && inner.contains(label.place) && space.isTaken(label.place)))
            continue;
        const QSizeF size(metric.horizontalAdvance(label.text), metric.height());
        for (const QRectF& rect : candidates(label, size, frame)) {
            if (!frame.contains(rect) || !space.take(rect))
                continue;
            const QPointF start(rect.left(), rect.top() + metric.ascent());
            drawGround(canvas, start, size.width(), metric, colors.paper);
            canvas.drawText(start, label.text, fonts[label.isObject ? 1 : 0],
                label.isRed ? colors.red : colors.text);
            break;
        }
    }
}
