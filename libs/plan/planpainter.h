#pragma once

#include "plan/planlabels.h"
#include "plan/planview.h"

#include <QBitArray>
#include <QPolygonF>

class PlanCanvas;

/// Which coordinate of the objects runs where.
struct PlanAxes {
    bool swapped = false; ///< the first coordinate runs upwards and the second one to the right
    bool isNorthUp = false; ///< the north is above, as far as the coordinates tell
    bool isXUp = false; ///< X names what runs upwards, whichever coordinate of the objects it is
};

/// Draws objects with their designations and the names of their points. Objects whose designation
/// occurs twice and points whose name stands at another place of their object too are red. Names
/// that would cover others are left out, red ones last of all; parts of an object that lie apart
/// are named each.
class PlanPainter {
public:
    /// `objects` must outlive the painter of the plan.
    PlanPainter(const QVector<DefPolygon>& objects, const PlanAxes& axes);

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
