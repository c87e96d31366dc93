#include "export/measures.h"

#include <QRectF>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

Places placesOf(const QVector<DefPoint>& contour, bool isRing, bool swapped)
{
    Places places;
    places.reserve(contour.size());
    for (const DefPoint& vertex : contour) {
        if (std::isfinite(vertex.x) && std::isfinite(vertex.y))
            places.append(swapped ? QPointF(vertex.y, vertex.x) : QPointF(vertex.x, vertex.y));
    }
    if (isRing && places.size() > 1 && coincide(contour.first(), contour.last()))
        places.removeLast();
    return places;
}

double lengthOf(const Places& places, bool isRing)
{
    double length = 0;
    for (int i = 1; i < places.size(); ++i)
        length += std::hypot(
            places.at(i).x() - places.at(i - 1).x(), places.at(i).y() - places.at(i - 1).y());
    if (isRing && !places.isEmpty())
        length += std::hypot(
            places.first().x() - places.last().x(), places.first().y() - places.last().y());
    return length;
}

/// Whether a ray from the place crosses the ring an odd number of times.
bool isInside(const QPointF& place, const Places& ring)
{
    bool inside = false;
    QPointF before = ring.last();
    for (const QPointF& vertex : ring) {
        if ((vertex.y() > place.y()) != (before.y() > place.y())
            && place.x()
                < (before.x() - vertex.x()) * (place.y() - vertex.y()) / (before.y() - vertex.y())
                    + vertex.x())
            inside = !inside;
        before = vertex;
    }
    return inside;
}

QRectF boxOf(const Places& ring)
{
    const auto [left, right] = std::minmax_element(
        ring.begin(), ring.end(), [](const QPointF& a, const QPointF& b) { return a.x() < b.x(); });
    const auto [top, bottom] = std::minmax_element(
        ring.begin(), ring.end(), [](const QPointF& a, const QPointF& b) { return a.y() < b.y(); });
    return { QPointF(left->x(), top->y()), QPointF(right->x(), bottom->y()) };
}

/// Sorts rings into outer ones and holes by how many of the larger ones each lies in.
class RingOrder {
public:
    explicit RingOrder(const QVector<Places>& rings)
        : m_rings(rings)
        , m_order(rings.size())
        , m_partOf(rings.size())
    {
        QVector<double> sizes;
        for (const Places& ring : rings) {
            m_boxes.append(boxOf(ring));
            const double size = std::abs(signedTwiceArea(ring));
            sizes.append(std::isnan(size) ? 0 : size);
        }
        std::iota(m_order.begin(), m_order.end(), 0);
        std::stable_sort(m_order.begin(), m_order.end(),
            [&sizes](int a, int b) { return sizes.at(a) > sizes.at(b); });
    }

    QVector<AreaPart> parts()
    {
        QVector<AreaPart> parts;
        for (int i = 0; i < m_order.size(); ++i) {
            int depth = 0;
            const int owner = ownerOf(i, &depth);
            const int ring = m_order.at(i);
            if (depth % 2 == 1) {
                parts[m_partOf.at(owner)].holes.append(ring);
                m_partOf[ring] = m_partOf.at(owner);
            } else {
                m_partOf[ring] = parts.size();
                parts.append(AreaPart{ ring, {} });
            }
        }
        return parts;
    }

private:
    /// The smallest ring around the i-th largest one, and in how many it lies.
    int ownerOf(int i, int* depth)
    {
        // Rings in such numbers, or so long, are no drawing: each is then taken for a part.
        constexpr qint64 mostWork = 50000000;
        const int ring = m_order.at(i);
        int owner = -1;
        for (int j = 0; j < i && m_work < mostWork; ++j) {
            const int other = m_order.at(j);
            ++m_work;
            if (!m_boxes.at(other).contains(m_boxes.at(ring).center()))
                continue;
            m_work += m_rings.at(other).size();
            if (!isInside(m_rings.at(ring).first(), m_rings.at(other)))
                continue;
            ++*depth;
            owner = other;
        }
        return owner;
    }

    const QVector<Places>& m_rings;
    QVector<QRectF> m_boxes;
    QVector<int> m_order; ///< by size, the largest first
    QVector<int> m_partOf; ///< of each ring: the part that it belongs to
    qint64 m_work = 0;
};

} // namespace

QByteArray measureText(double measure)
{
    return std::isfinite(measure) ? QByteArray::number(measure, 'f', 2) : QByteArray();
}

double signedTwiceArea(const Places& ring)
{
    double sum = 0;
    // Seen from a vertex: products of large coordinates would drown the area.
    const QPointF origin = ring.isEmpty() ? QPointF() : ring.first();
    for (int i = 1; i + 1 < ring.size(); ++i) {
        const QPointF a = ring.at(i) - origin;
        const QPointF b = ring.at(i + 1) - origin;
        sum += a.x() * b.y() - b.x() * a.y();
    }
    return sum;
}

ObjectShape::ObjectShape(const DefPolygon& object, bool enclosesArea, bool swapped)
    : isArea(enclosesArea)
{
    const int least = isArea ? 3 : 2;
    for (const QVector<DefPoint>& contour : object.contours) {
        Places places = placesOf(contour, isArea, swapped);
        if (places.size() >= least)
            contours.append(std::move(places));
    }
    for (const Places& places : qAsConst(contours))
        perimeter += lengthOf(places, isArea);
    if (!isArea)
        return;
    parts = RingOrder(contours).parts();
    for (const AreaPart& part : qAsConst(parts)) {
        area += std::abs(signedTwiceArea(contours.at(part.outer))) / 2;
        for (const int hole : part.holes)
            area -= std::abs(signedTwiceArea(contours.at(hole))) / 2;
    }
}
