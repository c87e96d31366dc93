#include "prepare/chords.h"

#include "prepare/bezier.h"

#include <QtMath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace prep {

namespace {

/// The longer half axis of the ellipse a cos t + b sin t: the larger singular value of the matrix
/// (a b). Any text on conics has it under "conjugate diameters".
double longerHalfAxis(const Vec3& a, const Vec3& b)
{
    const double sum = a.x * a.x + a.y * a.y + b.x * b.x + b.y * b.y;
    const double area = a.x * b.y - a.y * b.x;
    return std::sqrt((sum + std::sqrt(std::max(sum * sum - 4 * area * area, 0.0))) / 2);
}

} // namespace

// The sagitta of a chord that spans the angle h of a circle is r (1 - cos(h / 2)). An ellipse is
// the image of a circle under a map that stretches nothing more than its longer half axis.
int ChordMaker::chordCount(double radius, double sweep)
{
    const double step =
        radius > m_tolerance ? std::min(2 * std::acos(1 - m_tolerance / radius), M_PI_2) : M_PI_2;
    const double count = std::ceil(std::abs(sweep) / step);
    const int most = chordsLeft();
    if (count <= most)
        return std::max(static_cast<int>(count), 1);
    m_coarse = true;
    return most;
}

int ChordMaker::chordsLeft() const
{
    return static_cast<int>(std::max<qint64>(std::min(m_left, m_contourLeft), 1));
}

void ChordMaker::spend(int chords)
{
    m_left = std::max<qint64>(m_left - chords, 0);
    m_contourLeft = std::max<qint64>(m_contourLeft - chords, 0);
}

bool ChordMaker::takeCoarse()
{
    return std::exchange(m_coarse, false);
}

void ChordMaker::appendInner(const Vec3& centre, const Vec3& first, const Vec3& second,
    double start, double sweep, std::vector<Planar>& places)
{
    const int count = chordCount(longerHalfAxis(first, second), sweep);
    spend(count);
    for (int i = 1; i < count; ++i) {
        const double t = start + sweep * i / count;
        const Vec3 place = centre + first * std::cos(t) + second * std::sin(t);
        places.push_back({ place.x, place.y });
    }
}

// The bulge b is the tangent of a quarter of the angle ("LWPOLYLINE" in Autodesk's DXF reference).
// The centre then lies (1 - b^2) / (4 b) of the chord's length to the left of its middle.
void ChordMaker::appendBulge(
    const Vec3& from, const Vec3& to, double bulge, const Affine& map, std::vector<Planar>& places)
{
    const Vec3 chord = to - from;
    const double offset = (1 - bulge * bulge) / (4 * bulge);
    const Vec3 centre = from + chord * 0.5 + Vec3{ -chord.y * offset, chord.x * offset, 0 };
    const Vec3 first = from - centre;
    if (!std::isfinite(first.x * first.x + first.y * first.y)) {
        m_coarse = true;
        return;
    }
    appendInner(map.place(centre), map.direction(first), map.direction({ -first.y, first.x, 0 }), 0,
        4 * std::atan(bulge), places);
}

bool ChordMaker::appendSpline(
    const SplineShape& spline, const Affine& map, std::vector<Planar>& places)
{
    const BSpline curve(spline, map);
    if (!curve.isGood())
        return false;
    places.push_back(curve.start());
    for (int span = 0; span < curve.spanCount(); ++span) {
        if (curve.isEmpty(span))
            continue;
        const int most = chordsLeft();
        const int made = appendChords(curve.bezier(span), m_tolerance, most, places);
        m_coarse = m_coarse || (made >= most && spline.degree > 1);
        spend(made);
    }
    return true;
}

} // namespace prep
