#include "import/bytetable.h"

#include <QByteArray>
#include <QString>
#include <QTextCodec>

namespace {

/// Each byte before others that may follow in longer characters, and before itself.
QByteArray bytesInPairs()
{
    constexpr char following[] = "A\x80\x88\x90\x98\xA0\xA1\xA8\xB0\xB8\xBF\xC0\xD0\xE0\xF0\xFE";
    QByteArray bytes;
    for (int i = 0; i < 256; ++i) {
        const char c = static_cast<char>(i);
        for (const char next : following)
            bytes.append(c).append(next == '\0' ? c : next).append('\n');
    }
    return bytes;
}

bool isAscii(char byte)
{
    return static_cast<unsigned char>(byte) < 0x80;
}

} // namespace

bool ByteTable::read(const QTextCodec& codec)
{
    if (m_codec != &codec) {
        m_isFound = readCharacters(codec);
        m_codec = &codec;
    }
    return m_isFound;
}

bool ByteTable::readCharacters(const QTextCodec& codec)
{
    static const QByteArray bytes = bytesInPairs();
    QTextCodec::ConverterState state;
    const QString text = codec.toUnicode(bytes.constData(), bytes.size(), &state);
    if (text.size() != bytes.size() || state.remainingChars != 0)
        return false;
    for (int i = 0; i < bytes.size(); i += bytes.size() / 256)
        m_characters[static_cast<unsigned char>(bytes.at(i))] = text.at(i);
    for (int i = 0; i < bytes.size(); ++i) {
        const char byte = bytes.at(i);
        if (text.at(i) != at(byte) || (isAscii(byte) && at(byte) != QLatin1Char(byte)))
            return false;
    }
    return true;
}
