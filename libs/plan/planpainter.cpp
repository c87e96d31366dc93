#include "plan/planpainter.h"

#include "geometry/conflicts.h"
#include "plan/plancanvas.h"
#include "plan/plandrawing.h"
#include "plan/planframe.h"

PlanPainter::PlanPainter(const QVector<DefPolygon>& objects, const PlanAxes& axes)
    : m_objects(objects)
    , m_axes(axes)
    , m_index(objects, axes.swapped)
    , m_duplicates(duplicateDefs(objects))
    , m_view(objects, axes.swapped)
{
}

void PlanPainter::paint(PlanCanvas& canvas, const QSizeF& size, const QString& title)
{
    const double margin = PlanView::margin;
    m_view.fit(QRectF(QPointF(), size).adjusted(margin, margin, -margin, -margin));
    PlanSpace space(size);
    PlanFrame frame(canvas, m_view, space);
    canvas.beginGroup(QStringLiteral("frame"), QStringLiteral("Рамка"), true);
    frame.drawBorder();
    frame.drawTitle(title);
    canvas.endGroup();
    if (m_view.isEmpty())
        return;
    PlanDrawing drawing(canvas, size, {});
    drawObjects(canvas, drawing);
    drawPoints(canvas, drawing);
    canvas.beginGroup(QStringLiteral("grid"), QStringLiteral("Сетка"), true);
    frame.drawGrid(m_axes.isNorthUp);
    canvas.endGroup();
    canvas.beginGroup(QStringLiteral("legend"), QStringLiteral("Легенда"), true);
    frame.drawLegend(axesText(), drawing.hasRed());
    frame.drawScaleBar();
    canvas.endGroup();
    canvas.beginGroup(QStringLiteral("names"), QStringLiteral("Обозначения"), true);
    drawing.drawNames(m_view.frame(), space);
    canvas.endGroup();
}

QString PlanPainter::axesText() const
{
    const auto number = [](double value) { return QString::number(value, 'f', 2); };
    const bool isXUp = m_axes.isXUp || m_axes.swapped;
    const QLatin1String right(isXUp ? "Y" : "X");
    const QLatin1String up(isXUp ? "X" : "Y");
    return QStringLiteral("%1вправо %2: от %3 до %4; вверх %5: от %6 до %7")
        .arg(m_axes.isNorthUp ? QStringLiteral("север вверху; ") : QString(), right,
            number(m_view.left()), number(m_view.right()), up, number(m_view.bottom()),
            number(m_view.top()));
}

void PlanPainter::drawObjects(PlanCanvas& canvas, PlanDrawing& drawing)
{
    canvas.beginGroup(QStringLiteral("objects"), QStringLiteral("Объекты"), true);
    for (int i = 0; i < m_objects.size(); ++i) {
        const QString& def = m_objects.at(i).def;
        const bool isRed = m_duplicates.testBit(i);
        canvas.beginGroup(QStringLiteral("object-%1").arg(i + 1), planText(def), false);
        const PlanOutline outline = m_index.outline(i, m_view, 0);
        drawing.drawObject(outline, isRed);
        canvas.endGroup();
        drawing.nameObject(outline, def, isRed);
        if (objectDrawn)
            objectDrawn();
    }
    canvas.endGroup();
}

void PlanPainter::drawPoints(PlanCanvas& canvas, PlanDrawing& drawing)
{
    canvas.beginGroup(QStringLiteral("points"), QStringLiteral("Точки"), true);
    for (int i = 0; i < m_objects.size(); ++i)
        drawPointsOf(i, drawing);
    canvas.endGroup();
}

void PlanPainter::drawPointsOf(int object, PlanDrawing& drawing)
{
    const auto& contours = m_objects.at(object).contours;
    const QBitArray conflicts = conflictingPoints(m_objects.at(object));
    const auto vertices = m_index.verticesIn(object, m_view, m_view.frame());
    for (const PlanIndex::Vertex& vertex : vertices) {
        const QVector<DefPoint>& contour = contours.at(vertex.contour);
        const DefPoint& point = contour.at(vertex.index);
        const bool isClosing = vertex.index > 0 && vertex.index == contour.size() - 1
            && coincide(contour.first(), point) && contour.first().def == point.def;
        const bool isRed = conflicts.testBit(vertex.number);
        if (!isClosing && drawing.drawPoint(vertex.place, point.def, isRed, object, vertex.number))
            drawing.namePoint(vertex.place, point.def, isRed);
    }
}
