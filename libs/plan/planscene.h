#pragma once

#include "plan/planindex.h"
#include "plan/planpainter.h"

#include <QBitArray>
#include <QHash>

#include <vector>

class PlanDrawing;
class QPainter;

/// What is chosen in a plan.
struct PlanSelection {
    QVector<int> objects;
    int contour = -1; ///< of the vertex chosen in the last of them; -1 for none
    int vertex = -1;
};

/// A plan as a window shows it: a part of the objects at any scale, with as much of them as can be
/// seen there. It is drawn by the same hands as the plan on a picture of its own.
class PlanScene {
public:
    /// `objects` must outlive the scene, and their places stay; designations may change.
    PlanScene(const QVector<DefPolygon>& objects, const PlanAxes& axes);

    PlanView view; ///< what is shown; set before painting

    /// The objects that are red: those whose designation occurs more than once.
    void setDuplicates(const QBitArray& duplicates) { m_duplicates = duplicates; }
    /// Goes on looking for points whose name stands at another place of their object too, through
    /// so many vertices or a few more. False when all have been looked at.
    bool findConflicts(int vertices);
    /// Looks at an object again, where findConflicts() has come past it.
    void updateConflicts(int object);

    void paint(QPainter& painter, const PlanColors& colors, const QColor& chosen,
        const PlanSelection& selection);

    /// The object at a place of the picture, the smallest of several; -1 where there is none
    /// within `reach`.
    int objectAt(const QPointF& place, double reach) const;
    /// The vertex of an object nearest to a place of the picture; contour -1 where there is none
    /// within `reach`.
    PlanIndex::Vertex vertexAt(int object, const QPointF& place, double reach) const;
    /// The rectangle of the picture that an object fills.
    QRectF boxInPicture(int object) const { return m_index.boxInPicture(object, view); }

private:
    /// An object in the window.
    struct Shown {
        int object;
        QRectF box;
        PlanOutline outline;
    };

    void gather();
    /// Gives small objects shapes after all: there are few.
    void showSmall(const QVector<int>& objects);
    void drawObjects(QPainter& painter, PlanDrawing& drawing, const PlanColors& colors);
    void drawSelection(
        QPainter& painter, const QColor& chosen, const PlanSelection& selection) const;
    void nameObjects(PlanDrawing& drawing) const;
    void drawPoints(PlanDrawing& drawing) const;
    void drawConflicts(PlanDrawing& drawing) const;

    const QVector<DefPolygon>& m_objects;
    const PlanAxes m_axes;
    const PlanIndex m_index;
    QBitArray m_duplicates;
    QHash<int, QBitArray> m_conflicts; ///< of objects that have any
    int m_nextToLookAt = 0;

    // Of the picture that is being painted.
    std::vector<Shown> m_shown;
    std::vector<QLineF> m_steps[2]; ///< along small objects of a crowded picture; red ones second
    QVector<QRectF> m_specks[2]; ///< objects too small for a shape; the red ones second
    int m_size = 0; ///< places of all shapes
};
