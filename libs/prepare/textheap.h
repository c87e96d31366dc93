#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace prep {

/// Keeps texts until it is destroyed, in large pieces: it takes little more memory than their
/// bytes, and they never move.
class TextHeap {
public:
    /// Gives the text as it is kept.
    std::string_view add(std::string_view text);
    /// How many bytes are kept.
    size_t size() const { return m_size; }

private:
    std::vector<std::unique_ptr<char[]>> m_pieces;
    char* m_free = nullptr; ///< in the last piece
    size_t m_left = 0;
    size_t m_size = 0;
};

} // namespace prep
