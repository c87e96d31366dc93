#include "survey/encodingguess.h"

#include <QTextCodec>

#include <algorithm>

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

bool isUtf8(std::string_view bytes)
{
    for (size_t i = 0; i < bytes.size(); ++i) {
        int count = continuationCount(static_cast<Byte>(bytes[i]));
        if (count < 0)
            return false;
        for (; count > 0; --count) {
            if (++i == bytes.size() || (static_cast<Byte>(bytes[i]) & 0xC0) != 0x80)
                return false;
        }
    }
    return true;
}

/// Texts of mostly ASCII characters in UTF-16 have a zero in every other byte.
QByteArray utf16WithoutMark(std::string_view bytes)
{
    constexpr size_t sampleSize = 1024;
    const std::string_view sample = bytes.substr(0, sampleSize);
    size_t zeros[2] = { 0, 0 };
    for (size_t i = 0; i < sample.size(); ++i)
        zeros[i % 2] += sample[i] == '\0' ? 1 : 0;
    if (zeros[1] > sample.size() / 4)
        return "UTF-16LE";
    return zeros[0] > sample.size() / 4 ? "UTF-16BE" : QByteArray();
}

} // namespace

EncodingGuess::EncodingGuess(std::string_view bytes)
    : m_isUtf8(isUtf8(bytes))
{
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (isHigh(bytes[i]))
            countHighByte(bytes, i);
    }
}

void EncodingGuess::countHighByte(std::string_view bytes, size_t index)
{
    const Byte byte = static_cast<Byte>(bytes[index]);
    ++m_highBytes;
    m_cyrillic1251 += byte >= 0xC0 ? 1 : 0;
    m_cyrillic866 += byte < 0xB0 || (byte >= 0xE0 && byte < 0xF2) ? 1 : 0;
    const char before = index > 0 ? bytes[index - 1] : ' ';
    const char after = index + 1 < bytes.size() ? bytes[index + 1] : ' ';
    if (!isHigh(before) && !isHigh(after) && (isLatinLetter(before) || isLatinLetter(after)))
        ++m_amongLatin;
}

QByteArray EncodingGuess::codecName() const
{
    if (isAscii())
        return {};
    if (m_isUtf8)
        return "UTF-8";
    if (m_amongLatin * 2 > m_highBytes)
        return "Windows-1252";
    return m_cyrillic866 > m_cyrillic1251 ? "IBM866" : "Windows-1251";
}

QByteArray likelyCodec(std::string_view bytes)
{
    const QByteArray utf16 = utf16WithoutMark(bytes);
    return utf16.isEmpty() ? EncodingGuess(bytes).codecName() : utf16;
}

QByteArray codecOfMark(std::string_view bytes)
{
    const auto startsWith = [bytes](std::string_view mark) {
        return bytes.substr(0, mark.size()) == mark;
    };
    if (startsWith("\xEF\xBB\xBF"))
        return "UTF-8";
    if (startsWith("\xFF\xFE"))
        return "UTF-16LE";
    return startsWith("\xFE\xFF") ? "UTF-16BE" : QByteArray();
}

QByteArray asUtf8(const QByteArray& bytes)
{
    const std::string_view view(bytes.constData(), static_cast<size_t>(bytes.size()));
    const QByteArray mark = codecOfMark(view);
    const QByteArray name = mark.isEmpty() ? utf16WithoutMark(view) : mark;
    if (!name.startsWith("UTF-16"))
        return mark.isEmpty() ? bytes : bytes.mid(3);
    const QTextCodec* codec = QTextCodec::codecForName(name);
    return codec ? codec->toUnicode(bytes).toUtf8() : bytes;
}
