#include "plan/planview.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// The part of the frame that the places fill.
constexpr double used = 0.88;

} // namespace

bool isPlace(const DefPoint& point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

PlanView::PlanView(const QVector<DefPolygon>& objects, bool swapped)
    : m_swapped(swapped)
{
    for (const DefPolygon& object : objects) {
        for (const QVector<DefPoint>& contour : object.contours) {
            for (const DefPoint& vertex : contour) {
                if (isPlace(vertex))
                    take(swapped ? vertex.y : vertex.x, swapped ? vertex.x : vertex.y);
            }
        }
    }
}

void PlanView::take(double right, double up)
{
    m_left = m_isEmpty ? right : std::min(m_left, right);
    m_right = m_isEmpty ? right : std::max(m_right, right);
    m_bottom = m_isEmpty ? up : std::min(m_bottom, up);
    m_top = m_isEmpty ? up : std::max(m_top, up);
    m_isEmpty = false;
}

void PlanView::fit(const QRectF& frame)
{
    m_frame = frame;
    m_middle = frame.center();
    m_center = { m_left / 2 + m_right / 2, m_bottom / 2 + m_top / 2 };
    // Halves, since a sum or a difference of large coordinates may leave the range of numbers; an
    // extent at the other end of the range, or none, would ask for a scale beyond it.
    const double halfWidth = m_right / 2 - m_left / 2;
    const double halfHeight = m_top / 2 - m_bottom / 2;
    m_scale = std::min({ used * frame.width() / 2 / halfWidth,
        used * frame.height() / 2 / halfHeight, std::numeric_limits<double>::max() });
}

void PlanView::show(const QRectF& frame, const QPointF& center, double scale)
{
    m_frame = frame;
    m_middle = frame.center();
    m_center = center;
    m_scale = scale;
}

QPointF PlanView::fromPicture(const QPointF& place) const
{
    return { m_center.x() + (place.x() - m_middle.x()) / m_scale,
        m_center.y() - (place.y() - m_middle.y()) / m_scale };
}

QSize PlanView::pageWithin(const QSize& most) const
{
    constexpr double longest = 2.5;
    const double halfWidth = m_right / 2 - m_left / 2;
    const double halfHeight = m_top / 2 - m_bottom / 2;
    if (!(halfWidth > 0 && halfHeight > 0))
        return most;
    const double ratio = qBound(1 / longest, halfWidth / halfHeight, longest);
    const QSizeF room(most.width() - 2 * margin, most.height() - 2 * margin);
    const double width = std::min(room.width(), room.height() * ratio);
    return { static_cast<int>(std::lround(width + 2 * margin)),
        static_cast<int>(std::lround(width / ratio + 2 * margin)) };
}
