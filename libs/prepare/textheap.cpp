#include "prepare/textheap.h"

#include <algorithm>
#include <cstring>

namespace prep {

std::string_view TextHeap::add(std::string_view text)
{
    constexpr size_t pieceSize = 1 << 18;
    if (text.empty())
        return {};
    if (text.size() > m_left) {
        m_left = std::max(text.size(), pieceSize);
        // No zeros are written into it: what is not used takes no memory.
        m_pieces.emplace_back(new char[m_left]);
        m_free = m_pieces.back().get();
    }
    std::memcpy(m_free, text.data(), text.size());
    const std::string_view kept(m_free, text.size());
    m_free += text.size();
    m_left -= text.size();
    m_size += text.size();
    return kept;
}

} // namespace prep
