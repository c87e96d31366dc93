#pragma once

#include "plan/planlabels.h"
#include "plan/planview.h"

#include <utility>

class PlanCanvas;

/// Draws what stands around the objects: the frame with the title, the crosses of a grid with its
/// coordinates, the arrow to the north, the bar of the scale and the legend. What is inside the
/// frame takes its space.
class PlanFrame {
public:
    PlanFrame(PlanCanvas& canvas, const PlanView& view, PlanSpace& space, PlanColors colors = {})
        : m_canvas(canvas)
        , m_view(view)
        , m_space(space)
        , m_colors(std::move(colors))
    {
    }

    /// The line around the plan, and a word where there is nothing inside.
    void drawBorder();
    void drawTitle(const QString& title);
    void drawGrid();
    /// `axes` says which coordinate runs where; `hasNorth`: the north is known to be above.
    void drawLegend(const QString& axes, bool hasNorth, bool hasRed);
    void drawNorthArrow();
    void drawScaleBar();

private:
    void text(const QPointF& place, const QString& text, const QColor& color);

    PlanCanvas& m_canvas;
    const PlanView& m_view;
    PlanSpace& m_space;
    const PlanColors m_colors;
};
