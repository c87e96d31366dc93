#include "prepare/vertexrow.h"

#include "prepare/plainnumber.h"

#include <algorithm>
#include <cmath>

namespace prep {

std::string_view VertexCursor::line()
{
    const size_t length = m_rest.find('\n');
    const std::string_view line = m_rest.substr(0, length);
    m_rest.remove_prefix(length + 1);
    return line;
}

bool VertexCursor::next(std::string_view& x, std::string_view& y)
{
    if (m_rest.empty())
        return false;
    x = line();
    y = line();
    return true;
}

void VertexRow::clear()
{
    m_text.clear();
    m_size = 0;
    m_finite = true;
}

void VertexRow::append(const FlatVertex& vertex)
{
    const auto add = [this](double value, std::string_view digits) {
        if (digits.empty())
            m_text += plainText(value);
        else
            m_text += digits;
        m_text += '\n';
    };
    m_finite = m_finite && std::isfinite(vertex.x) && std::isfinite(vertex.y);
    if (!m_finite)
        return;
    add(vertex.x, vertex.xDigits);
    add(vertex.y, vertex.yDigits);
    m_leastX = m_size == 0 ? vertex.x : std::min(m_leastX, vertex.x);
    ++m_size;
}

} // namespace prep
