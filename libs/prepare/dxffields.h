#pragma once

#include "prepare/dxfentity.h"
#include "prepare/dxfrecords.h"

#include <array>
#include <optional>

namespace prep {

/// The pairs of an entity by their codes, the last one of each, and what of them is the same in
/// all entities.
class DxfFields {
public:
    /// Takes all pairs of the current record.
    void readAll(DxfRecords& records);
    void take(const DxfPair& pair);

    bool has(int code) const { return m_values[static_cast<size_t>(code)].data() != nullptr; }
    std::string_view text(int code) const;

    /// The number behind `code`, or `absent`. What is there and no number makes bad() true.
    double number(int code, double absent = 0);
    /// The same for a number that no coordinate depends on: what is no number counts as absent.
    double lenientNumber(int code, double absent = 0) const;
    int whole(int code, int absent = 0) const;
    /// The place in the codes xCode, xCode + 10 and xCode + 20; the first two must be there.
    Place place(int xCode);
    /// The same as a direction or a place that needs no digits; what is missing is 0.
    Vec3 vec(int xCode);

    /// Something was missing or no number.
    bool isBad() const { return m_bad; }

    bool isInPaperSpace() const { return m_paperSpace; }
    /// Layer, extrusion direction and visibility.
    void fill(Entity& entity);

private:
    static constexpr size_t codeCount = 100;
    Coordinate coordinate(int code);

    std::array<std::string_view, codeCount> m_values{};
    std::array<std::string_view, 3> m_extrusion{};
    bool m_embedded = false; ///< what follows belongs to an object within the entity
    bool m_paperSpace = false;
    bool m_bad = false;
};

/// A coordinate from the value of a pair; none when it is no number.
std::optional<Coordinate> toCoordinate(std::string_view value);

/// A bulge from the value of a pair; infinite when it is no number, which no arc has.
double toBulge(std::string_view value);

} // namespace prep
