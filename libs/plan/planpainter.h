#pragma once

#include "plan/planindex.h"
#include "plan/planlabels.h"
#include "plan/planrequest.h"
#include "plan/planview.h"

#include <QBitArray>

#include <functional>

class PlanCanvas;
class PlanDrawing;

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
    void drawObjects(PlanCanvas& canvas, PlanDrawing& drawing);
    void drawPoints(PlanCanvas& canvas, PlanDrawing& drawing);
    void drawPointsOf(int object, PlanDrawing& drawing);

    const QVector<DefPolygon>& m_objects;
    const PlanAxes m_axes;
    const PlanIndex m_index;
    QBitArray m_duplicates;
    PlanView m_view;
};
