#pragma once

#include <cmath>

namespace prep {

/// A place or a direction in space.
struct Vec3 {
    double x = 0;
    double y = 0;
    double z = 0;
};

inline Vec3 operator+(const Vec3& a, const Vec3& b)
{
    return { a.x + b.x, a.y + b.y, a.z + b.z };
}
inline Vec3 operator-(const Vec3& a, const Vec3& b)
{
    return { a.x - b.x, a.y - b.y, a.z - b.z };
}
inline Vec3 operator*(const Vec3& a, double factor)
{
    return { a.x * factor, a.y * factor, a.z * factor };
}
inline double length(const Vec3& a)
{
    return std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
}
inline Vec3 cross(const Vec3& a, const Vec3& b)
{
    return { a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x };
}
inline bool isFinite(const Vec3& a)
{
    return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z);
}

/// An affine map of space: the images of the three axes, and of the origin.
class Affine {
public:
    Affine() = default;
    Affine(const Vec3& x, const Vec3& y, const Vec3& z, const Vec3& origin)
        : m_x(x)
        , m_y(y)
        , m_z(z)
        , m_origin(origin)
        , m_identity(false)
    {
    }

    /// Nothing moves: not a digit of a coordinate needs to change.
    bool isIdentity() const { return m_identity; }

    Vec3 direction(const Vec3& a) const { return m_x * a.x + m_y * a.y + m_z * a.z; }
    Vec3 place(const Vec3& a) const { return m_identity ? a : m_origin + direction(a); }

    /// The map that does `first`, then this one.
    Affine after(const Affine& first) const;

    static Affine shift(const Vec3& by);
    static Affine scaling(const Vec3& factors);
    /// A turn about the z axis, anticlockwise.
    static Affine turn(double degrees);
    /// From the coordinate system of an object with this extrusion direction to that of the world.
    static Affine ofExtrusion(const Vec3& normal);

private:
    Vec3 m_x{ 1, 0, 0 };
    Vec3 m_y{ 0, 1, 0 };
    Vec3 m_z{ 0, 0, 1 };
    Vec3 m_origin;
    bool m_identity = true;
};

/// The sine and the cosine of an angle in degrees, exact at right angles.
void sinCosOfDegrees(double degrees, double* sine, double* cosine);

} // namespace prep
