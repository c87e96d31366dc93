#pragma once

#include "plan/planview.h"

#include <QLineF>
#include <QPolygonF>
#include <QVector>

#include <vector>

/// The lines of an object in a picture.
struct PlanOutline {
    QVector<QPolygonF> lines;
    QVector<QPolygonF> areas; ///< of closed contours
    int size = 0; ///< places of all lines
};

/// Knows where objects and stretches of their contours lie, so that a picture of a part of them
/// costs no more than what can be seen there.
class PlanIndex {
public:
    /// `objects` must outlive the index, and their places stay.
    PlanIndex(const QVector<DefPolygon>& objects, bool swapped);

    /// The rectangle of the picture that an object fills; a null one for an object without places.
    QRectF boxInPicture(int object, const PlanView& view) const;
    /// The object as far as the window shows it; steps shorter than `detail` are left out.
    PlanOutline outline(int object, const PlanView& view, double detail) const;
    /// Appends the steps along the contours of an object, which must be in or near the window;
    /// steps shorter than `detail` are left out. Gives the number of its places in the picture.
    int appendSteps(
        int object, const PlanView& view, double detail, std::vector<QLineF>& steps) const;
    /// The vertices of an object that stand in a rectangle of the picture.
    struct Vertex {
        int contour;
        int index; ///< in the contour
        int number; ///< through all contours
        QPointF place;
    };
    QVector<Vertex> verticesIn(int object, const PlanView& view, const QRectF& rect) const;

private:
    /// To the right and upwards, in the units of the coordinates.
    struct Box {
        double left = 1;
        double bottom = 1;
        double right = 0; ///< less than `left` where there is no place
        double top = 0;
        bool isWhole = true; ///< every vertex has a place

        void take(const DefPoint& vertex, bool swapped);
    };

    /// Calls `see` for each stretch of a contour with its box, first vertex and the one behind it.
    template <typename See>
    void eachStretch(int object, See see) const;
    static QRectF inPicture(const Box& box, const PlanView& view);

    const QVector<DefPolygon>& m_objects;
    std::vector<Box> m_boxes; ///< of the objects
    std::vector<Box> m_stretches; ///< of all contours in order
    std::vector<int> m_firstStretch; ///< of the objects
};

/// A ring as far as it lies in the rectangle; closed along its edges.
QPolygonF clippedRing(const QPolygonF& ring, const QRectF& rect);
/// The parts of a line that may cross the rectangle.
QVector<QPolygonF> clippedLine(const QPolygonF& line, const QRectF& rect);
