#include "geometry/defpolygon.h"

namespace {

/// A contour whose area is not greater than this has no inside to take a centroid of.
constexpr double degenerateArea = 1e-12;

QPointF vertexMean(const QVector<DefPoint>& contour)
{
    double sumX = 0;
    double sumY = 0;
    for (const DefPoint& vertex : contour) {
        sumX += vertex.x;
        sumY += vertex.y;
    }
    return QPointF(sumX / contour.size(), sumY / contour.size());
}

} // namespace

QPointF DefPolygon::centroid() const
{
    if (contours.isEmpty() || contours.first().isEmpty())
        return QPointF(0, 0);

    const QVector<DefPoint>& contour = contours.first();
    if (contour.size() == 1)
        return QPointF(contour.first().x, contour.first().y);

    double twiceArea = 0;
    double sumX = 0;
    double sumY = 0;
    for (int i = 0; i < contour.size(); ++i) {
        const DefPoint& a = contour.at(i);
        const DefPoint& b = contour.at(i + 1 < contour.size() ? i + 1 : 0);
        const double cross = a.x * b.y - b.x * a.y;
        twiceArea += cross;
        sumX += (a.x + b.x) * cross;
        sumY += (a.y + b.y) * cross;
    }

    const double area = twiceArea * 0.5;
    if (std::abs(area) <= degenerateArea)
        return vertexMean(contour);
    return QPointF(sumX / (6 * area), sumY / (6 * area));
}
