#pragma once

#include "geometry/site.h"

#include <limits>

/// Where sites lie as seen from a centre: between two radii and between two directions.
///
/// Of sites along an arc or along a line at an angle a box says little about how far they are from
/// a place across from them; this says it almost to the last digit.
class ArcBound {
public:
    /// Knows nothing of its sites.
    ArcBound() = default;
    /// Around the centre from which the sites from `begin` to before `end`, at least one, lie in
    /// the thinnest ring: one that fits three of them, one far off to the side, or that of `outer`.
    ArcBound(const Site* begin, const Site* end, const ArcBound& outer);

    /// Not greater than the squared distance from (x, y) to any of the sites, rounded as a search
    /// has it; not a number where nothing is known.
    double leastDistance(double x, double y) const;

private:
    struct Vector {
        double x;
        double y;
    };

    Vector wayTo(double x, double y) const { return { x - m_centre.x, y - m_centre.y }; }
    static double dot(const Vector& a, const Vector& b) { return a.x * b.x + a.y * b.y; }
    static double cross(const Vector& a, const Vector& b) { return a.x * b.y - a.y * b.x; }
    static Vector centreOf(const Site& a, const Site& b, const Site& c);
    static Vector centreBeside(const Site& a, const Site& b);

    void fit(const Vector& centre, const Site* begin, const Site* end, double extent);
    void measureFromOrigin(const Site* begin, const Site* end);
    void findDirections(const Site* begin, const Site* end);

    Vector m_centre{ std::numeric_limits<double>::quiet_NaN(), 0 };
    double m_least = 0; ///< the radii
    double m_greatest = 0;
    /// How far the radii and their rounding leave a distance open.
    double m_slack = std::numeric_limits<double>::infinity();
    Vector m_first{ 0, 0 }; ///< the directions, of length 1; the second is to the left of the first
    Vector m_last{ 0, 0 };
    bool m_isAround = true; ///< there are sites in all directions
    double m_leastX = 0; ///< the least of the sites' coordinates, signs left aside
    double m_leastY = 0;
    double m_leastSquare = 0; ///< the squared distance of the nearest to the origin
};
