#pragma once

#include "geometry/defpolygon.h"

#include <QBitArray>
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

private:
    static constexpr double cell = 4;

    int m_columns = 0;
    int m_rows = 0;
    std::vector<bool> m_cells;
};

/// Draws objects with their designations and the names of their points: x to the right, y upwards.
/// Objects whose designation occurs twice and points whose name stands at another place of their
/// object too are red. Names that would cover others are left out, red ones last of all.
class PlanPainter {
public:
    /// `objects` must outlive the painter of the plan.
    explicit PlanPainter(const QVector<DefPolygon>& objects);

    /// Draws the plan with its frame on a picture of the given size.
    void paint(PlanCanvas& canvas, const QSizeF& size, const QString& title);

private:
    struct Label {
        QPointF place;
        QString text;
        bool isRed;
        bool isObject;
    };

    void findExtent();
    void fit(const QRectF& frame);
    QPointF toPicture(double x, double y) const;
    QPointF toPicture(const DefPoint& point) const { return toPicture(point.x, point.y); }
    void drawFrame(PlanCanvas& canvas, const QString& title) const;
    void drawObject(PlanCanvas& canvas, int index);
    void drawPoints(PlanCanvas& canvas, const DefPolygon& object, const QBitArray& conflicts);
    void drawLabels(PlanCanvas& canvas, PlanSpace space);

    const QVector<DefPolygon>& m_objects;
    QBitArray m_duplicates;
    bool m_isEmpty = true; ///< no vertex has a place
    double m_minX = 0;
    double m_maxX = 0;
    double m_minY = 0;
    double m_maxY = 0;
    QRectF m_frame;
    double m_scale = 1; ///< picture units for a coordinate unit
    PlanSpace m_dots;
    PlanSpace m_redDots;
    QVector<Label> m_labels;
};
