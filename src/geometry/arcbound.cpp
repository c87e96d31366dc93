#include "geometry/arcbound.h"

#include <algorithm>
#include <cmath>

namespace {

/// More than all the rounding errors of a squared distance and its bound, as a share of the square
/// of the lengths that they are computed from.
constexpr double rounding = 64 * std::numeric_limits<double>::epsilon() / 2;
/// Between these lengths their squares lose nothing to overflow or underflow.
constexpr double shortestLength = 1e-140;
constexpr double longestLength = 1e140;
/// How much farther away than the sites lie apart a centre is taken for sites along a line.
constexpr double sideways = 1000;
/// Directions are told apart up to nearly a right angle from their middle.
constexpr double leastCosine = 0.01;
/// What is smaller than this share of a coordinate leaves no trace in their difference.
constexpr double absorbed = std::numeric_limits<double>::epsilon() / 8;

} // namespace

ArcBound::ArcBound(const Site* begin, const Site* end, const ArcBound& outer)
{
    measureFromOrigin(begin, end);
    const Site& middle = begin[(end - begin) / 2];
    const auto byX =
        std::minmax_element(begin, end, [](const Site& a, const Site& b) { return a.x < b.x; });
    const auto byY =
        std::minmax_element(begin, end, [](const Site& a, const Site& b) { return a.y < b.y; });
    const double width = byX.second->x - byX.first->x;
    const double height = byY.second->y - byY.first->y;
    const auto ends = width < height ? byY : byX;
    const double extent = std::max(width, height);
    fit(outer.m_centre, begin, end, extent);
    fit(centreOf(*begin, middle, end[-1]), begin, end, extent);
    fit(centreBeside(*ends.first, *ends.second), begin, end, extent);
    if (std::isfinite(m_slack))
        findDirections(begin, end);
}

ArcBound::Vector ArcBound::centreOf(const Site& a, const Site& b, const Site& c)
{
    const Vector toB{ b.x - a.x, b.y - a.y };
    const Vector toC{ c.x - a.x, c.y - a.y };
    const double area = 2 * cross(toB, toC);
    const double squareB = dot(toB, toB);
    const double squareC = dot(toC, toC);
    return { a.x + (toC.y * squareB - toB.y * squareC) / area,
        a.y + (toB.x * squareC - toC.x * squareB) / area };
}

ArcBound::Vector ArcBound::centreBeside(const Site& a, const Site& b)
{
    return { a.x + (b.x - a.x) / 2 - (b.y - a.y) * sideways,
        a.y + (b.y - a.y) / 2 + (b.x - a.x) * sideways };
}

void ArcBound::fit(const Vector& centre, const Site* begin, const Site* end, double extent)
{
    double least = longestLength;
    double greatest = 0;
    for (const Site* site = begin; site != end; ++site) {
        const Vector way{ site->x - centre.x, site->y - centre.y };
        const double radius = std::sqrt(dot(way, way));
        if (!(radius > shortestLength && radius < longestLength))
            return;
        least = std::min(least, radius);
        greatest = std::max(greatest, radius);
    }
    const double slack = greatest - least + rounding * greatest * (greatest / extent);
    if (!(slack < m_slack))
        return;
    m_centre = centre;
    m_least = least;
    m_greatest = greatest;
    m_slack = slack;
}

void ArcBound::findDirections(const Site* begin, const Site* end)
{
    Vector middle{ 0, 0 };
    for (const Site* site = begin; site != end; ++site) {
        const Vector way = wayTo(site->x, site->y);
        const double length = std::sqrt(dot(way, way));
        middle.x += way.x / length;
        middle.y += way.y / length;
    }
    const double length = std::sqrt(dot(middle, middle));
    middle = { middle.x / length, middle.y / length };
    double rightmost = std::numeric_limits<double>::infinity();
    double leftmost = -rightmost;
    for (const Site* site = begin; site != end; ++site) {
        const Vector way = wayTo(site->x, site->y);
        const double radius = std::sqrt(dot(way, way));
        const double ahead = dot(middle, way);
        if (!(ahead > leastCosine * radius))
            return;
        const double aside = cross(middle, way) / ahead;
        const Vector direction{ way.x / radius, way.y / radius };
        if (aside < rightmost) {
            rightmost = aside;
            m_first = direction;
        }
        if (aside > leftmost) {
            leftmost = aside;
            m_last = direction;
        }
    }
    m_isAround = false;
}

void ArcBound::measureFromOrigin(const Site* begin, const Site* end)
{
    m_leastX = std::abs(begin->x);
    m_leastY = std::abs(begin->y);
    m_leastSquare = begin->x * begin->x + begin->y * begin->y;
    for (const Site* site = begin + 1; site != end; ++site) {
        m_leastX = std::min(m_leastX, std::abs(site->x));
        m_leastY = std::min(m_leastY, std::abs(site->y));
        m_leastSquare = std::min(m_leastSquare, site->x * site->x + site->y * site->y);
    }
}

double ArcBound::leastDistance(double x, double y) const
{
    if (std::abs(x) <= m_leastX * absorbed && std::abs(y) <= m_leastY * absorbed)
        return m_leastSquare;
    const Vector way = wayTo(x, y);
    const double length = std::sqrt(dot(way, way));
    if (!(length < longestLength))
        return std::numeric_limits<double>::quiet_NaN();
    // How far the way leads towards a site, at most.
    const bool isBetween = m_isAround || (cross(m_first, way) >= 0 && cross(way, m_last) >= 0);
    const double ahead = isBetween ? length : std::max(dot(m_first, way), dot(m_last, way));
    const double radius = std::clamp(ahead, m_least, m_greatest);
    const double rest = radius - ahead;
    const double most = radius + length;
    return rest * rest + (length - ahead) * (length + ahead) - rounding * most * most;
}
