#pragma once

#include <QByteArray>
#include <QIODevice>

#include <charconv>
#include <string_view>

namespace prep {

/// Writes the pairs of an ASCII drawing, gathered into large pieces.
class PairWriter {
public:
    explicit PairWriter(QIODevice& out)
        : m_out(out)
    {
        m_buffer.reserve(bufferSize + bufferSize / 4);
    }

    void pair(int code, std::string_view value)
    {
        char digits[16];
        const auto end = std::to_chars(digits, digits + sizeof(digits), code).ptr;
        m_buffer.append(digits, static_cast<int>(end - digits)).append('\n');
        m_buffer.append(value.data(), static_cast<int>(value.size())).append('\n');
        if (m_buffer.size() >= bufferSize)
            flush();
    }

    /// Writes what is left.
    void flush()
    {
        m_out.write(m_buffer);
        m_buffer.resize(0);
    }

private:
    static constexpr int bufferSize = 1 << 20;

    QIODevice& m_out;
    QByteArray m_buffer;
};

} // namespace prep
