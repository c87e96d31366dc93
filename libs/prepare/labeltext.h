#pragma once

#include <string>
#include <string_view>

class QString;
class QTextCodec;

namespace prep {

/// Makes the text of an entity into what the readers take from a TEXT: one line without control
/// codes. %%d, %%p, %%c and %%nnn stay as they are, since the readers know them.
class LabelText {
public:
    /// The codec is that of the drawing. With `byteCodec` %%nnn becomes the character that this
    /// codec has there: needed where the drawing was in another encoding before.
    explicit LabelText(const QTextCodec* codec, const QTextCodec* byteCodec = nullptr)
        : m_codec(codec)
        , m_byteCodec(byteCodec)
    {
    }

    /// The text of a TEXT or an ATTRIB.
    std::string ofText(std::string_view bytes);
    /// The text of an MTEXT: without its formatting, its lines put into one.
    std::string ofMText(std::string_view bytes);

    /// Whether the last text held a character that the encoding has not; it is written as \U+XXXX.
    bool hasUnencodable() const { return m_unencodable; }

private:
    std::string encoded(const QString& text);

    const QTextCodec* m_codec;
    const QTextCodec* m_byteCodec;
    bool m_unencodable = false;
};

} // namespace prep
