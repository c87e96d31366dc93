#include "plan/planframe.h"

#include "plan/plancanvas.h"
#include "plan/planstyle.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace {

constexpr double lineHeight = 18;

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

void PlanFrame::drawGrid()
{
    constexpr double arm = 4;
    constexpr double spacing = 180;
    const QRectF& frame = m_view.frame();
    const double step = roundStep(spacing / m_view.scale());
    const double middleX = m_view.center().x();
    const double middleY = m_view.center().y();
    // A step that is lost beside the coordinates, or one beyond all numbers, makes no grid.
    if (!(step > 0) || middleX + step == middleX || middleY + step == middleY
        || !std::isfinite(middleX / step) || !std::isfinite(middleY / step))
        return;
    const double halfWidth = frame.width() / 2 / m_view.scale();
    const double halfHeight = frame.height() / 2 / m_view.scale();
    const auto first = [step](double from) { return std::ceil(from / step) * step; };
    const int decimals = std::max(0, -static_cast<int>(std::floor(std::log10(step) + 1e-9)));
    const auto number = [decimals](double value) { return QString::number(value, 'f', decimals); };
    const QFontMetricsF metrics(planFont(false));
    QVector<QPolygonF> crosses;
    constexpr int most = 200;
    constexpr double gap = 2;
    constexpr double numberHeight = 14;
    const double startX = first(middleX - halfWidth);
    const double startY = first(middleY - halfHeight);
    // No cross stands on a number.
    const double numbersEnd = frame.left() + gap
        + std::max(metrics.horizontalAdvance(number(startY)),
            metrics.horizontalAdvance(number(middleY + halfHeight)));
    const double numbersFoot = frame.top() + numberHeight;
    for (int i = 0; i < most; ++i) {
        const double x = startX + i * step;
        const QPointF foot = m_view.at(x, startY);
        if (!(foot.x() < frame.right() - arm) || !std::isfinite(x))
            break;
        for (int j = 0; j < most && foot.x() - arm >= numbersEnd; ++j) {
            const QPointF place = m_view.at(x, startY + j * step);
            if (!(place.y() - arm > numbersFoot) || !std::isfinite(place.x()))
                break;
            crosses.append(
                QPolygonF(QVector<QPointF>{ place - QPointF(arm, 0), place + QPointF(arm, 0) }));
            crosses.append(
                QPolygonF(QVector<QPointF>{ place - QPointF(0, arm), place + QPointF(0, arm) }));
        }
        const QPointF start(foot.x() + gap, numbersFoot - gap);
        if (start.x() + metrics.horizontalAdvance(number(x)) >= frame.right())
            continue;
        text(start, number(x), m_colors.grey);
        m_space.take(QRectF(foot.x(), frame.top(), 70, numberHeight));
    }
    for (int j = 0; j < most; ++j) {
        const QPointF foot = m_view.at(startX, startY + j * step);
        if (!(foot.y() > frame.top() + 2 * lineHeight) || !std::isfinite(startY + j * step))
            break;
        text(QPointF(frame.left() + gap, foot.y() - gap), number(startY + j * step), m_colors.grey);
        m_space.take(QRectF(frame.left(), foot.y() - numberHeight, 70, numberHeight));
    }
    if (!crosses.isEmpty())
        m_canvas.drawContours(crosses, {}, m_colors.grey, m_colors.grey);
}

void PlanFrame::drawLegend(const QString& axes, bool hasNorth, bool hasRed)
{
    const QPointF below = m_view.frame().bottomLeft() + QPointF(0, lineHeight);
    text(below, axes, m_colors.grey);
    if (hasRed) {
        text(below + QPointF(0, lineHeight),
            QStringLiteral("красным: обозначение повторяется или точка стоит в разных местах"),
            m_colors.red);
    }
    if (hasNorth)
        drawNorthArrow();
    drawScaleBar();
}

void PlanFrame::drawNorthArrow()
{
    const QPointF tip = m_view.frame().topRight() + QPointF(-22, 30);
    const QPolygonF arrow(QVector<QPointF>{
        tip, tip + QPointF(7, 28), tip + QPointF(0, 21), tip + QPointF(-7, 28), tip });
    m_canvas.drawContours({ arrow }, { arrow }, m_colors.grey, m_colors.grey);
    text(tip + QPointF(-4, -4), QStringLiteral("С"), m_colors.grey);
    m_space.take(QRectF(tip + QPointF(-12, -18), QSizeF(24, 48)));
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
