#pragma once

#include <QIODevice>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

namespace prep {

/// Writes the pairs of an ASCII drawing, gathered into large pieces. What has been written since
/// the last piece went out can be taken back.
class PairWriter {
public:
    explicit PairWriter(QIODevice& out)
        : m_out(out)
    {
        grow(2 * pieceSize);
    }

    void pair(int code, std::string_view value)
    {
        constexpr size_t mostCodeSize = 16;
        char* at = room(value.size() + mostCodeSize);
        at = std::to_chars(at, at + mostCodeSize, code).ptr;
        *at++ = '\n';
        if (!value.empty())
            std::memcpy(at, value.data(), value.size());
        at += value.size();
        *at++ = '\n';
        m_size = static_cast<size_t>(at - m_buffer.get());
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
        m_out.write(m_buffer.get(), static_cast<qint64>(m_size));
        m_size = 0;
    }
    /// Takes pairs back that were written since size() was `start`, and gives them as text. It
    /// holds until the next pair is written.
    std::string_view cutFrom(size_t start)
    {
        const std::string_view text(m_buffer.get() + start, m_size - start);
        m_size = start;
        return text;
    }
    /// Writes a text of pairs.
    void text(std::string_view pairs)
    {
        char* const at = room(pairs.size());
        std::memcpy(at, pairs.data(), pairs.size());
        m_size += pairs.size();
    }

private:
    static constexpr size_t pieceSize = 1 << 20;

    struct Free {
        void operator()(char* memory) const { std::free(memory); }
    };

    /// Where that many bytes may be written.
    char* room(size_t size)
    {
        if (m_capacity - m_size < size)
            grow(2 * (m_capacity + size));
        return m_buffer.get() + m_size;
    }
    /// The largest buffers are those of one entity; realloc() moves them without a copy.
    void grow(size_t capacity)
    {
        char* const memory = static_cast<char*>(std::realloc(m_buffer.get(), capacity));
        if (!memory)
            throw std::bad_alloc();
        static_cast<void>(m_buffer.release());
        m_buffer.reset(memory);
        m_capacity = capacity;
    }

    QIODevice& m_out;
    std::unique_ptr<char, Free> m_buffer;
    size_t m_capacity = 0;
    size_t m_size = 0;
};

} // namespace prep
