#pragma once

#include "plan/planstyle.h"

#include <QPointF>
#include <QRectF>
#include <QString>
#include <QVector>

#include <vector>

class PlanCanvas;

/// Which parts of a picture are taken, in coarse squares.
class PlanSpace {
public:
    PlanSpace() = default;
    explicit PlanSpace(const QSizeF& size);

    /// Takes the rectangle unless part of it is taken or outside.
    bool take(const QRectF& rect);
    /// Whether something that covers the place could not be taken.
    bool isTaken(const QPointF& place) const;

private:
    static constexpr double cell = 4;

    int m_columns = 0;
    int m_rows = 0;
    std::vector<bool> m_cells;
};

/// A name that is to stand at a place of the picture.
struct PlanLabel {
    QPointF place;
    QString text;
    bool isRed;
    bool isObject; ///< stands on its place, in bold; others stand beside
};

/// `text` as far as a plan has room for it.
QString planText(const QString& text);

/// Draws a text that starts at `place` on its base line, on a ground that what is below it shines
/// through faintly.
void drawOnGround(PlanCanvas& canvas, const QPointF& place, const QString& text, bool bold,
    const QColor& color, const QColor& paper);

/// Draws the names inside the frame, as many as do not cover one another; the red ones and those of
/// objects find room first.
void drawPlanLabels(PlanCanvas& canvas, QVector<PlanLabel> labels, const QRectF& frame,
    PlanSpace space, const PlanColors& colors = {});
