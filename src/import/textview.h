#pragma once

#include <QChar>
#include <QLatin1String>
#include <QString>
#include <QStringView>

#include <cstring>

/// A piece of a file's text, which somebody else holds: ASCII bytes as they stand in the file, or
/// decoded characters. Which of the two it is makes no difference to what it means.
class TextView {
public:
    constexpr TextView() = default;
    constexpr TextView(const char* ascii, qsizetype size)
        : m_data(ascii)
        , m_sizeAndKind(static_cast<size_t>(size) * 2 + asciiBit)
    {
    }
    TextView(QStringView characters)
        : m_data(characters.data())
        , m_sizeAndKind(static_cast<size_t>(characters.size()) * 2)
    {
    }

    constexpr bool isNull() const { return !m_data; }
    constexpr bool isEmpty() const { return size() == 0; }
    constexpr qsizetype size() const { return static_cast<qsizetype>(m_sizeAndKind / 2); }
    constexpr bool isAscii() const { return (m_sizeAndKind & asciiBit) != 0; }
    const void* data() const { return m_data; }
    /// The bytes of an ASCII text.
    const char* ascii() const { return static_cast<const char*>(m_data); }
    /// The characters of a text that is not ASCII.
    const char16_t* characters() const { return static_cast<const char16_t*>(m_data); }

    /// Calls `function` with pointers to the first unit of the text and behind its last one.
    template <typename Function>
    auto visit(Function&& function) const
    {
        return isAscii() ? function(ascii(), ascii() + size())
                         : function(characters(), characters() + size());
    }

    /// The part between two of the pointers that visit() hands out.
    template <typename Unit>
    static TextView between(const Unit* begin, const Unit* end)
    {
        if constexpr (sizeof(Unit) == 1)
            return { begin, end - begin };
        else
            return QStringView(begin, end);
    }

    /// The text as a string; null for a null one.
    QString toString() const
    {
        return isAscii()
            ? QString::fromLatin1(ascii(), static_cast<int>(size()))
            : QString(reinterpret_cast<const QChar*>(m_data), static_cast<int>(size()));
    }

    /// The text without white space around it, as QString::trimmed gives it.
    TextView trimmed() const
    {
        return visit([](auto begin, auto end) {
            while (begin != end && isSpace(*begin))
                ++begin;
            while (begin != end && isSpace(end[-1]))
                --end;
            return between(begin, end);
        });
    }

    static bool isSpace(char ascii) { return ascii == ' ' || (ascii >= '\t' && ascii <= '\r'); }
    static bool isSpace(char16_t unit) { return QChar::isSpace(unit); }

    /// Whether the text is this ASCII one.
    friend bool operator==(TextView text, QLatin1String ascii)
    {
        if (text.size() != ascii.size())
            return false;
        if (text.isAscii())
            return std::memcmp(text.m_data, ascii.data(), static_cast<size_t>(text.size())) == 0;
        return QStringView(text.characters(), text.size()) == ascii;
    }
    friend bool operator!=(TextView text, QLatin1String ascii) { return !(text == ascii); }

    /// Whether the text is this ASCII one, ignoring case.
    bool equalsIgnoringCase(QLatin1String other) const
    {
        if (!isAscii())
            return QStringView(characters(), size()).compare(other, Qt::CaseInsensitive) == 0;
        return size() == other.size()
            && qstrnicmp(ascii(), other.data(), static_cast<uint>(size())) == 0;
    }

private:
    static constexpr size_t asciiBit = 1;

    // Two words, which are handed over in registers.
    const void* m_data = nullptr;
    size_t m_sizeAndKind = asciiBit; ///< twice the size, in bytes or characters, and the bit
};
static_assert(sizeof(TextView) == 16);
Q_DECLARE_TYPEINFO(TextView, Q_PRIMITIVE_TYPE);
