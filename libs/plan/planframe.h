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
    /// The crosses, the arrow if the north is known to be above, and the numbers where there is
    /// room beside it; to be drawn over the objects.
    void drawGrid(bool hasNorth);
    /// `axes` says which coordinate runs where.
    void drawLegend(const QString& axes, bool hasRed);
    void drawScaleBar();

private:
    /// Where the lines of the grid would be.
    struct Grid {
        QVector<double> rights; ///< in the units of the coordinates
        QVector<double> ups;
        int decimals; ///< that their numbers need
    };

    Grid grid() const;
    void drawCrosses(const Grid& grid);
    void drawNumbers(const Grid& grid);
    void drawNorthArrow();
    /// Draws a number of the grid unless its space is taken.
    void drawNumber(const QPointF& place, const QString& number);
    void text(const QPointF& place, const QString& text, const QColor& color);

    PlanCanvas& m_canvas;
    const PlanView& m_view;
    PlanSpace& m_space;
    const PlanColors m_colors;
};
