#include "plan/planpainter.h"

#include "geometry/conflicts.h"
#include "plan/plancanvas.h"
#include "plan/planframe.h"
#include "plan/planplaces.h"
#include "plan/planstyle.h"

PlanPainter::PlanPainter(const QVector<DefPolygon>& objects, const PlanAxes& axes)
    : m_objects(objects)
    , m_axes(axes)
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
    if (!m_view.isEmpty())
        frame.drawGrid();
    canvas.endGroup();
    if (m_view.isEmpty())
        return;
    m_labels.clear();
    m_hasRed = false;
    m_dots = PlanSpace(size);
    m_redDots = PlanSpace(size);
    drawObjects(canvas);
    drawPoints(canvas);
    canvas.beginGroup(QStringLiteral("legend"), QStringLiteral("Легенда"), true);
    frame.drawLegend(axesText(), m_axes.isNorthUp, m_hasRed);
    canvas.endGroup();
    canvas.beginGroup(QStringLiteral("names"), QStringLiteral("Обозначения"), true);
    drawPlanLabels(canvas, m_labels, m_view.frame(), space);
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

void PlanPainter::drawObjects(PlanCanvas& canvas)
{
    canvas.beginGroup(QStringLiteral("objects"), QStringLiteral("Объекты"), true);
    for (int i = 0; i < m_objects.size(); ++i) {
        canvas.beginGroup(
            QStringLiteral("object-%1").arg(i + 1), planText(m_objects.at(i).def), false);
        drawObject(canvas, i);
        canvas.endGroup();
    }
    canvas.endGroup();
}

void PlanPainter::drawObject(PlanCanvas& canvas, int index)
{
    const DefPolygon& object = m_objects.at(index);
    const bool isRed = m_duplicates.testBit(index);
    m_hasRed = m_hasRed || isRed;
    QVector<QPolygonF> lines;
    QVector<QPolygonF> areas;
    for (const QVector<DefPoint>& contour : object.contours) {
        QPolygonF polygon;
        for (const DefPoint& vertex : contour) {
            if (isPlace(vertex))
                polygon.append(m_view.toPicture(vertex));
        }
        if (polygon.isEmpty())
            continue;
        lines.append(polygon);
        if (contour.size() > 1 && coincide(contour.first(), contour.last()))
            areas.append(polygon);
    }
    canvas.drawContours(lines, areas, isRed ? planRed : planLine, isRed ? planRedArea : planArea);
    if (!lines.isEmpty())
        addObjectLabels(
            m_labels, object.def, areas.isEmpty() ? lines : areas, !areas.isEmpty(), isRed);
}

void PlanPainter::drawPoints(PlanCanvas& canvas)
{
    canvas.beginGroup(QStringLiteral("points"), QStringLiteral("Точки"), true);
    for (int i = 0; i < m_objects.size(); ++i)
        drawPointsOf(canvas, i);
    canvas.endGroup();
}

void PlanPainter::drawPointsOf(PlanCanvas& canvas, int objectIndex)
{
    const DefPolygon& object = m_objects.at(objectIndex);
    const QBitArray conflicts = conflictingPoints(object);
    int index = 0;
    for (const QVector<DefPoint>& contour : object.contours) {
        for (int i = 0; i < contour.size(); ++i) {
            const DefPoint& vertex = contour.at(i);
            const bool isRed = conflicts.testBit(index++);
            const bool isClosing = i > 0 && i == contour.size() - 1
                && coincide(contour.first(), vertex) && contour.first().def == vertex.def;
            if (!isPlace(vertex) || isClosing)
                continue;
            const QPointF place = m_view.toPicture(vertex);
            // A dot on a dot, or a name on a name, would only make the picture large.
            if (!(isRed ? m_redDots : m_dots).take(QRectF(place, place)))
                continue;
            m_hasRed = m_hasRed || isRed;
            const QString text = planText(vertex.def);
            canvas.drawDot(place, isRed ? 4 : 1.8, isRed ? planRed : planLine,
                QStringLiteral("point-%1-%2").arg(objectIndex + 1).arg(index), text);
            m_labels.append({ place, text, isRed, false });
        }
    }
}
