#include "plan/planindex.h"

#include <algorithm>
#include <cmath>

namespace {

/// So many vertices share a box.
constexpr int stretch = 64;
/// Lines that reach further out of the picture than this are clipped before they are drawn: a
/// painter counts in numbers of a limited size.
constexpr double farOut = 4000;

/// A sum of sizes that a comparison stands on: points on one side of an edge are not negative.
using Side = double (*)(const QPointF& place, const QRectF& rect);

QPolygonF clippedAt(const QPolygonF& ring, const QRectF& rect, Side side)
{
    QPolygonF result;
    result.reserve(ring.size() + 4);
    for (int i = 0; i < ring.size(); ++i) {
        const QPointF& from = ring.at(i == 0 ? ring.size() - 1 : i - 1);
        const QPointF& to = ring.at(i);
        const double before = side(from, rect);
        const double after = side(to, rect);
        if ((before < 0) != (after < 0))
            result.append(from + (to - from) * (before / (before - after)));
        if (after >= 0)
            result.append(to);
    }
    return result;
}

bool mayCross(const QPointF& a, const QPointF& b, const QRectF& rect)
{
    return std::max(a.x(), b.x()) >= rect.left() && std::min(a.x(), b.x()) <= rect.right()
        && std::max(a.y(), b.y()) >= rect.top() && std::min(a.y(), b.y()) <= rect.bottom();
}

/// The part of a step that lies in the rectangle; false when none does.
bool clipStep(QPointF& a, QPointF& b, const QRectF& rect)
{
    double from = 0;
    double to = 1;
    const QPointF step = b - a;
    const double slopes[] = { -step.x(), step.x(), -step.y(), step.y() };
    const double room[] = { a.x() - rect.left(), rect.right() - a.x(), a.y() - rect.top(),
        rect.bottom() - a.y() };
    for (int i = 0; i < 4; ++i) {
        if (slopes[i] == 0 && room[i] < 0)
            return false;
        const double at = room[i] / slopes[i];
        if (slopes[i] < 0)
            from = std::max(from, at);
        else if (slopes[i] > 0)
            to = std::min(to, at);
    }
    if (!(from <= to))
        return false;
    b = a + step * to;
    a += step * from;
    return true;
}

bool isFarOut(const QRectF& box, const QRectF& frame)
{
    return box.left() < frame.left() - farOut || box.right() > frame.right() + farOut
        || box.top() < frame.top() - farOut || box.bottom() > frame.bottom() + farOut;
}

/// Gathers the places of a contour that are far enough from each other to be told apart.
class Thinned {
public:
    explicit Thinned(double detail)
        : m_detail(detail)
    {
    }

    void add(const QPointF& place)
    {
        if (!polygon.isEmpty() && std::abs(place.x() - m_last.x()) < m_detail
            && std::abs(place.y() - m_last.y()) < m_detail) {
            m_skipped = place;
            m_hasSkipped = true;
            return;
        }
        append(place);
    }
    /// The last place stays, so that closed contours close.
    void finish()
    {
        if (m_hasSkipped)
            append(m_skipped);
    }

    /// Keeps the room of the places for those of the next contour.
    void startContour()
    {
        polygon.resize(0);
        m_hasSkipped = false;
    }

    QPolygonF polygon;

private:
    void append(const QPointF& place)
    {
        polygon.append(place);
        m_last = place;
        m_hasSkipped = false;
    }

    double m_detail;
    QPointF m_last;
    QPointF m_skipped;
    bool m_hasSkipped = false;
};

bool isClosed(const QVector<DefPoint>& contour)
{
    return contour.size() > 1 && coincide(contour.first(), contour.last());
}

/// `clip`: what lies outside is left out; null where all of it is drawn.
void addContour(PlanOutline& outline, const QPolygonF& polygon, bool closed, const QRectF* clip)
{
    if (polygon.isEmpty())
        return;
    const QPolygonF area = closed && clip ? clippedRing(polygon, *clip) : polygon;
    if (closed && !area.isEmpty())
        outline.areas.append(area);
    if (clip)
        outline.lines += clippedLine(polygon, *clip);
    else
        outline.lines.append(polygon);
    outline.size += polygon.size();
}

} // namespace

QPolygonF clippedRing(const QPolygonF& ring, const QRectF& rect)
{
    static constexpr Side sides[] = {
        [](const QPointF& p, const QRectF& r) { return p.x() - r.left(); },
        [](const QPointF& p, const QRectF& r) { return r.right() - p.x(); },
        [](const QPointF& p, const QRectF& r) { return p.y() - r.top(); },
        [](const QPointF& p, const QRectF& r) { return r.bottom() - p.y(); },
    };
    QPolygonF result = ring;
    for (const Side side : sides)
        result = clippedAt(result, rect, side);
    return result;
}

QVector<QPolygonF> clippedLine(const QPolygonF& line, const QRectF& rect)
{
    QVector<QPolygonF> parts;
    for (int i = 1; i < line.size(); ++i) {
        QPointF from = line.at(i - 1);
        QPointF to = line.at(i);
        if (!mayCross(from, to, rect) || !clipStep(from, to, rect))
            continue;
        if (parts.isEmpty() || parts.last().last() != from)
            parts.append(QPolygonF(QVector<QPointF>{ from }));
        parts.last().append(to);
    }
    return parts;
}

void PlanIndex::Box::take(const DefPoint& vertex, bool swapped)
{
    if (!isPlace(vertex)) {
        isWhole = false;
        return;
    }
    const double x = swapped ? vertex.y : vertex.x;
    const double y = swapped ? vertex.x : vertex.y;
    const bool isFirst = right < left;
    left = isFirst ? x : std::min(left, x);
    right = isFirst ? x : std::max(right, x);
    bottom = isFirst ? y : std::min(bottom, y);
    top = isFirst ? y : std::max(top, y);
}

PlanIndex::PlanIndex(const QVector<DefPolygon>& objects, bool swapped)
    : m_objects(objects)
{
    m_boxes.reserve(static_cast<size_t>(objects.size()));
    m_firstStretch.reserve(static_cast<size_t>(objects.size()));
    for (const DefPolygon& object : objects) {
        m_firstStretch.push_back(static_cast<int>(m_stretches.size()));
        Box whole;
        for (const QVector<DefPoint>& contour : object.contours) {
            for (int i = 0; i < contour.size(); ++i) {
                if (i % stretch == 0)
                    m_stretches.emplace_back();
                m_stretches.back().take(contour.at(i), swapped);
                whole.take(contour.at(i), swapped);
            }
        }
        m_boxes.push_back(whole);
    }
}

QRectF PlanIndex::inPicture(const Box& box, const PlanView& view)
{
    if (box.right < box.left)
        return {};
    return { view.at(box.left, box.top), view.at(box.right, box.bottom) };
}

QRectF PlanIndex::boxInPicture(int object, const PlanView& view) const
{
    return inPicture(m_boxes[static_cast<size_t>(object)], view);
}

template <typename See>
void PlanIndex::eachStretch(int object, See see) const
{
    auto box = static_cast<size_t>(m_firstStretch[static_cast<size_t>(object)]);
    const auto& contours = m_objects.at(object).contours;
    for (int c = 0; c < contours.size(); ++c) {
        const int size = contours.at(c).size();
        for (int i = 0; i < size; i += stretch)
            see(m_stretches[box++], c, i, std::min(i + stretch, size));
    }
}

PlanOutline PlanIndex::outline(int object, const PlanView& view, double detail) const
{
    const bool clips = isFarOut(boxInPicture(object, view), view.frame());
    const QRectF window = view.frame().adjusted(-16, -16, 16, 16);
    PlanOutline outline;
    Thinned thinned(detail);
    eachStretch(object, [&](const Box& box, int c, int first, int end) {
        const QVector<DefPoint>& contour = m_objects.at(object).contours.at(c);
        if (first == 0)
            thinned.polygon.reserve(std::min(contour.size(), stretch));
        const QRectF place = inPicture(box, view);
        // Out of sight, or all of it at one place: its ends stand for it.
        const bool isShort = box.isWhole
            && (!mayCross(place.topLeft(), place.bottomRight(), window)
                || std::max(place.width(), place.height()) < detail);
        const int step = isShort && end - first > 1 ? end - first - 1 : 1;
        for (int i = first; i < end; i += step) {
            if (box.isWhole || isPlace(contour.at(i)))
                thinned.add(view.toPicture(contour.at(i)));
        }
        if (end == contour.size()) {
            thinned.finish();
            addContour(outline, thinned.polygon, isClosed(contour), clips ? &window : nullptr);
            thinned = Thinned(detail);
        }
    });
    return outline;
}

int PlanIndex::appendSteps(
    int object, const PlanView& view, double detail, std::vector<QLineF>& steps) const
{
    int places = 0;
    Thinned thinned(detail);
    for (const QVector<DefPoint>& contour : m_objects.at(object).contours) {
        for (const DefPoint& vertex : contour) {
            if (isPlace(vertex))
                thinned.add(view.toPicture(vertex));
        }
        thinned.finish();
        const QPolygonF& polygon = thinned.polygon;
        for (int i = 1; i < polygon.size(); ++i)
            steps.emplace_back(polygon.at(i - 1), polygon.at(i));
        places += polygon.size();
        thinned.startContour();
    }
    return places;
}

QVector<PlanIndex::Vertex> PlanIndex::verticesIn(
    int object, const PlanView& view, const QRectF& rect) const
{
    QVector<Vertex> vertices;
    int number = 0;
    eachStretch(object, [&](const Box& box, int c, int first, int end) {
        const QRectF place = inPicture(box, view);
        if (box.left <= box.right && mayCross(place.topLeft(), place.bottomRight(), rect)) {
            const QVector<DefPoint>& contour = m_objects.at(object).contours.at(c);
            for (int i = first; i < end; ++i) {
                const QPointF at = view.toPicture(contour.at(i));
                if (isPlace(contour.at(i)) && rect.contains(at))
                    vertices.append({ c, i, number + i - first, at });
            }
        }
        number += end - first;
    });
    return vertices;
}
