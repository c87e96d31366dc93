#pragma once

#include "prepare/dxfpaircursor.h"
#include "prepare/pairwriter.h"

namespace prep {

/// Walks the records of a drawing: what begins with a pair of code 0 (an entity, a section, an
/// entry of a table) and goes on until the next one.
class DxfRecords {
public:
    explicit DxfRecords(std::string_view bytes)
        : m_cursor(bytes)
    {
    }

    /// Goes to the next record, over the pairs of this one that are left. False at the end.
    bool next();
    /// Makes next() hand back the current record; none of its pairs may have been read.
    void unread();
    /// Reads the pairs of the current record that are left.
    void passPairs();

    /// What the current record is, for example LINE or SECTION.
    std::string_view type() const { return m_type; }
    /// Where the current record begins, for moveTo().
    size_t position() const { return m_position; }
    /// Where the record begins that next() would go to; npos where there is none. The pairs of the
    /// current one must have been read.
    size_t nextPosition() const;
    /// Goes to a record of which the position is known; next() then reads it.
    void moveTo(size_t position);

    /// Reads the next pair of the current record. False when there are no more.
    bool pair(DxfPair& pair);

    /// Writes what is read from now on to `out`, too; null for no more.
    void echoTo(PairWriter* out) { m_echo = out; }

    const DxfPairCursor& cursor() const { return m_cursor; }

private:
    DxfPairCursor m_cursor;
    std::string_view m_type;
    size_t m_position = 0;
    DxfPair m_ahead; ///< the pair that starts the next record
    size_t m_aheadPosition = 0;
    PairWriter* m_echo = nullptr;
    size_t m_echoStart = 0; ///< where the echo of the current record begins
    bool m_hasAhead = false;
    bool m_unread = false;
};

} // namespace prep
