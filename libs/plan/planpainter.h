#pragma once

#include "plan/planlabels.h"
#include "plan/planrequest.h"
#include "plan/planview.h"

#include <QBitArray>
#include <QPolygonF>

#include <functional>

class PlanCanvas;

/// Draws objects with their designations and the names of their points. Objects whose designation
/// occurs twice and points whose name stands at another place of their object too are red. Names
/// that would cover others are left out, red ones last of all; parts of an object that lie apart
/// are named each.
class PlanPainter {
public:
    /// `objects` must outlive the painter of the plan.
    PlanPainter(const QVector<DefPolygon>& objects, const PlanAxes& axes);

    std::function<void()> objectDrawn; ///< called behind each object; may be empty

    /// The largest page of the objects' shape within `most`.
    QSize pageWithin(const QSize& most) const { return m_view.pageWithin(most); }
    /// Draws the plan with its frame on a picture of the given size.
    void paint(PlanCanvas& canvas, const QSizeF& size, const QString& title);

private:
    QString axesText() const;
    void drawObjects(PlanCanvas& canvas);
    void drawObject(PlanCanvas& canvas, int index);
    void drawPoints(PlanCanvas& canvas);
    void drawPointsOf(PlanCanvas& canvas, int index);

    const QVector<DefPolygon>& m_objects;
    const PlanAxes m_axes;
    QBitArray m_duplicates;
    PlanView m_view;
    PlanSpace m_dots;
    PlanSpace m_redDots;
    QVector<PlanLabel> m_labels;
    bool m_hasRed = false;
};
