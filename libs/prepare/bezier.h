#pragma once

#include "prepare/chords.h"

namespace prep {

/// A control point of a rational curve in the plane: the coordinates times the weight, the weight.
struct Weighted {
    double x = 0;
    double y = 0;
    double weight = 1;

    Planar place() const { return { x / weight, y / weight }; }
};

/// The control points of one Bezier curve.
using Bezier = std::vector<Weighted>;

/// A B-spline in the plane as a row of Bezier curves, one for each span between knots.
class BSpline {
public:
    BSpline(const SplineShape& spline, const Affine& map);

    bool isGood() const { return m_good; }
    int spanCount() const;
    /// Whether a span holds nothing of the curve, because two knots are one.
    bool isEmpty(int span) const;
    Bezier bezier(int span) const;
    /// Where the curve begins.
    Planar start() const;

private:
    bool isDrawable(const SplineShape& spline) const;
    Weighted blossom(int span, int ends) const;

    int m_degree;
    std::vector<double> m_knots;
    bool m_good;
    std::vector<Weighted> m_controls;
};

/// Appends the places behind the start of the curve, its end included, so that no point of the
/// curve is farther than `tolerance` from the chords. Gives their number, `most` at the most, but
/// at least 1.
int appendChords(const Bezier& curve, double tolerance, int most, std::vector<Planar>& places);

} // namespace prep
