#pragma once

#include "prepare/space.h"

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace prep {

/// A coordinate of a drawing. The digits are those of the file, for the writer.
struct Coordinate {
    double value = 0;
    std::string_view digits;
};

struct Place {
    Coordinate x;
    Coordinate y;
    double z = 0;

    Vec3 vec() const { return { x.value, y.value, z }; }
};

/// The vertices of a polyline, which may have as many as fit into a file: of each there is little
/// more than where its digits stand.
class PathVertices {
public:
    /// Appends a vertex. False, with nothing appended, for digits that no number needs.
    bool append(const Place& place);
    /// The bulge of the segment that the last vertex begins: the tangent of a quarter of the angle
    /// that the arc spans, positive for an anticlockwise one.
    void setBulge(double bulge);
    /// Puts all vertices at one height.
    void setElevation(double z);
    void clear();

    size_t size() const { return m_digits.size(); }
    Place place(size_t index) const;
    double bulge(size_t index) const { return index < m_bulges.size() ? m_bulges[index] : 0; }

private:
    struct Digits {
        const char* x;
        int32_t yOffset; ///< from x
        uint16_t xSize;
        uint16_t ySize;
    };

    std::vector<Digits> m_digits;
    std::vector<double> m_bulges; ///< up to the last one that is not 0
    std::vector<double> m_heights; ///< likewise
    double m_elevation = 0; ///< of those that have no height
};

} // namespace prep
