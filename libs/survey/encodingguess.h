#pragma once

#include <QByteArray>

#include <array>
#include <string_view>

/// Tells from the bytes of a file in which encoding its texts are written.
///
/// UTF-8 is told by its strict form. The single-byte encodings of Russian texts are told by where
/// their letters stand: Windows-1251 has them from 0xC0 up, IBM866 has most of them from 0x80 to
/// 0xAF. Bytes above ASCII that stand alone among Latin letters speak for Windows-1252.
class EncodingGuess {
public:
    /// So many bytes at the start of a file show a mark, or UTF-16 without one.
    static constexpr int sampleSize = 1024;

    /// Takes the next bytes of the file.
    void add(std::string_view bytes);

    /// A codec's name; empty for ASCII, which reads the same in all encodings on offer.
    QByteArray codecName() const;

private:
    size_t takeHighBytes(std::string_view bytes);
    void take(char byte);
    void followSequence(char byte);

    bool m_isUtf8 = true; ///< so far
    int m_continuations = 0; ///< bytes that a UTF-8 sequence still lacks
    char m_before = ' '; ///< the byte before the last
    char m_last = ' '; ///< the last byte
    std::array<qint64, 256> m_counts{}; ///< of each byte above ASCII
    qint64 m_amongLatin = 0; ///< of those before the last that stand alone among Latin letters
};

/// The encoding that a byte-order mark at the start names; empty without one.
QByteArray codecOfMark(std::string_view bytes);

/// The form of UTF-16 that texts of mostly ASCII characters at the start of a file show without a
/// mark; empty for others.
QByteArray utf16WithoutMark(std::string_view start);
