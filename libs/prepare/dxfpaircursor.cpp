#include "prepare/dxfpaircursor.h"

#include <algorithm>
#include <optional>

namespace prep {

namespace {

/// The group code on a line, which is nearly always one to four digits.
std::optional<int> codeOf(std::string_view line)
{
    const std::string_view text = trimmed(line);
    if (text.empty() || text.size() > 4 || text[0] == '+')
        return {};
    return toWhole(text);
}

} // namespace

std::string_view DxfPairCursor::line()
{
    const std::string_view rest = m_bytes.substr(m_position);
    const size_t length = std::min(rest.find('\n'), rest.size());
    m_position += std::min(length + 1, rest.size());
    return withoutReturns(rest.substr(0, length));
}

bool DxfPairCursor::takeAny(DxfPair& pair)
{
    while (m_position < m_bytes.size()) {
        const std::string_view codeLine = line();
        const std::optional<int> code = codeOf(codeLine);
        if (!code) {
            ++(trimmed(codeLine).empty() ? m_blankLines : m_strayLines);
            continue;
        }
        // A value may be an empty line, but not a missing one.
        if (m_position == m_bytes.size())
            return false;
        const std::string_view value = line();
        if (*code == commentCode) {
            ++m_comments;
            continue;
        }
        pair = { *code, value };
        return true;
    }
    return false;
}

} // namespace prep
