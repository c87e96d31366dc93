#pragma once

#include "import/dxfstretches.h"
#include "import/linereader.h"

#include <QLatin1String>
#include <QString>

#include <array>
#include <string_view>

/// Some group codes, and that which starts an entity: a quick look at a line tells whether it may
/// be one of them.
class DxfCodes {
public:
    template <size_t Count>
    constexpr explicit DxfCodes(const std::array<QLatin1String, Count>& codes)
    {
        for (const QLatin1String code : codes)
            include(code.data(), static_cast<size_t>(code.size()));
    }

    /// Whether the bytes of a line, without its line feed, surely are no code of these, and not
    /// blank.
    bool exclude(std::string_view line) const
    {
        if (!line.empty() && line.back() == '\r')
            line.remove_suffix(1);
        if (line.empty() || !isVisible(line.back()))
            return false;
        const auto digit = static_cast<size_t>(line.back() - '0');
        if (digit >= m_isLast.size() || !m_isLast[digit])
            return true;
        if (line.size() <= m_longest)
            return false;
        for (size_t i = line.size() - m_longest - 1; i < line.size(); ++i) {
            if (!isVisible(line[i]))
                return false;
        }
        return true;
    }

private:
    /// Whether a byte is ASCII and neither white space nor a control character.
    static bool isVisible(char c) { return static_cast<signed char>(c) > ' '; }

    constexpr void include(const char* code, size_t size)
    {
        m_isLast[static_cast<size_t>(code[size - 1] - '0')] = true;
        m_longest = size > m_longest ? size : m_longest;
    }

    // For each digit, whether one of the codes ends with it.
    std::array<bool, 10> m_isLast{ true };
    size_t m_longest = 1; ///< the length of the longest code
};

/// A cursor over the pairs of lines that a DXF drawing consists of, as published by Autodesk:
/// a group code and its value. Codes stay text and are compared as such.
class DxfPairs {
public:
    /// The code of the pair that starts an entity or a section.
    static constexpr QLatin1String entityCode{ "0", 1 };

    /// Reads through `in`, which its owner opens and closes.
    explicit DxfPairs(LineReader& in)
        : m_in(in)
    {
    }
    DxfPairs(const DxfPairs&) = delete;
    DxfPairs& operator=(const DxfPairs&) = delete;

    /// Reads the next pair into `code` and `value`, or hands back the current one when `unread` is
    /// set. False when the code line is blank or the file has ended.
    bool readCodeValue();
    /// Passes over pairs that start no entity and have none of these codes, as many as can be told
    /// at a glance: what an entity begins with is common to all kinds.
    void skipOthers(const DxfCodes& codes);
    /// Reads on to the next pair that starts an entity or a section, from the current one where
    /// that is handed back. True at the end of the file, too; false where a code line is blank.
    bool skipToEntity();
    /// Whether all lines have been read; a pair that is handed back does not count.
    bool atEnd() const { return m_in.atEnd(); }
    /// Whether the current pair starts an entity or a section.
    bool isEntity() const { return code == entityCode; }
    /// Makes the current pair outlive its file, if it is to be handed back.
    void keepUnread();

    /// Notes in `stretches`, from now on, where entities start; null for no more.
    void noteStretches(DxfStretches* stretches) { m_noted = stretches; }
    /// Goes on behind the stretch that the cursor is in, if it is in one.
    void passOver(const DxfStretches& stretches);

    TextView code; ///< group code of the current pair, trimmed
    TextView value; ///< value of the current pair, trimmed
    bool unread = false; ///< the next readCodeValue() hands back the current pair

private:
    DxfStretches::Place here() const;
    void noteEntity(const DxfStretches::Place& place) const;

    LineReader& m_in;
    DxfStretches* m_noted = nullptr;
    QString m_keptCode;
    QString m_keptValue;
};
