#include "planwidget.h"

#include "document.h"
#include "theme.h"

#include <QApplication>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr double reach = 6; ///< so near to a line or a vertex is on it
constexpr double arrowStep = 60;
constexpr int conflictStep = 20000; ///< vertices looked at in one go
/// A picture unit is never less than this part of a unit of the coordinates, nor more than so many
/// times the whole plan.
constexpr double mostScale = 1e5;
constexpr double leastPart = 0.1;

} // namespace

PlanWidget::PlanWidget(Document& document, QWidget* parent)
    : QWidget(parent)
    , m_document(document)
{
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setMinimumSize(200, 160);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAccessibleName(QStringLiteral("План"));
    setWhatsThis(QStringLiteral("План объектов: колесо и клавиши + и − меняют масштаб, мышь и "
                                "стрелки двигают план, Home показывает всё, щелчок выбирает."));
    connect(&document, &Document::tableReplaced, this, &PlanWidget::rebuild);
    connect(&document, &Document::objectRenamed, this, [this] {
        m_scene->setDuplicates(m_document.duplicates());
        update();
    });
    connect(&document, &Document::pointRenamed, this, [this](int object) {
        m_scene->updateConflicts(object);
        update();
    });
    m_conflictTimer.setInterval(0);
    connect(&m_conflictTimer, &QTimer::timeout, this, &PlanWidget::lookForConflicts);
    rebuild();
}

PlanWidget::~PlanWidget() = default;

void PlanWidget::rebuild()
{
    const PlanAxes axes{ m_document.isNorthingFirst(), true };
    m_scene = std::make_unique<PlanScene>(m_document.objects(), axes);
    m_scene->setDuplicates(m_document.duplicates());
    m_selection = {};
    m_conflictTimer.start();
    fit();
}

void PlanWidget::lookForConflicts()
{
    if (m_scene->findConflicts(conflictStep))
        return;
    m_conflictTimer.stop();
    update();
}

QRectF PlanWidget::frame() const
{
    constexpr int margin = 6;
    constexpr int below = 46; // the bar of the scale
    return QRectF(rect()).adjusted(margin, margin, -margin, -below);
}

void PlanWidget::fit()
{
    m_scene->view.fit(frame());
    m_isFitted = true;
    update();
}

void PlanWidget::fitSelection()
{
    if (m_selection.objects.isEmpty())
        return;
    const QRectF box = m_scene->boxInPicture(m_selection.objects.last());
    const QPointF center = m_scene->view.fromPicture(box.center());
    const double factor = std::min(frame().width() / std::max(box.width(), 1.0),
        frame().height() / std::max(box.height(), 1.0));
    constexpr double used = 0.7;
    m_scene->view.show(frame(), center, std::min(scale() * factor * used, mostScale));
    m_isFitted = false;
    update();
}

double PlanWidget::scale() const
{
    return m_scene->view.scale();
}

QPointF PlanWidget::placeOf(const DefPoint& point) const
{
    return m_scene->view.toPicture(point);
}

void PlanWidget::select(const QVector<int>& objects)
{
    if (m_selection.objects == objects)
        return;
    m_selection = { objects, -1, -1 };
    if (!objects.isEmpty()) {
        const QRectF box = m_scene->boxInPicture(objects.last());
        if (!box.isNull() && !box.adjusted(-1, -1, 1, 1).intersects(frame()))
            pan(frame().center() - box.center());
    }
    update();
}

void PlanWidget::selectVertex(int contour, int vertex)
{
    m_selection.contour = contour;
    m_selection.vertex = vertex;
    if (contour >= 0 && !m_selection.objects.isEmpty()) {
        const auto& contours = m_document.objects().at(m_selection.objects.last()).contours;
        const DefPoint point = contours.value(contour).value(vertex);
        const QPointF place = placeOf(point);
        if (isPlace(point) && !frame().contains(place))
            pan(frame().center() - place);
    }
    update();
}

void PlanWidget::zoom(double factor, const QPointF& place)
{
    PlanView whole = m_scene->view;
    whole.fit(frame());
    const double most = std::max(mostScale, whole.scale());
    const double scaled = qBound(whole.scale() * leastPart, scale() * factor, most);
    const QPointF fixed = m_scene->view.fromPicture(place);
    const QPointF way = place - frame().center();
    m_scene->view.show(
        frame(), QPointF(fixed.x() - way.x() / scaled, fixed.y() + way.y() / scaled), scaled);
    m_isFitted = false;
    update();
}

void PlanWidget::pan(const QPointF& way)
{
    m_scene->view.show(frame(), m_scene->view.fromPicture(frame().center() - way), scale());
    m_isFitted = false;
    update();
}

void PlanWidget::pick(const QPointF& place)
{
    if (!m_selection.objects.isEmpty()) {
        const auto vertex = m_scene->vertexAt(m_selection.objects.last(), place, reach);
        if (vertex.contour >= 0) {
            emit vertexPicked(vertex.contour, vertex.index);
            return;
        }
    }
    emit objectPicked(m_scene->objectAt(place, reach));
}

QString PlanWidget::coordinatesAt(const QPointF& place) const
{
    if (m_scene->view.isEmpty() || !frame().contains(place))
        return {};
    const QPointF at = m_scene->view.fromPicture(place);
    const auto number = [this](double value) {
        return QLocale().toString(value, 'f', m_document.table().decimals);
    };
    return QStringLiteral("X %1  Y %2").arg(number(at.y()), number(at.x()));
}

void PlanWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    m_scene->paint(
        painter, planColors(palette()), palette().color(QPalette::Highlight), m_selection);
    if (!hasFocus())
        return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

void PlanWidget::resizeEvent(QResizeEvent*)
{
    if (m_isFitted)
        fit();
    else
        m_scene->view.show(frame(), m_scene->view.center(), scale());
}

void PlanWidget::wheelEvent(QWheelEvent* event)
{
    constexpr double notch = 120;
    zoom(std::pow(zoomStep, event->angleDelta().y() / notch), event->position());
    event->accept();
}

void PlanWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton && event->button() != Qt::MiddleButton)
        return;
    m_button = event->button();
    m_pressed = event->localPos();
    m_dragged = m_pressed;
    m_isDragging = false;
}

void PlanWidget::mouseMoveEvent(QMouseEvent* event)
{
    emit cursorMoved(coordinatesAt(event->localPos()));
    if (!(event->buttons() & m_button))
        return;
    const QPointF way = event->localPos() - m_pressed;
    m_isDragging = m_isDragging || way.manhattanLength() >= QApplication::startDragDistance();
    if (!m_isDragging)
        return;
    setCursor(Qt::ClosedHandCursor);
    pan(event->localPos() - m_dragged);
    m_dragged = event->localPos();
}

void PlanWidget::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != m_button)
        return;
    m_button = Qt::NoButton;
    unsetCursor();
    if (!m_isDragging && event->button() == Qt::LeftButton)
        pick(event->localPos());
}

void PlanWidget::mouseDoubleClickEvent(QMouseEvent*)
{
    // Its press takes nothing up: under the cursor something else stands when it is released.
    fitSelection();
}

void PlanWidget::leaveEvent(QEvent*)
{
    emit cursorMoved(QString());
}

void PlanWidget::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return zoomIn();
    case Qt::Key_Minus:
        return zoomOut();
    case Qt::Key_Home:
        return fit();
    case Qt::Key_Left:
        return pan({ arrowStep, 0 });
    case Qt::Key_Right:
        return pan({ -arrowStep, 0 });
    case Qt::Key_Up:
        return pan({ 0, arrowStep });
    case Qt::Key_Down:
        return pan({ 0, -arrowStep });
    default:
        QWidget::keyPressEvent(event);
    }
}
