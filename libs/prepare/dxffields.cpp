#include "prepare/dxffields.h"

#include "prepare/plainnumber.h"

#include <limits>

namespace prep {

namespace {

constexpr int layerCode = 8;
constexpr int embeddedObjectCode = 101;
constexpr int extrusionCode = 210;

bool isCoordinate(int code)
{
    return code == 10 || code == 11 || code == 20 || code == 21;
}

} // namespace

std::optional<Coordinate> toCoordinate(std::string_view value)
{
    const std::string_view digits = trimmed(value);
    const std::optional<double> number = toNumber(digits);
    if (!number)
        return {};
    return Coordinate{ *number, digits };
}

double toBulge(std::string_view value)
{
    return toNumber(trimmed(value)).value_or(std::numeric_limits<double>::infinity());
}

void DxfFields::readAll(DxfRecords& records)
{
    DxfPair pair;
    while (records.pair(pair))
        take(pair);
}

void DxfFields::take(const DxfPair& pair)
{
    if (m_embedded)
        return;
    if (pair.code == embeddedObjectCode) {
        m_embedded = true;
    } else if (pair.code >= 0 && pair.code < static_cast<int>(codeCount)) {
        std::string_view& value = m_values[static_cast<size_t>(pair.code)];
        // The readers stop at a bad coordinate even where a better one follows.
        m_bad = m_bad || (value.data() && isCoordinate(pair.code) && !toNumber(trimmed(value)));
        // An empty value, too, must be told from none.
        value = pair.value.data() ? pair.value : "";
        m_paperSpace = m_paperSpace || (pair.code == 67 && pair.text() == "1");
    } else if (pair.code == extrusionCode || pair.code == extrusionCode + 10
        || pair.code == extrusionCode + 20) {
        m_extrusion[static_cast<size_t>(pair.code - extrusionCode) / 10] = pair.value;
    }
}

std::string_view DxfFields::text(int code) const
{
    return trimmed(m_values[static_cast<size_t>(code)]);
}

double DxfFields::number(int code, double absent)
{
    if (!has(code))
        return absent;
    const std::optional<double> number = toNumber(text(code));
    m_bad = m_bad || !number;
    return number.value_or(absent);
}

double DxfFields::lenientNumber(int code, double absent) const
{
    return has(code) ? toNumber(text(code)).value_or(absent) : absent;
}

int DxfFields::whole(int code, int absent) const
{
    return has(code) ? toWhole(text(code)).value_or(absent) : absent;
}

Coordinate DxfFields::coordinate(int code)
{
    const std::optional<Coordinate> coordinate = toCoordinate(text(code));
    m_bad = m_bad || !coordinate;
    return coordinate.value_or(Coordinate());
}

Place DxfFields::place(int xCode)
{
    return { coordinate(xCode), coordinate(xCode + 10), lenientNumber(xCode + 20) };
}

Vec3 DxfFields::vec(int xCode)
{
    return { number(xCode), number(xCode + 10), number(xCode + 20) };
}

void DxfFields::fill(Entity& entity)
{
    if (has(layerCode))
        entity.layer = text(layerCode);
    entity.invisible = whole(60) == 1;
    const auto component = [this](size_t i, double absent) {
        return toNumber(trimmed(m_extrusion[i])).value_or(absent);
    };
    entity.extrusion = { component(0, 0), component(1, 0), component(2, 1) };
}

} // namespace prep
