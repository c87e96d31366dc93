#pragma once

#include "prepare/dxffields.h"

namespace prep {

/// Sets the angles of an arc that runs from `start` to `end`, both in radians, in the direction of
/// growing angles.
void setAngles(ConicShape& conic, double start, double end);

/// Gathers the numbers of a spline, which repeat codes.
class SplineReader {
public:
    /// Takes a pair; false when it is none of those that it gathers.
    bool take(const DxfPair& pair);
    SplineShape spline();
    bool isBad() const { return m_bad; }
    /// There were more numbers than a spline has that anyone draws; they were not kept.
    bool isTooLong() const { return m_tooLong; }

private:
    template <typename Value>
    void append(std::vector<Value>& values, const Value& value);
    double number(const DxfPair& pair);
    void takePlace(std::vector<Vec3>& places, const DxfPair& pair, int xCode);

    SplineShape m_spline;
    bool m_bad = false;
    bool m_tooLong = false;
};

/// Takes the boundaries of a HATCH, each a row of edges that follow each other.
class BoundarySink {
public:
    BoundarySink() = default;
    virtual ~BoundarySink() = default;
    BoundarySink(const BoundarySink&) = delete;
    BoundarySink& operator=(const BoundarySink&) = delete;

    virtual void startBoundary() = 0;
    virtual void takeEdge(const HatchEdge& edge) = 0;
};

/// Reads the boundaries of the HATCH that is the current record to `sink`, if there is one, and its
/// other pairs into `fields`. False when a boundary breaks off or holds a bad number.
bool readBoundaries(DxfRecords& records, DxfFields& fields, BoundarySink* sink);

} // namespace prep
