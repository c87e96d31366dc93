#pragma once

#include <QByteArray>

#include <string_view>

/// Tells from the bytes of a file in which encoding its texts are written.
///
/// UTF-8 is told by its strict form. The single-byte encodings of Russian texts are told by where
/// their letters stand: Windows-1251 has them from 0xC0 up, IBM866 has most of them from 0x80 to
/// 0xAF. Bytes above ASCII that stand alone among Latin letters speak for Windows-1252.
class EncodingGuess {
public:
    explicit EncodingGuess(std::string_view bytes);

    bool isAscii() const { return m_highBytes == 0; }
    /// A codec's name; empty for ASCII, which reads the same in all encodings on offer.
    QByteArray codecName() const;

private:
    void countHighByte(std::string_view bytes, size_t index);

    bool m_isUtf8;
    qint64 m_highBytes = 0;
    qint64 m_cyrillic1251 = 0;
    qint64 m_cyrillic866 = 0;
    qint64 m_amongLatin = 0;
};

/// The codec that EncodingGuess names, or UTF-16 for texts that look like it.
QByteArray likelyCodec(std::string_view bytes);

/// The encoding that a byte-order mark at the start names; empty without one.
QByteArray codecOfMark(std::string_view bytes);

/// `bytes` without a byte-order mark, and as UTF-8 if they are UTF-16.
QByteArray asUtf8(const QByteArray& bytes);
