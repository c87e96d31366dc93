#pragma once

#include <QChar>

#include <array>

class QTextCodec;

/// The characters of the bytes of an encoding in which a text is one character a byte, and ASCII
/// where the byte is. Such texts need no codec.
class ByteTable {
public:
    /// Finds the characters of an encoding; false for one of another kind. Costs nothing for the
    /// codec that was asked last.
    bool read(const QTextCodec& codec);
    /// The character of a byte, if read() found them.
    QChar at(char byte) const { return m_characters[static_cast<unsigned char>(byte)]; }

private:
    bool readCharacters(const QTextCodec& codec);

    const QTextCodec* m_codec = nullptr;
    bool m_isFound = false;
    std::array<QChar, 256> m_characters;
};
