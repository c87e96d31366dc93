#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPolygonF>
#include <QVector>
#include <QXmlStreamWriter>

class QPainter;

/// What a plan is drawn with: the few shapes that it consists of.
class PlanCanvas {
public:
    virtual ~PlanCanvas() = default;
    /// What is drawn until endGroup() belongs together: a layer, or an object with its name.
    virtual void beginGroup(const QString& id, const QString& title, bool isLayer) = 0;
    virtual void endGroup() = 0;
    /// Open or closed lines; `areas` are filled, where they overlap every other time.
    virtual void drawContours(const QVector<QPolygonF>& lines, const QVector<QPolygonF>& areas,
        const QColor& line, const QColor& area) = 0;
    /// A dot with an identifier and a name of its own.
    virtual void drawDot(const QPointF& place, double radius, const QColor& color,
        const QString& id, const QString& title) = 0;
    /// A line of text that starts at `place` on its base line.
    virtual void drawText(
        const QPointF& place, const QString& text, const QFont& font, const QColor& color) = 0;
};

/// Draws through a painter.
class PainterCanvas : public PlanCanvas {
public:
    explicit PainterCanvas(QPainter& painter, const QColor& paper = Qt::white);
    /// Whether all is drawn fast: contours without smooth edges, and small ones without their area;
    /// dots at whole pixels.
    void setFast(bool fast);
    void beginGroup(const QString&, const QString&, bool) override { }
    void endGroup() override { }
    void drawContours(const QVector<QPolygonF>& lines, const QVector<QPolygonF>& areas,
        const QColor& line, const QColor& area) override;
    void drawDot(const QPointF& place, double radius, const QColor& color, const QString& id,
        const QString& title) override;
    void drawText(
        const QPointF& place, const QString& text, const QFont& font, const QColor& color) override;

private:
    void drawFast(const QVector<QPolygonF>& lines, const QVector<QPolygonF>& areas,
        const QColor& line, const QColor& area);

    void stampDot(const QPointF& place, double radius, const QColor& color);

    QPainter& m_painter;
    bool m_isFast = false;
    QImage m_stamp; ///< of the dots that are drawn fast
    double m_stampRadius = 0;
    QColor m_stampColor;
};

/// Writes an SVG document as it draws.
class SvgCanvas : public PlanCanvas {
public:
    SvgCanvas(QIODevice& device, const QSize& size, const QString& title);
    ~SvgCanvas() override;
    void beginGroup(const QString& id, const QString& title, bool isLayer) override;
    void endGroup() override;
    void drawContours(const QVector<QPolygonF>& lines, const QVector<QPolygonF>& areas,
        const QColor& line, const QColor& area) override;
    void drawDot(const QPointF& place, double radius, const QColor& color, const QString& id,
        const QString& title) override;
    void drawText(
        const QPointF& place, const QString& text, const QFont& font, const QColor& color) override;

private:
    void attribute(const char* name, const QString& value);
    void attribute(const char* name, double value);
    void fill(const QColor& color);
    void stroke(const QColor& color);
    QString pathOf(const QVector<QPolygonF>& polygons) const;

    QXmlStreamWriter m_writer;
};
