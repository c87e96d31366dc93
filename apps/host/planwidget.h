#pragma once

#include "plan/planscene.h"

#include <QTimer>
#include <QWidget>

#include <memory>

class Document;

/// The plan of the form: wheel and keys zoom and move it, a click chooses an object or a vertex.
class PlanWidget : public QWidget {
    Q_OBJECT

public:
    /// `document` must outlive the widget.
    explicit PlanWidget(Document& document, QWidget* parent = nullptr);
    ~PlanWidget() override;

    const PlanSelection& selection() const { return m_selection; }
    /// Chooses objects; the last of them, if it is out of sight, moves into the middle.
    void select(const QVector<int>& objects);
    /// Chooses a vertex of the last object chosen; contour -1 for none.
    void selectVertex(int contour, int vertex);

    /// The place of a vertex in the widget.
    QPointF placeOf(const DefPoint& point) const;
    /// Picture units for a coordinate unit.
    double scale() const;

    QSize sizeHint() const override { return { 600, 500 }; }

public slots:
    void fit();
    void fitSelection();
    void zoomIn() { zoom(zoomStep, QRectF(rect()).center()); }
    void zoomOut() { zoom(1 / zoomStep, QRectF(rect()).center()); }

signals:
    void objectPicked(int object); ///< -1 for none
    void vertexPicked(int contour, int vertex);
    /// The coordinates under the cursor, upwards and to the right; none for an empty text.
    void cursorMoved(const QString& coordinates);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    static constexpr double zoomStep = 1.25;

    void rebuild();
    void lookForConflicts();
    QRectF frame() const;
    void zoom(double factor, const QPointF& place);
    void pan(const QPointF& way);
    void pick(const QPointF& place);
    QString coordinatesAt(const QPointF& place) const;

    Document& m_document;
    std::unique_ptr<PlanScene> m_scene;
    PlanSelection m_selection;
    QTimer m_conflictTimer;
    bool m_isFitted = true; ///< shows everything, whatever the size of the widget
    Qt::MouseButton m_button = Qt::NoButton; ///< that was pressed, to click or to drag
    QPointF m_pressed;
    QPointF m_dragged;
    bool m_isDragging = false;
};
