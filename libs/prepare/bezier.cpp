#include "prepare/bezier.h"

#include <algorithm>
#include <cmath>

namespace prep {

namespace {

/// Programs that draw do not go beyond degree 25; the cost of a span grows with its cube.
constexpr int mostDegree = 25;

Weighted mix(const Weighted& a, const Weighted& b, double part)
{
    return { a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part,
        a.weight + (b.weight - a.weight) * part };
}

/// The knots of a spline; where it tells none, those at equal steps with which the curve runs from
/// its first control point to its last one.
std::vector<double> knotsOf(const SplineShape& spline)
{
    const size_t count = spline.controls.size();
    const auto degree = static_cast<size_t>(std::clamp(spline.degree, 0, mostDegree));
    if (!spline.knots.empty() || count <= degree)
        return spline.knots;
    std::vector<double> knots(count + degree + 1);
    for (size_t i = degree; i < knots.size(); ++i)
        knots[i] = static_cast<double>(std::min(i, count) - degree);
    return knots;
}

double distanceToSegment(const Planar& p, const Planar& a, const Planar& b)
{
    const double dx = b.x - a.x;
    const double dy = b.y - a.y;
    const double square = dx * dx + dy * dy;
    const double along = square > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / square : 0;
    const double part = std::clamp(along, 0.0, 1.0);
    return std::hypot(p.x - a.x - dx * part, p.y - a.y - dy * part);
}

/// Whether the chord may stand for the curve. A curve with positive weights lies in the convex hull
/// of its control points, and the distance to a segment is a convex function.
bool isFlat(const Bezier& curve, double tolerance)
{
    const Planar from = curve.front().place();
    const Planar to = curve.back().place();
    return std::all_of(curve.begin() + 1, curve.end() - 1, [&](const Weighted& control) {
        return distanceToSegment(control.place(), from, to) <= tolerance;
    });
}

/// Parts a curve in the middle by de Casteljau's algorithm: `curve` becomes its first half, the
/// second one is returned.
Bezier splitOff(Bezier& curve)
{
    Bezier second(curve.size());
    Bezier points = curve;
    const size_t last = curve.size() - 1;
    for (size_t level = 0; level <= last; ++level) {
        curve[level] = points[0];
        second[last - level] = points[last - level];
        for (size_t i = 0; i < last - level; ++i)
            points[i] = mix(points[i], points[i + 1], 0.5);
    }
    return second;
}

} // namespace

BSpline::BSpline(const SplineShape& spline, const Affine& map)
    : m_degree(spline.degree)
    , m_knots(knotsOf(spline))
    , m_good(isDrawable(spline))
{
    if (!m_good)
        return;
    m_controls.reserve(spline.controls.size());
    for (size_t i = 0; i < spline.controls.size(); ++i) {
        const Vec3 place = map.place(spline.controls[i]);
        const double weight = spline.weights.empty() ? 1 : spline.weights[i];
        m_controls.push_back({ place.x * weight, place.y * weight, weight });
        m_good = m_good && std::isfinite(place.x * weight) && std::isfinite(place.y * weight);
    }
}

bool BSpline::isDrawable(const SplineShape& spline) const
{
    if (spline.degree < 1 || spline.degree > mostDegree)
        return false;
    const auto degree = static_cast<size_t>(spline.degree);
    const size_t count = spline.controls.size();
    if (count < degree + 1 || m_knots.size() != count + degree + 1
        || !std::is_sorted(m_knots.begin(), m_knots.end()) || m_knots[degree] >= m_knots[count])
        return false;
    const auto isPositive = [](double weight) { return weight > 0; };
    return spline.weights.empty()
        || (spline.weights.size() == count
            && std::all_of(spline.weights.begin(), spline.weights.end(), isPositive));
}

int BSpline::spanCount() const
{
    return static_cast<int>(m_controls.size()) - m_degree;
}

bool BSpline::isEmpty(int span) const
{
    const auto knot = m_knots.begin() + m_degree + span;
    return knot[0] >= knot[1];
}

// De Boor's algorithm with an argument of its own at each level, the polar form (blossom) of the
// span: with the end of the span `ends` times and else its start it gives the control points of the
// span as a Bezier curve. L. Ramshaw, "Blossoms are polar forms", 1989.
Weighted BSpline::blossom(int span, int ends) const
{
    const int k = m_degree + span;
    const auto knot = [this](int i) { return m_knots[static_cast<size_t>(i)]; };
    std::vector<Weighted> points(
        m_controls.begin() + span, m_controls.begin() + span + m_degree + 1);
    for (int level = 1; level <= m_degree; ++level) {
        const double argument = level <= ends ? knot(k + 1) : knot(k);
        for (int i = m_degree; i >= level; --i) {
            const double left = knot(i + k - m_degree);
            const double right = knot(i + 1 + k - level);
            const auto at = points.begin() + i;
            *at = mix(at[-1], *at, (argument - left) / (right - left));
        }
    }
    return points.back();
}

Bezier BSpline::bezier(int span) const
{
    Bezier curve;
    for (int ends = 0; ends <= m_degree; ++ends)
        curve.push_back(blossom(span, ends));
    return curve;
}

Planar BSpline::start() const
{
    int span = 0;
    while (isEmpty(span))
        ++span;
    return blossom(span, 0).place();
}

int appendChords(const Bezier& curve, double tolerance, int most, std::vector<Planar>& places)
{
    // A piece that has been halved so often is shorter than a double can tell.
    constexpr size_t mostHalvings = 40;
    std::vector<Bezier> rest{ curve };
    int made = 0;
    while (!rest.empty()) {
        if (rest.size() <= mostHalvings && made + static_cast<int>(rest.size()) < most
            && !isFlat(rest.back(), tolerance)) {
            Bezier second = splitOff(rest.back());
            rest.insert(rest.end() - 1, std::move(second));
            continue;
        }
        places.push_back(rest.back().back().place());
        rest.pop_back();
        ++made;
    }
    return made;
}

} // namespace prep
