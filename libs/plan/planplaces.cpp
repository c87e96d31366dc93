#include "plan/planplaces.h"

#include "export/measures.h"
#include "geometry/defpolygon.h"

#include <algorithm>

namespace {

/// More parts of one object than these are not named.
constexpr int mostNamedParts = 50;

DefPolygon asObject(const QVector<QPolygonF>& contours)
{
    DefPolygon object;
    for (const QPolygonF& contour : contours) {
        QVector<DefPoint> places;
        places.reserve(contour.size());
        for (const QPointF& place : contour)
            places.append(DefPoint{ {}, place.x(), place.y() });
        object.contours.append(places);
    }
    return object;
}

/// Adds the x at which a ring crosses the height.
void addCrossings(const Places& ring, double height, QVector<double>& crossings)
{
    QPointF before = ring.last();
    for (const QPointF& vertex : ring) {
        if ((vertex.y() > height) != (before.y() > height))
            crossings.append(vertex.x()
                + (before.x() - vertex.x()) * (height - vertex.y()) / (before.y() - vertex.y()));
        before = vertex;
    }
}

/// A place inside a part of an area, at the height of its centroid: the middle of the widest
/// stretch there.
QPointF placeInside(const ObjectShape& shape, const AreaPart& part)
{
    const QPointF centroid = asObject({ QPolygonF(shape.contours.at(part.outer)) }).centroid();
    QVector<double> crossings;
    addCrossings(shape.contours.at(part.outer), centroid.y(), crossings);
    for (const int hole : part.holes)
        addCrossings(shape.contours.at(hole), centroid.y(), crossings);
    std::sort(crossings.begin(), crossings.end());
    double widest = 0;
    double x = centroid.x();
    for (int i = 0; i + 1 < crossings.size(); i += 2) {
        const double width = crossings.at(i + 1) - crossings.at(i);
        // A centroid that is inside stays.
        if (crossings.at(i) < centroid.x() && centroid.x() < crossings.at(i + 1))
            return centroid;
        if (width > widest) {
            widest = width;
            x = crossings.at(i) + width / 2;
        }
    }
    return { x, centroid.y() };
}

} // namespace

void addObjectLabels(QVector<PlanLabel>& labels, const QString& def,
    const QVector<QPolygonF>& contours, bool isArea, bool isRed)
{
    const QString text = planText(def);
    // Shapes are taken in the picture: the products of large coordinates would drown them.
    const ObjectShape shape(asObject(contours), isArea, false);
    if (shape.parts.isEmpty()) {
        const QPolygonF& line = contours.first();
        labels.append({ line.at(line.size() / 2), text, isRed, true });
        return;
    }
    for (int i = 0; i < shape.parts.size() && i < mostNamedParts; ++i)
        labels.append({ placeInside(shape, shape.parts.at(i)), text, isRed, true });
}
