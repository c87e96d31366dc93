#pragma once

#include <QIODevice>

#include <charconv>
#include <cstring>
#include <string_view>
#include <vector>

namespace prep {

/// Writes the pairs of an ASCII drawing, gathered into large pieces. What has been written since
/// the last piece went out can be taken back.
class PairWriter {
public:
    explicit PairWriter(QIODevice& out)
        : m_out(out)
        , m_buffer(2 * pieceSize)
    {
    }

    void pair(int code, std::string_view value)
    {
        constexpr size_t mostCodeSize = 16;
        if (m_buffer.size() - m_size < value.size() + mostCodeSize)
            m_buffer.resize(2 * (m_buffer.size() + value.size()));
        char* at = m_buffer.data() + m_size;
        at = std::to_chars(at, at + mostCodeSize, code).ptr;
        *at++ = '\n';
        if (!value.empty())
            std::memcpy(at, value.data(), value.size());
        at += value.size();
        *at++ = '\n';
        m_size = static_cast<size_t>(at - m_buffer.data());
    }

    /// How much is not written yet, for takeBack().
    size_t size() const { return m_size; }
    /// Takes back all but the first `size` bytes of what is not written yet.
    void takeBack(size_t size) { m_size = size; }

    /// Writes what there is when it is a large piece.
    void settle()
    {
        if (m_size >= pieceSize)
            flush();
    }
    /// Writes what is left.
    void flush()
    {
        m_out.write(m_buffer.data(), static_cast<qint64>(m_size));
        m_size = 0;
    }

private:
    static constexpr size_t pieceSize = 1 << 20;

    QIODevice& m_out;
    std::vector<char> m_buffer;
    size_t m_size = 0;
};

} // namespace prep
