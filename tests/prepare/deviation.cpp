#include "deviation.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

using prep::Planar;

namespace {

double distanceToChord(const Planar& p, const Planar& a, const Planar& b)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double square = dx * dx + dy * dy;
    if (square == 0)
        return std::hypot(p.x - a.x, p.y - a.y);
    const double part = std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / square, 0.0, 1.0);
    return std::hypot(p.x - a.x - part * dx, p.y - a.y - part * dy);
}

double distanceToRow(const Planar& place, const std::vector<Planar>& row)
{
    double least = std::numeric_limits<double>::max();
    for (size_t i = 1; i < row.size(); ++i)
        least = std::min(least, distanceToChord(place, row[i - 1], row[i]));
    return least;
}

double greatestDistance(const std::vector<Planar>& places, const std::vector<Planar>& row)
{
    double greatest = 0;
    for (const Planar& place : places)
        greatest = std::max(greatest, distanceToRow(place, row));
    return greatest;
}

std::vector<Planar> samplesOf(const Curve& curve)
{
    constexpr int count = 2000;
    std::vector<Planar> samples;
    for (int i = 0; i <= count; ++i)
        samples.push_back(curve(static_cast<double>(i) / count));
    return samples;
}

} // namespace

double deviation(const Curve& curve, const std::vector<Planar>& chords)
{
    return greatestDistance(samplesOf(curve), chords);
}

double distanceFrom(const Curve& curve, const std::vector<Planar>& places)
{
    return greatestDistance(places, samplesOf(curve));
}

std::vector<Planar> placesOf(const QString& outline)
{
    std::vector<Planar> places;
    for (const QString& place : outline.section(QLatin1Char(' '), 1).split(QStringLiteral(", "))) {
        const QStringList numbers = place.split(QLatin1Char(' '));
        places.push_back({ numbers.value(0).toDouble(), numbers.value(1).toDouble() });
    }
    if (outline.startsWith(QLatin1String("closed")))
        places.push_back(places.front());
    return places;
}
