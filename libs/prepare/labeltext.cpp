#include "prepare/labeltext.h"

#include <QString>
#include <QTextCodec>

namespace prep {

namespace {

/// The number that `count` digits at `start` make, or -1.
int numberAt(const QString& text, int start, int count, int base)
{
    bool ok = false;
    const QString digits = text.mid(start, count);
    for (const QChar c : digits) {
        // toInt would take a sign or spaces for a part of the number.
        if (!c.isLetterOrNumber())
            return -1;
    }
    const int number = digits.size() == count ? digits.toInt(&ok, base) : -1;
    return ok ? number : -1;
}

/// The character of an escape \U+XXXX at `start`; null when there is none.
QChar escapedCharacter(const QString& text, int start)
{
    if (text.midRef(start, 3) != QLatin1String("\\U+"))
        return {};
    const int number = numberAt(text, start + 3, 4, 16);
    return number > 0 ? QChar(number) : QChar();
}

constexpr int unicodeEscapeLength = 7;

/// One round over the control codes of a TEXT.
QString withoutCodes(const QString& text, const QTextCodec* byteCodec)
{
    QString result;
    for (int i = 0; i < text.size();) {
        const QChar character = escapedCharacter(text, i);
        if (!character.isNull()) {
            result.append(character);
            i += unicodeEscapeLength;
            continue;
        }
        if (text.midRef(i, 2) != QLatin1String("%%") || i + 2 == text.size()) {
            result.append(text.at(i++));
            continue;
        }
        const QChar code = text.at(i + 2).toLower();
        const int byte = numberAt(text, i + 2, 3, 10);
        if (byteCodec && byte >= 0 && byte <= 255) {
            result.append(byteCodec->toUnicode(QByteArray(1, static_cast<char>(byte))));
            i += 5;
            continue;
        }
        if (code == QLatin1Char('%')) {
            result.append(code);
        } else if (QStringLiteral("dpc").contains(code)) {
            // The readers know these in lower case.
            result.append(QLatin1String("%%")).append(code);
        } else if (!QStringLiteral("uok").contains(code)) {
            result.append(text.midRef(i, 3));
        }
        i += 3;
    }
    return result;
}

/// Until nothing changes: what one round leaves may read as a code again.
QString plainLine(QString text, const QTextCodec* byteCodec)
{
    constexpr int mostRounds = 8;
    for (int round = 0; round < mostRounds; ++round) {
        const QString next = withoutCodes(text, byteCodec);
        if (next == text)
            break;
        text = next;
    }
    return text.replace(QLatin1Char('\n'), QLatin1Char(' '))
        .replace(QLatin1Char('\r'), QLatin1Char(' '));
}

/// Reads the formatting codes of an MTEXT: "MTEXT formatting codes" in Autodesk's DXF reference.
class MTextReader {
public:
    explicit MTextReader(const QString& text)
        : m_text(text)
    {
    }

    QString plain()
    {
        while (m_i < m_text.size())
            take(m_text.at(m_i++));
        return m_plain.simplified();
    }

private:
    void take(QChar c)
    {
        if (c == QLatin1Char('\\') && m_i < m_text.size())
            takeCode();
        else if (c == QLatin1Char('^') && m_i < m_text.size())
            takeCaret();
        else if (c != QLatin1Char('{') && c != QLatin1Char('}'))
            m_plain.append(c);
    }

    void takeCode()
    {
        const QChar character = escapedCharacter(m_text, m_i - 1);
        if (!character.isNull()) {
            m_plain.append(character);
            m_i += unicodeEscapeLength - 1;
            return;
        }
        const QChar code = m_text.at(m_i++);
        if (QStringLiteral("PNX~").contains(code))
            m_plain.append(QLatin1Char(' '));
        else if (QStringLiteral("\\{}").contains(code))
            m_plain.append(code);
        else if (code == QLatin1Char('S'))
            takeStack();
        else if (QStringLiteral("ACcFfHpQTW").contains(code))
            argument();
        else if (!QStringLiteral("LlOoKk").contains(code))
            m_plain.append(QLatin1Char('\\')).append(code);
    }

    /// The text up to the semicolon that ends a code.
    QString argument()
    {
        const int end = m_text.indexOf(QLatin1Char(';'), m_i);
        if (end < 0)
            return {};
        QString argument = m_text.mid(m_i, end - m_i);
        m_i = end + 1;
        return argument;
    }

    /// A fraction: two texts parted by /, # or ^.
    void takeStack()
    {
        QString stack = argument();
        stack.replace(QLatin1String("^ "), QLatin1String("^"));
        stack.replace(QLatin1Char('^'), QLatin1Char('/'))
            .replace(QLatin1Char('#'), QLatin1Char('/'));
        m_plain.append(stack);
    }

    void takeCaret()
    {
        const QChar code = m_text.at(m_i++);
        if (QStringLiteral("IJM").contains(code))
            m_plain.append(QLatin1Char(' '));
        else if (code == QLatin1Char(' '))
            m_plain.append(QLatin1Char('^'));
        else
            m_plain.append(QLatin1Char('^')).append(code);
    }

    const QString& m_text;
    int m_i = 0;
    QString m_plain;
};

QString decoded(std::string_view bytes, const QTextCodec* codec)
{
    return codec->toUnicode(bytes.data(), static_cast<int>(bytes.size()));
}

} // namespace

std::string LabelText::ofText(std::string_view bytes)
{
    m_unencodable = false;
    if (bytes.find("%%") == std::string_view::npos && bytes.find("\\U+") == std::string_view::npos)
        return std::string(bytes);
    const QString text = decoded(bytes, m_codec);
    const QString plain = plainLine(text, m_byteCodec);
    // Bytes that the codec cannot read stay as they are as long as nothing changes.
    return plain == text ? std::string(bytes) : encoded(plain);
}

std::string LabelText::ofMText(std::string_view bytes)
{
    m_unencodable = false;
    const QString text = decoded(bytes, m_codec);
    const QString plain = plainLine(MTextReader(text).plain(), m_byteCodec).simplified();
    return plain == text ? std::string(bytes) : encoded(plain);
}

std::string LabelText::encoded(const QString& text)
{
    QByteArray bytes;
    for (int i = 0; i < text.size(); ++i) {
        const int length =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()
            ? 2
            : 1;
        const QString character = text.mid(i, length);
        i += length - 1;
        if (m_codec->canEncode(character)) {
            bytes.append(m_codec->fromUnicode(character));
            continue;
        }
        m_unencodable = true;
        for (const QChar c : character)
            bytes.append("\\U+").append(
                QByteArray::number(c.unicode(), 16).toUpper().rightJustified(4, '0'));
    }
    return bytes.toStdString();
}

} // namespace prep
