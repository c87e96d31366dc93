#pragma once

#include "geometry/defpolygon.h"

#include <QRectF>
#include <QSize>
#include <QVector>

/// How the coordinates of objects lie on a picture.
class PlanView {
public:
    /// `swapped`: the first coordinate runs upwards and the second one to the right.
    PlanView(const QVector<DefPolygon>& objects, bool swapped);

    bool isEmpty() const { return m_isEmpty; } ///< no vertex has a place
    bool isSwapped() const { return m_swapped; }

    /// Scales the view so that all places are well inside the frame.
    void fit(const QRectF& frame);
    /// Shows the place of a pair of numbers in the middle of the frame, at a scale.
    void show(const QRectF& frame, const QPointF& center, double scale);
    /// The place in the middle of the frame: to the right and upwards.
    const QPointF& center() const { return m_center; }
    const QRectF& frame() const { return m_frame; }
    QPointF toPicture(const DefPoint& point) const
    {
        return m_swapped ? at(point.y, point.x) : at(point.x, point.y);
    }
    /// The place of a pair of numbers: to the right and upwards.
    QPointF at(double right, double up) const
    {
        return { m_middle.x() + (right - m_center.x()) * m_scale,
            m_middle.y() - (up - m_center.y()) * m_scale };
    }
    /// The pair of numbers at a place of the picture.
    QPointF fromPicture(const QPointF& place) const;

    double scale() const { return m_scale; } ///< picture units for a coordinate unit
    double left() const { return m_left; }
    double right() const { return m_right; }
    double bottom() const { return m_bottom; }
    double top() const { return m_top; }

    /// The largest page of the places' shape, not too long for its width, within `most`.
    QSize pageWithin(const QSize& most) const;

    static constexpr double margin = 48; ///< around the frame

private:
    void take(double right, double up);

    bool m_swapped;
    bool m_isEmpty = true;
    double m_left = 0;
    double m_right = 0;
    double m_bottom = 0;
    double m_top = 0;
    QRectF m_frame;
    QPointF m_middle; ///< of the frame
    QPointF m_center;
    double m_scale = 1;
};

/// Whether both coordinates are numbers of a finite size.
bool isPlace(const DefPoint& point);
