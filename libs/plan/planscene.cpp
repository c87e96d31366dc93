#include "plan/planscene.h"

#include "geometry/conflicts.h"
#include "plan/plancanvas.h"
#include "plan/plandrawing.h"
#include "plan/planframe.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace {

constexpr double detail = 1; ///< shorter steps are not seen
constexpr double speckSize = 3; ///< smaller objects have no shape
constexpr double namedSize = 14; ///< smaller objects have no room for a name
constexpr int mostNames = 300; ///< of objects, and of points
constexpr int crowded = 4000; ///< more places than these are drawn without smooth edges
constexpr int mostDots = 1200;
constexpr double chosenWidth = 2.5;

double sizeOf(const QRectF& box)
{
    return std::max(box.width(), box.height());
}

bool isApart(const QRectF& box, const QRectF& frame)
{
    return box.right() < frame.left() || box.left() > frame.right() || box.bottom() < frame.top()
        || box.top() > frame.bottom();
}

double distance(const QPointF& place, const QPointF& a, const QPointF& b)
{
    const QPointF step = b - a;
    const double square = QPointF::dotProduct(step, step);
    const double part =
        square > 0 ? qBound(0.0, QPointF::dotProduct(place - a, step) / square, 1.0) : 0;
    const QPointF way = place - (a + step * part);
    return std::hypot(way.x(), way.y());
}

const DefPoint& pointOf(
    const QVector<DefPolygon>& objects, int object, const PlanIndex::Vertex& vertex)
{
    return objects.at(object).contours.at(vertex.contour).at(vertex.index);
}

bool isNear(const PlanOutline& outline, const QPointF& place, double reach)
{
    for (const QPolygonF& line : outline.lines) {
        for (int i = 0; i < line.size(); ++i) {
            if (distance(place, line.at(i == 0 ? 0 : i - 1), line.at(i)) <= reach)
                return true;
        }
    }
    int crossed = 0;
    for (const QPolygonF& area : outline.areas)
        crossed += area.containsPoint(place, Qt::OddEvenFill) ? 1 : 0;
    return crossed % 2 == 1;
}

} // namespace

PlanScene::PlanScene(const QVector<DefPolygon>& objects, const PlanAxes& axes)
    : view(objects, axes.swapped)
    , m_objects(objects)
    , m_axes(axes)
    , m_index(objects, axes.swapped)
    , m_duplicates(objects.size())
{
}

bool PlanScene::findConflicts(int vertices)
{
    for (; vertices > 0 && m_nextToLookAt < m_objects.size(); ++m_nextToLookAt) {
        const QBitArray marks = conflictingPoints(m_objects.at(m_nextToLookAt));
        if (marks.count(true) > 0)
            m_conflicts.insert(m_nextToLookAt, marks);
        vertices -= marks.size() + 1;
    }
    return m_nextToLookAt < m_objects.size();
}

void PlanScene::updateConflicts(int object)
{
    if (object >= m_nextToLookAt)
        return;
    m_conflicts.remove(object);
    const QBitArray marks = conflictingPoints(m_objects.at(object));
    if (marks.count(true) > 0)
        m_conflicts.insert(object, marks);
}

void PlanScene::paint(QPainter& painter, const PlanColors& colors, const QColor& chosen,
    const PlanSelection& selection)
{
    PainterCanvas canvas(painter, colors.paper);
    const QSizeF size(view.frame().right() + 1, view.frame().bottom() + 1);
    PlanSpace space(size);
    PlanFrame frame(canvas, view, space, colors);
    frame.drawBorder();
    if (view.isEmpty())
        return;
    gather();
    PlanDrawing drawing(canvas, size, colors);
    painter.save();
    painter.setClipRect(view.frame());
    canvas.setFast(m_size > crowded);
    drawObjects(painter, drawing, colors);
    canvas.setFast(false);
    drawSelection(painter, chosen, selection);
    if (m_size <= mostDots)
        drawPoints(drawing);
    canvas.setFast(m_size > crowded);
    drawConflicts(drawing);
    canvas.setFast(false);
    frame.drawGrid(m_axes.isNorthUp);
    nameObjects(drawing);
    drawing.drawNames(view.frame(), space);
    painter.restore();
    frame.drawScaleBar();
}

void PlanScene::gather()
{
    m_shown.clear();
    m_size = 0;
    for (const int red : { 0, 1 }) {
        m_specks[red].clear();
        m_steps[red].clear();
    }
    // Specks that fall on one another are drawn once.
    PlanSpace taken[] = { PlanSpace(QSizeF(view.frame().right(), view.frame().bottom())), {} };
    taken[1] = taken[0];
    QVector<int> small;
    for (int i = 0; i < m_objects.size(); ++i) {
        const QRectF box = m_index.boxInPicture(i, view);
        if (isApart(box, view.frame()) || (box.isNull() && box.topLeft().isNull()))
            continue;
        const int red = m_duplicates.testBit(i) ? 1 : 0;
        if (sizeOf(box) < speckSize && m_size + m_objects.size() - i > mostDots) {
            if (taken[red].take(QRectF(box.center(), box.center())))
                m_specks[red].append(QRectF(box.center(), QSizeF(0, 0)).adjusted(-1, -1, 1, 1));
        } else if (sizeOf(box) < namedSize) {
            m_size += m_index.appendSteps(i, view, detail, m_steps[red]);
            if (m_size <= crowded)
                small.append(i);
        } else {
            m_shown.push_back({ i, box, m_index.outline(i, view, detail) });
            m_size += m_shown.back().outline.size;
        }
    }
    if (m_size <= crowded)
        showSmall(small);
}

void PlanScene::showSmall(const QVector<int>& objects)
{
    m_steps[0].clear();
    m_steps[1].clear();
    for (const int object : objects) {
        m_shown.push_back(
            { object, m_index.boxInPicture(object, view), m_index.outline(object, view, detail) });
    }
    std::sort(m_shown.begin(), m_shown.end(),
        [](const Shown& a, const Shown& b) { return a.object < b.object; });
}

void PlanScene::drawObjects(QPainter& painter, PlanDrawing& drawing, const PlanColors& colors)
{
    for (const int red : { 0, 1 }) {
        const QColor& color = red == 1 ? colors.red : colors.line;
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawRects(m_specks[red]);
        for (const Shown& shown : m_shown) {
            if (m_duplicates.testBit(shown.object) == (red == 1))
                drawing.drawObject(shown.outline, red == 1);
        }
        painter.setPen(QPen(color, 0));
        painter.drawLines(m_steps[red].data(), static_cast<int>(m_steps[red].size()));
    }
}

void PlanScene::drawSelection(
    QPainter& painter, const QColor& chosen, const PlanSelection& selection) const
{
    QColor area = chosen;
    area.setAlpha(70);
    for (const int object : selection.objects) {
        const QRectF box =
            object < m_objects.size() ? m_index.boxInPicture(object, view) : QRectF();
        if (object >= m_objects.size() || isApart(box, view.frame()))
            continue;
        if (sizeOf(box) < speckSize) {
            painter.fillRect(box.adjusted(-1, -1, 1, 1), chosen);
            continue;
        }
        const PlanOutline outline = m_index.outline(object, view, detail);
        QPainterPath path;
        for (const QPolygonF& ring : outline.areas)
            path.addPolygon(ring);
        painter.setRenderHint(QPainter::Antialiasing, outline.size <= crowded);
        painter.fillPath(path, area);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(chosen, outline.size <= crowded ? chosenWidth : 1));
        for (const QPolygonF& part : outline.lines)
            painter.drawPolyline(part);
    }
    painter.setRenderHint(QPainter::Antialiasing, true);
    if (selection.objects.isEmpty() || selection.contour < 0)
        return;
    const auto& contours = m_objects.at(selection.objects.last()).contours;
    const DefPoint vertex = contours.value(selection.contour).value(selection.vertex);
    if (!isPlace(vertex))
        return;
    painter.setPen(QPen(chosen, chosenWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(view.toPicture(vertex), 7, 7);
}

void PlanScene::nameObjects(PlanDrawing& drawing) const
{
    QVector<const Shown*> named;
    for (const Shown& shown : m_shown) {
        if (sizeOf(shown.box) >= namedSize && !shown.outline.lines.isEmpty()
            && !m_objects.at(shown.object).def.isEmpty())
            named.append(&shown);
    }
    const auto isBefore = [this](const Shown* a, const Shown* b) {
        const bool redA = m_duplicates.testBit(a->object);
        const bool redB = m_duplicates.testBit(b->object);
        if (redA != redB)
            return redA;
        return a->box.width() * a->box.height() > b->box.width() * b->box.height();
    };
    const int count = std::min(named.size(), mostNames);
    std::partial_sort(named.begin(), named.begin() + count, named.end(), isBefore);
    named.resize(count);
    for (const Shown* shown : qAsConst(named)) {
        drawing.nameObject(
            shown->outline, m_objects.at(shown->object).def, m_duplicates.testBit(shown->object));
    }
}

void PlanScene::drawPoints(PlanDrawing& drawing) const
{
    int names = 0;
    for (const Shown& shown : m_shown) {
        const QBitArray conflicts = m_conflicts.value(shown.object);
        const auto vertices = m_index.verticesIn(shown.object, view, view.frame());
        for (const PlanIndex::Vertex& vertex : vertices) {
            // The red ones are drawn over all others.
            if (!conflicts.isEmpty() && conflicts.testBit(vertex.number))
                continue;
            const QString& def = pointOf(m_objects, shown.object, vertex).def;
            if (drawing.drawPoint(vertex.place, def, false, shown.object, vertex.number)
                && ++names <= mostNames)
                drawing.namePoint(vertex.place, def, false);
        }
    }
}

void PlanScene::drawConflicts(PlanDrawing& drawing) const
{
    int names = 0;
    for (auto it = m_conflicts.cbegin(); it != m_conflicts.cend(); ++it) {
        if (isApart(m_index.boxInPicture(it.key(), view), view.frame()))
            continue;
        const auto vertices = m_index.verticesIn(it.key(), view, view.frame());
        for (const PlanIndex::Vertex& vertex : vertices) {
            const QString& def = pointOf(m_objects, it.key(), vertex).def;
            if (it.value().testBit(vertex.number)
                && drawing.drawPoint(vertex.place, def, true, it.key(), vertex.number)
                && ++names <= mostNames)
                drawing.namePoint(vertex.place, def, true);
        }
    }
}

int PlanScene::objectAt(const QPointF& place, double reach) const
{
    int found = -1;
    double least = 0;
    for (int i = 0; i < m_objects.size(); ++i) {
        const QRectF box = m_index.boxInPicture(i, view);
        const double area = box.width() * box.height();
        const bool isHere =
            !isApart(box, QRectF(place, place).adjusted(-reach, -reach, reach, reach));
        if (!isHere || (found >= 0 && area >= least)
            || !isNear(m_index.outline(i, view, detail), place, reach))
            continue;
        found = i;
        least = area;
    }
    return found;
}

PlanIndex::Vertex PlanScene::vertexAt(int object, const QPointF& place, double reach) const
{
    PlanIndex::Vertex nearest{ -1, -1, -1, {} };
    double least = reach;
    const QRectF around = QRectF(place, place).adjusted(-reach, -reach, reach, reach);
    for (const PlanIndex::Vertex& vertex : m_index.verticesIn(object, view, around)) {
        const QPointF way = vertex.place - place;
        const double length = std::hypot(way.x(), way.y());
        if (length > least)
            continue;
        least = length;
        nearest = vertex;
    }
    return nearest;
}
