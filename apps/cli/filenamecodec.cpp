#include "filenamecodec.h"

#include <algorithm>

namespace {

constexpr uint firstStray = 0xDC80;
constexpr uint lastStray = 0xDCFF;
constexpr uint strayOffset = 0xDC00;

/// The text of bytes that are UTF-8 as a whole; null for others.
QString strictUtf8(const char* bytes, int length)
{
    static const QTextCodec* const utf8 = QTextCodec::codecForName("UTF-8");
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    const QString text = utf8->toUnicode(bytes, length, &state);
    return state.invalidChars == 0 && state.remainingChars == 0 ? text : QString();
}

} // namespace

QTextCodec* FileNameCodec::instance()
{
    // Qt deletes it with all other codecs.
    static auto* const codec = new FileNameCodec;
    return codec;
}

int FileNameCodec::strayByte(uint character)
{
    return character >= firstStray && character <= lastStray
        ? static_cast<int>(character - strayOffset)
        : -1;
}

QString FileNameCodec::convertToUnicode(const char* bytes, int length, ConverterState*) const
{
    constexpr int longestSequence = 4;
    QString whole = strictUtf8(bytes, length);
    if (!whole.isNull() || length == 0)
        return whole;
    QString text;
    for (int i = 0; i < length;) {
        QString character;
        int size = 1;
        const int most = std::min(longestSequence, length - i);
        while (size <= most && (character = strictUtf8(bytes + i, size)).isNull())
            ++size;
        if (character.isNull()) {
            character = QChar(strayOffset + static_cast<unsigned char>(bytes[i]));
            size = 1;
        }
        text += character;
        i += size;
    }
    return text;
}

QByteArray FileNameCodec::convertFromUnicode(
    const QChar* characters, int length, ConverterState*) const
{
    QByteArray bytes;
    int start = 0;
    const auto appendUntil = [&](int end) {
        bytes += QString::fromRawData(characters + start, end - start).toUtf8();
        start = end + 1;
    };
    for (int i = 0; i < length; ++i) {
        const int byte = strayByte(characters[i].unicode());
        if (byte < 0 || (i > 0 && characters[i - 1].isHighSurrogate()))
            continue;
        appendUntil(i);
        bytes += static_cast<char>(byte);
    }
    appendUntil(length);
    return bytes;
}
