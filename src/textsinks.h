#pragma once

#include <QChar>
#include <QIODevice>
#include <QString>

#include <algorithm>
#include <limits>
#include <vector>

/// Collects a text as a QString. Room is asked for in units, then filled without a look.
class Utf16Sink {
public:
    using Unit = ushort;

    /// Where the next units go, `size` at most; done() tells how far they went.
    Unit* room(qint64 size)
    {
        if (m_text.size() - m_size < size)
            grow(m_size + size);
        return reinterpret_cast<Unit*>(m_data + m_size);
    }
    void done(const Unit* end) { m_size = static_cast<int>(end - reinterpret_cast<Unit*>(m_data)); }
    /// Puts the character that starts at `text`; returns the end of what was put.
    static Unit* put(Unit* out, const QChar*& text, const QChar* /*end*/)
    {
        *out++ = (text++)->unicode();
        return out;
    }

    /// The text so far; the sink is empty afterwards.
    QString take()
    {
        m_text.resize(m_size);
        m_size = 0;
        return std::move(m_text);
    }

private:
    void grow(qint64 least)
    {
        // A longer one ends in QString's own failure to allocate.
        const qint64 longest = std::numeric_limits<int>::max();
        m_text.resize(static_cast<int>(
            std::min(longest, std::max(least, std::min(qint64(m_text.size()) * 2, longest / 2)))));
        m_data = m_text.data();
    }

    QString m_text; ///< with room behind the text
    QChar* m_data = nullptr;
    int m_size = 0;
};

/// Writes a text to a device in UTF-8, in blocks. Half of a surrogate pair becomes what
/// QString::toUtf8() makes of it.
class Utf8Sink {
public:
    using Unit = char;

    explicit Utf8Sink(QIODevice& device)
        : m_device(device)
        , m_block(blockSize)
    {
    }

    Unit* room(qint64 size)
    {
        if (static_cast<qint64>(m_block.size()) - m_size < size) {
            flush();
            m_block.resize(std::max(m_block.size(), static_cast<size_t>(size)));
        }
        return m_block.data() + m_size;
    }
    void done(const Unit* end) { m_size = end - m_block.data(); }
    static Unit* put(Unit* out, const QChar*& text, const QChar* end)
    {
        const QChar first = *text++;
        uint character = first.unicode();
        if (character < 0x80) {
            *out++ = static_cast<char>(character);
            return out;
        }
        if (first.isSurrogate()) {
            if (!first.isHighSurrogate() || text == end || !text->isLowSurrogate()) {
                *out++ = '?';
                return out;
            }
            character = QChar::surrogateToUcs4(first, *text++);
        }
        const int following = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
        constexpr uint leads[] = { 0, 0xC0, 0xE0, 0xF0 };
        *out++ = static_cast<char>(leads[following] | character >> 6 * following);
        for (int i = following - 1; i >= 0; --i)
            *out++ = static_cast<char>(0x80 | (character >> 6 * i & 0x3F));
        return out;
    }

    /// Hands the device what has been gathered.
    void flush()
    {
        m_device.write(m_block.data(), m_size);
        m_size = 0;
    }

private:
    static constexpr size_t blockSize = 1 << 18;

    QIODevice& m_device;
    std::vector<char> m_block;
    qint64 m_size = 0;
};
