#include "prepare/space.h"

#include <QtMath>

namespace prep {

Affine Affine::after(const Affine& first) const
{
    if (m_identity)
        return first;
    if (first.m_identity)
        return *this;
    return { direction(first.m_x), direction(first.m_y), direction(first.m_z),
        place(first.m_origin) };
}

Affine Affine::shift(const Vec3& by)
{
    if (by.x == 0 && by.y == 0 && by.z == 0)
        return {};
    return { { 1, 0, 0 }, { 0, 1, 0 }, { 0, 0, 1 }, by };
}

Affine Affine::scaling(const Vec3& factors)
{
    if (factors.x == 1 && factors.y == 1 && factors.z == 1)
        return {};
    return { { factors.x, 0, 0 }, { 0, factors.y, 0 }, { 0, 0, factors.z }, {} };
}

Affine Affine::turn(double degrees)
{
    double sine = 0;
    double cosine = 1;
    sinCosOfDegrees(degrees, &sine, &cosine);
    if (sine == 0 && cosine == 1)
        return {};
    return { { cosine, sine, 0 }, { -sine, cosine, 0 }, { 0, 0, 1 }, {} };
}

// "Arbitrary Axis Algorithm" in Autodesk's DXF reference: the x axis lies across the world's z
// axis, or across its y axis where the extrusion direction is within 1/64 of z.
Affine Affine::ofExtrusion(const Vec3& normal)
{
    const double size = length(normal);
    if (!std::isfinite(size) || size == 0 || (normal.x == 0 && normal.y == 0 && normal.z > 0))
        return {};
    constexpr double nearZ = 1.0 / 64;
    const Vec3 z = normal * (1 / size);
    const bool isNearZ = std::abs(z.x) < nearZ && std::abs(z.y) < nearZ;
    const Vec3 across = cross(isNearZ ? Vec3{ 0, 1, 0 } : Vec3{ 0, 0, 1 }, z);
    const Vec3 x = across * (1 / length(across));
    return { x, cross(z, x), z, {} };
}

void sinCosOfDegrees(double degrees, double* sine, double* cosine)
{
    const double turned = std::remainder(degrees, 360);
    const double quarters = turned / 90;
    if (quarters == std::floor(quarters)) {
        constexpr double sines[] = { 0, 1, 0, -1 };
        const int quarter = (static_cast<int>(quarters) + 4) % 4;
        *sine = sines[quarter];
        *cosine = sines[(quarter + 1) % 4];
        return;
    }
    const double angle = qDegreesToRadians(turned);
    *sine = std::sin(angle);
    *cosine = std::cos(angle);
}

} // namespace prep
