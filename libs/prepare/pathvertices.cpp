#include "prepare/pathvertices.h"

#include "prepare/plainnumber.h"

#include <limits>

namespace prep {

namespace {

void setAt(std::vector<double>& values, size_t index, double value)
{
    if (value == 0 && index >= values.size())
        return;
    values.resize(std::max(values.size(), index + 1), 0);
    values[index] = value;
}

Coordinate coordinateOf(std::string_view digits)
{
    return { toNumber(digits).value_or(0), digits };
}

} // namespace

bool PathVertices::append(const Place& place)
{
    const std::string_view x = place.x.digits;
    const std::string_view y = place.y.digits;
    const std::ptrdiff_t offset = y.data() - x.data();
    constexpr size_t mostDigits = std::numeric_limits<uint16_t>::max();
    if (x.size() > mostDigits || y.size() > mostDigits || offset != static_cast<int32_t>(offset))
        return false;
    setAt(m_heights, m_digits.size(), place.z);
    m_digits.push_back({ x.data(), static_cast<int32_t>(offset), static_cast<uint16_t>(x.size()),
        static_cast<uint16_t>(y.size()) });
    return true;
}

void PathVertices::setBulge(double bulge)
{
    setAt(m_bulges, m_digits.size() - 1, bulge);
}

void PathVertices::setElevation(double z)
{
    m_heights.clear();
    m_elevation = z;
}

void PathVertices::clear()
{
    *this = PathVertices();
}

Place PathVertices::place(size_t index) const
{
    const Digits& digits = m_digits[index];
    const double z = index < m_heights.size() ? m_heights[index] : m_elevation;
    return { coordinateOf({ digits.x, digits.xSize }),
        coordinateOf({ digits.x + digits.yOffset, digits.ySize }), z };
}

} // namespace prep
