#include "textoutput.h"

#include <array>
#include <charconv>

namespace {

constexpr int bufferSize = 1 << 20;

} // namespace

TextOutput::TextOutput(const QString& fileName, const QTextCodec* codec)
    : m_file(fileName)
    , m_codec(codec)
{
    if (!m_file.open(QIODevice::WriteOnly))
        qFatal("Cannot write %s", qPrintable(fileName));
    m_buffer.reserve(bufferSize + 1024);
}

TextOutput::~TextOutput()
{
    flush();
    if (!m_file.flush())
        qFatal("Cannot write %s", qPrintable(m_file.fileName()));
}

void TextOutput::flush()
{
    if (m_file.write(m_buffer) != m_buffer.size())
        qFatal("Cannot write %s", qPrintable(m_file.fileName()));
    m_buffer.resize(0);
}

TextOutput& TextOutput::operator<<(const char* ascii)
{
    m_buffer.append(ascii);
    if (m_buffer.size() >= bufferSize)
        flush();
    return *this;
}

TextOutput& TextOutput::operator<<(const QString& text)
{
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    m_buffer.append(m_codec->fromUnicode(text.constData(), text.size(), &state));
    return *this;
}

TextOutput& TextOutput::operator<<(int value)
{
    m_buffer.append(QByteArray::number(value));
    return *this;
}

TextOutput& TextOutput::operator<<(double value)
{
    std::array<char, 64> text;
    const auto end = std::to_chars(
        text.data(), text.data() + text.size(), value, std::chars_format::fixed, m_decimals)
                         .ptr;
    m_buffer.append(text.data(), static_cast<int>(end - text.data()));
    return *this;
}
