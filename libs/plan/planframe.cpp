#include "plan/planframe.h"

#include "plan/plancanvas.h"
#include "plan/planstyle.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace {

constexpr double lineHeight = 18;
constexpr double numberHeight = 14;
constexpr double numberGap = 2;

/// The largest of 1, 2 and 5 with noughts that is not greater; 0 where there is none.
double roundStep(double most)
{
    const double power = std::pow(10, std::floor(std::log10(most)));
    if (!std::isfinite(power) || !(power > 0))
        return 0;
    const double digit = most / power;
    return (digit >= 5 ? 5 : digit >= 2 ? 2 : 1) * power;
}

QString lengthText(double length)
{
    constexpr double kilo = 1000;
    return length >= kilo ? QStringLiteral("%1 км").arg(length / kilo)
                          : QStringLiteral("%1 м").arg(length);
}

} // namespace

void PlanFrame::text(const QPointF& place, const QString& text, const QColor& color)
{
    m_canvas.drawText(place, text, planFont(false), color);
}

void PlanFrame::drawBorder()
{
    m_canvas.drawContours({ QPolygonF(m_view.frame()) }, {}, m_colors.grey, m_colors.grey);
    if (m_view.isEmpty())
        text(m_view.frame().center(), QStringLiteral("объектов нет"), m_colors.grey);
}

void PlanFrame::drawTitle(const QString& title)
{
    const QFontMetricsF metrics(planFont(true));
    m_canvas.drawText(m_view.frame().topLeft() - QPointF(0, lineHeight / 2),
        metrics.elidedText(planText(title), Qt::ElideRight, m_view.frame().width()), planFont(true),
        m_colors.grey);
}

PlanFrame::Grid PlanFrame::grid() const
{
    constexpr double spacing = 180;
    const double step = roundStep(spacing / m_view.scale());
    const double middleX = m_view.center().x();
    const double middleY = m_view.center().y();
    // A step that is lost beside the coordinates, or one beyond all numbers, makes no grid.
    if (!(step > 0) || middleX + step == middleX || middleY + step == middleY
        || !std::isfinite(middleX / step) || !std::isfinite(middleY / step))
        return {};
    const auto lines = [this, step](double middle, double extent) {
        constexpr int most = 200;
        const double half = extent / 2 / m_view.scale();
        const double first = std::ceil((middle - half) / step) * step;
        QVector<double> places;
        for (int i = 0; i < most && first + i * step < middle + half; ++i)
            places.append(first + i * step);
        return places;
    };
    return { lines(middleX, m_view.frame().width()), lines(middleY, m_view.frame().height()),
        std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9))) };
}

void PlanFrame::drawGrid(bool hasNorth)
{
    const Grid lines = grid();
    if (hasNorth)
        drawNorthArrow();
    drawCrosses(lines);
    drawNumbers(lines);
}

void PlanFrame::drawCrosses(const Grid& grid)
{
    const QRectF& frame = m_view.frame();
    const QFontMetricsF metrics(planFont(false));
    double numbersEnd = frame.left() + numberGap;
    for (const double up : grid.ups) {
        numbersEnd = std::max(numbersEnd,
            frame.left() + numberGap
                + metrics.horizontalAdvance(QString::number(up, 'f', grid.decimals)));
    }
    // No cross stands on a number or the arrow, nor over the edge.
    constexpr double arm = 4;
    const QRectF inner(QPointF(numbersEnd + arm, frame.top() + numberHeight + arm),
        frame.bottomRight() - QPointF(arm, 0));
    QVector<QPolygonF> crosses;
    for (const double right : grid.rights) {
        for (const double up : grid.ups) {
            const QPointF place = m_view.at(right, up);
            if (!inner.contains(place) || m_space.isTaken(place))
                continue;
            crosses.append(
                QPolygonF(QVector<QPointF>{ place - QPointF(arm, 0), place + QPointF(arm, 0) }));
            crosses.append(
                QPolygonF(QVector<QPointF>{ place - QPointF(0, arm), place + QPointF(0, arm) }));
        }
    }
    if (!crosses.isEmpty())
        m_canvas.drawContours(crosses, {}, m_colors.grey, m_colors.grey);
}

void PlanFrame::drawNumbers(const Grid& grid)
{
    const QRectF& frame = m_view.frame();
    const auto number = [&](double value) { return QString::number(value, 'f', grid.decimals); };
    if (grid.rights.isEmpty() || grid.ups.isEmpty())
        return;
    for (const double right : grid.rights) {
        const double x = m_view.at(right, grid.ups.first()).x();
        drawNumber({ x + numberGap, frame.top() + numberHeight - numberGap }, number(right));
    }
    for (const double up : grid.ups) {
        const double y = m_view.at(grid.rights.first(), up).y();
        // Those of the other direction stand above.
        if (y > frame.top() + 2 * lineHeight)
            drawNumber({ frame.left() + numberGap, y - numberGap }, number(up));
    }
}

void PlanFrame::drawNumber(const QPointF& place, const QString& number)
{
    const double width = QFontMetricsF(planFont(false)).horizontalAdvance(number);
    const bool fits = place.x() + width < m_view.frame().right();
    const QRectF space(place.x() - numberGap, place.y() - numberHeight + numberGap,
        width + 2 * numberGap, numberHeight);
    if (fits && m_space.take(space))
        drawOnGround(m_canvas, place, number, false, m_colors.grey, m_colors.paper);
}

void PlanFrame::drawLegend(const QString& axes, bool hasRed)
{
    const QPointF below = m_view.frame().bottomLeft() + QPointF(0, lineHeight);
    text(below, axes, m_colors.grey);
    if (hasRed) {
        text(below + QPointF(0, lineHeight),
            QStringLiteral("красным: обозначение повторяется или точка стоит в разных местах"),
            m_colors.red);
    }
}

void PlanFrame::drawNorthArrow()
{
    const QPointF tip = m_view.frame().topRight() + QPointF(-22, 30);
    const QRectF ground(tip + QPointF(-12, -18), QSizeF(24, 50));
    const QPolygonF arrow(QVector<QPointF>{
        tip, tip + QPointF(7, 28), tip + QPointF(0, 21), tip + QPointF(-7, 28), tip });
    m_canvas.drawContours({}, { QPolygonF(ground) }, m_colors.paper, m_colors.paper);
    m_canvas.drawContours({ arrow }, { arrow }, m_colors.grey, m_colors.grey);
    text(tip + QPointF(-4, -4), QStringLiteral("С"), m_colors.grey);
    m_space.take(ground);
}

void PlanFrame::drawScaleBar()
{
    constexpr double longest = 160;
    const double length = roundStep(longest / m_view.scale());
    const double width = length * m_view.scale();
    if (!(width > 1 && width <= longest * 1.01))
        return;
    const QPointF end = m_view.frame().bottomRight() + QPointF(0, lineHeight * 1.6);
    const QPointF start = end - QPointF(width, 0);
    const QPointF tick(0, 5);
    m_canvas.drawContours({ QPolygonF(QVector<QPointF>{ start - tick, start, end, end - tick }) },
        {}, m_colors.grey, m_colors.grey);
    const QString label = lengthText(length);
    const double textWidth = QFontMetricsF(planFont(false)).horizontalAdvance(label);
    text(QPointF(end.x() - width / 2 - textWidth / 2, end.y() + lineHeight * 0.7), label,
        m_colors.grey);
}
