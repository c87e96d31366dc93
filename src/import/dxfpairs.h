#pragma once

#include "import/dxfstretches.h"
#include "import/linereader.h"

#include <QLatin1String>
#include <QString>

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
