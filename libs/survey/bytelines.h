#pragma once

#include "import/textview.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QTextCodec>

#include <memory>
#include <string_view>

class EncodingGuess;

/// Reads a file line by line as bytes, for a census: nothing is decoded. Lines end as those of
/// LineReader do. A file of two or four bytes a character is turned into UTF-8 on the way.
class ByteLines {
public:
    ByteLines();
    ~ByteLines();
    Q_DISABLE_COPY(ByteLines)

    /// Opens a file; `wide` is its codec where a character has more than one byte, else null.
    /// `guess`, if there is one, is shown all bytes. False when the file cannot be opened.
    bool open(const QString& fileName, QTextCodec* wide, EncodingGuess* guess);

    /// Reads the next line into `line`; false at the end of the file.
    bool next()
    {
        const char* const begin = m_buffer.constData() + m_start;
        const auto size = static_cast<size_t>(m_buffer.size() - m_start);
        if (const void* const end =
                size > 0 ? std::char_traits<char>::find(begin, size, '\n') : nullptr) {
            take(begin, static_cast<size_t>(static_cast<const char*>(end) - begin));
            m_start += static_cast<int>(line.size()) + m_endSize;
            return true;
        }
        return readOn();
    }

    std::string_view line; ///< the last line read, without its end; valid until the next one
    int number = 0; ///< one-based number of that line

private:
    void take(const char* begin, size_t size)
    {
        m_endSize = 1;
        if (size > 0 && begin[size - 1] == '\r') {
            --size;
            ++m_endSize;
        }
        line = std::string_view(begin, size);
        ++number;
    }
    bool readOn();
    bool fill();

    QFile m_file;
    EncodingGuess* m_guess = nullptr;
    std::unique_ptr<QTextDecoder> m_decoder; ///< null where bytes are taken as they stand
    QByteArray m_buffer;
    int m_start = 0; ///< of what is not handed out yet
    int m_endSize = 0; ///< bytes that ended the last line
};

/// `text` without white space around it.
inline std::string_view trimmed(std::string_view text)
{
    size_t begin = 0;
    size_t end = text.size();
    while (begin < end && TextView::isSpace(text[begin]))
        ++begin;
    while (end > begin && TextView::isSpace(text[end - 1]))
        --end;
    return text.substr(begin, end - begin);
}
