#pragma once

#include "prepare/dxfentity.h"

#include <QtGlobal>

#include <vector>

namespace prep {

/// A place in the plane of the result.
struct Planar {
    double x = 0;
    double y = 0;
};

/// Replaces curves by chords, and keeps count of them.
class ChordMaker {
public:
    /// No point of a curve lies farther from its chord than `tolerance`. All curves together get at
    /// most `limit` chords.
    ChordMaker(double tolerance, qint64 limit)
        : m_tolerance(tolerance)
        , m_left(limit)
    {
    }

    /// A contour gets no more than 100,000 chords, and one for each of its arcs and spans.
    void startContour() { m_contourLeft = mostChords; }

    /// Appends the places between the ends of the arc centre + first cos t + second sin t.
    void appendInner(const Vec3& centre, const Vec3& first, const Vec3& second, double start,
        double sweep, std::vector<Planar>& places);

    /// Appends the places between the ends of the arc with this bulge, as `map` moves it.
    void appendBulge(const Vec3& from, const Vec3& to, double bulge, const Affine& map,
        std::vector<Planar>& places);

    /// Appends the places of a spline, its ends included, as `map` moves it. False when it cannot
    /// be drawn: too few control points or knots, knots that fall, weights that are not positive.
    bool appendSpline(const SplineShape& spline, const Affine& map, std::vector<Planar>& places);

    /// Whether a curve got coarser chords than asked for since this was last called.
    bool takeCoarse();

private:
    static constexpr int mostChords = 100000;

    int chordCount(double radius, double sweep);
    /// How many chords the next curve may have.
    int chordsLeft() const;
    void spend(int chords);

    double m_tolerance;
    qint64 m_left;
    qint64 m_contourLeft = mostChords;
    bool m_coarse = false;
};

} // namespace prep
