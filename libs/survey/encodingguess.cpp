#include "survey/encodingguess.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

using Byte = unsigned char;

bool isHigh(char c)
{
    return static_cast<Byte>(c) >= 0x80;
}

bool isLatinLetter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

/// The number of bytes that follow the first one of a UTF-8 sequence, or -1.
int continuationCount(Byte lead)
{
    if (lead < 0x80)
        return 0;
    if (lead >= 0xC2 && lead < 0xE0)
        return 1;
    if (lead >= 0xE0 && lead < 0xF0)
        return 2;
    return lead >= 0xF0 && lead < 0xF5 ? 3 : -1;
}

/// Whether a byte stands among Latin letters alone.
bool isAmongLatin(char before, char after)
{
    return !isHigh(before) && !isHigh(after) && (isLatinLetter(before) || isLatinLetter(after));
}

/// How many ASCII characters the bytes begin with.
size_t asciiLength(std::string_view bytes)
{
    constexpr quint64 highBits = 0x8080808080808080;
    size_t length = 0;
    std::array<quint64, 8> words;
    for (; length + sizeof(words) <= bytes.size(); length += sizeof(words)) {
        std::memcpy(words.data(), bytes.data() + length, sizeof(words));
        quint64 all = 0;
        for (const quint64 word : words)
            all |= word;
        if ((all & highBits) != 0)
            break;
    }
    while (length < bytes.size() && !isHigh(bytes[length]))
        ++length;
    return length;
}

/// Whether a text may hold a character of this number: no control, but for white space and the mark
/// of the end.
bool isOfText(unsigned character)
{
    constexpr unsigned endOfFile = 0x1A;
    return character >= ' ' || (character >= '\t' && character <= '\r') || character == endOfFile;
}

/// Whether the pairs of bytes read as UTF-16 are a text of mostly Latin-1 characters; `high` is the
/// place of the high byte in a pair.
bool isUtf16(std::string_view start, size_t high)
{
    size_t zeros = 0;
    for (size_t i = 0; i + 1 < start.size(); i += 2) {
        const unsigned upper = static_cast<Byte>(start[i + high]);
        const unsigned lower = static_cast<Byte>(start[i + 1 - high]);
        if (!isOfText(upper * 0x100 + lower))
            return false;
        zeros += upper == 0 ? 1 : 0;
    }
    return zeros > start.size() / 4;
}

} // namespace

void EncodingGuess::add(std::string_view bytes)
{
    while (!bytes.empty()) {
        size_t size = 0;
        // Most bytes are ASCII, and stand behind others; most of the rest are letters of words.
        if (!isHigh(m_last))
            size = m_continuations == 0 ? asciiLength(bytes) : 0;
        else if (!m_isUtf8)
            size = takeHighBytes(bytes);
        if (size == 0)
            take(bytes[0]);
        else
            m_before = size > 1 ? bytes[size - 2] : m_last;
        m_last = bytes[std::max<size_t>(size, 1) - 1];
        bytes.remove_prefix(std::max<size_t>(size, 1));
    }
}

/// Takes the bytes up to the next ASCII character, behind one that is none.
size_t EncodingGuess::takeHighBytes(std::string_view bytes)
{
    size_t size = 0;
    for (; size < bytes.size() && isHigh(bytes[size]); ++size)
        ++m_counts[static_cast<Byte>(bytes[size])];
    return size;
}

void EncodingGuess::take(char byte)
{
    if (isHigh(m_last) && isAmongLatin(m_before, byte))
        ++m_amongLatin;
    if (isHigh(byte))
        ++m_counts[static_cast<Byte>(byte)];
    followSequence(byte);
    m_before = m_last;
}

void EncodingGuess::followSequence(char byte)
{
    if (m_continuations > 0) {
        m_isUtf8 = m_isUtf8 && (static_cast<Byte>(byte) & 0xC0) == 0x80;
        --m_continuations;
    } else {
        m_continuations = continuationCount(static_cast<Byte>(byte));
        m_isUtf8 = m_isUtf8 && m_continuations >= 0;
    }
    if (!m_isUtf8)
        m_continuations = 0;
}

QByteArray EncodingGuess::codecName() const
{
    EncodingGuess whole(*this);
    // What stands last has nothing behind it.
    whole.add(" ");
    qint64 highBytes = 0;
    qint64 cyrillic1251 = 0;
    qint64 cyrillic866 = 0;
    for (size_t byte = 0x80; byte < m_counts.size(); ++byte) {
        highBytes += m_counts[byte];
        cyrillic1251 += byte >= 0xC0 ? m_counts[byte] : 0;
        cyrillic866 += byte < 0xB0 || (byte >= 0xE0 && byte < 0xF2) ? m_counts[byte] : 0;
    }
    if (highBytes == 0)
        return {};
    if (whole.m_isUtf8 && m_continuations == 0)
        return "UTF-8";
    if (whole.m_amongLatin * 2 > highBytes)
        return "Windows-1252";
    return cyrillic866 > cyrillic1251 ? "IBM866" : "Windows-1251";
}

QByteArray codecOfMark(std::string_view bytes)
{
    static constexpr struct {
        std::string_view mark;
        const char* codec;
    } marks[] = {
        { { "\xEF\xBB\xBF", 3 }, "UTF-8" },
        { { "\xFF\xFE\0\0", 4 }, "UTF-32LE" },
        { { "\0\0\xFE\xFF", 4 }, "UTF-32BE" },
        { { "\xFF\xFE", 2 }, "UTF-16LE" },
        { { "\xFE\xFF", 2 }, "UTF-16BE" },
    };
    for (const auto& row : marks) {
        if (bytes.substr(0, row.mark.size()) == row.mark)
            return row.codec;
    }
    return {};
}

QByteArray utf16WithoutMark(std::string_view start)
{
    if (isUtf16(start, 1))
        return "UTF-16LE";
    return isUtf16(start, 0) ? "UTF-16BE" : QByteArray();
}
