#include "plan/plandrawing.h"

#include "plan/plancanvas.h"
#include "plan/planindex.h"
#include "plan/planplaces.h"

#include <utility>

PlanDrawing::PlanDrawing(PlanCanvas& canvas, const QSizeF& size, PlanColors colors)
    : m_canvas(canvas)
    , m_colors(std::move(colors))
    , m_dots{ PlanSpace(size), PlanSpace(size) }
{
}

void PlanDrawing::drawObject(const PlanOutline& outline, bool isRed)
{
    m_hasRed = m_hasRed || isRed;
    m_canvas.drawContours(outline.lines, outline.areas, isRed ? m_colors.red : m_colors.line,
        isRed ? m_colors.redArea : m_colors.area);
}

void PlanDrawing::nameObject(const PlanOutline& outline, const QString& def, bool isRed)
{
    const bool isArea = !outline.areas.isEmpty();
    if (!outline.lines.isEmpty())
        addObjectLabels(m_labels, def, isArea ? outline.areas : outline.lines, isArea, isRed);
}

bool PlanDrawing::drawPoint(
    const QPointF& place, const QString& def, bool isRed, int object, int number)
{
    // A dot on a dot, or a name on a name, would only make the picture large.
    if (!m_dots[isRed ? 1 : 0].take(QRectF(place, place)))
        return false;
    m_hasRed = m_hasRed || isRed;
    constexpr double radius = 1.8;
    constexpr double redRadius = 4;
    m_canvas.drawDot(place, isRed ? redRadius : radius, isRed ? m_colors.red : m_colors.line,
        QStringLiteral("point-%1-%2").arg(object + 1).arg(number + 1), planText(def));
    return true;
}

void PlanDrawing::namePoint(const QPointF& place, const QString& def, bool isRed)
{
    m_labels.append({ place, planText(def), isRed, false });
}

void PlanDrawing::drawNames(const QRectF& frame, const PlanSpace& space)
{
    drawPlanLabels(m_canvas, m_labels, frame, space, m_colors);
}
