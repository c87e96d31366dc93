#pragma once

#include "plan/planlabels.h"

struct PlanOutline;

/// Draws objects and points, and keeps the names that are to stand beside them. The plan on a page
/// and the plan in a window come from its hand.
class PlanDrawing {
public:
    /// `canvas` must outlive the drawing; `size` is that of the picture.
    PlanDrawing(PlanCanvas& canvas, const QSizeF& size, PlanColors colors);

    /// Whether something red was drawn.
    bool hasRed() const { return m_hasRed; }

    /// Draws the lines of an object, and fills its areas.
    void drawObject(const PlanOutline& outline, bool isRed);
    /// Keeps the designation of an object for each of its parts.
    void nameObject(const PlanOutline& outline, const QString& def, bool isRed);
    /// Draws a vertex, which the numbers of its object and of itself in it tell from others; false
    /// where one of its colour stands already.
    bool drawPoint(const QPointF& place, const QString& def, bool isRed, int object, int number);
    /// Keeps the name of a vertex.
    void namePoint(const QPointF& place, const QString& def, bool isRed);
    /// Draws the names inside the frame where `space` has room for them.
    void drawNames(const QRectF& frame, const PlanSpace& space);

private:
    PlanCanvas& m_canvas;
    const PlanColors m_colors;
    PlanSpace m_dots[2]; ///< the red ones second
    QVector<PlanLabel> m_labels;
    bool m_hasRed = false;
};
