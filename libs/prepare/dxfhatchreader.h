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

private:
    double number(const DxfPair& pair);
    void takePlace(std::vector<Vec3>& places, const DxfPair& pair, int xCode);

    SplineShape m_spline;
    bool m_bad = false;
};

/// Reads the boundaries of the HATCH that is the current record, and its other pairs into `fields`.
/// False when a boundary breaks off or holds a bad number.
bool readBoundaries(DxfRecords& records, DxfFields& fields, HatchShape& hatch);

} // namespace prep
