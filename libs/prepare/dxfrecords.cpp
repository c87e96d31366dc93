#include "prepare/dxfrecords.h"

namespace prep {

bool DxfRecords::next()
{
    if (m_unread) {
        m_unread = false;
        return true;
    }
    DxfPair passed;
    while (pair(passed)) { }
    if (!m_hasAhead)
        return false;
    m_hasAhead = false;
    m_type = m_ahead.text();
    m_position = m_aheadPosition;
    return true;
}

bool DxfRecords::pair(DxfPair& pair)
{
    if (m_hasAhead)
        return false;
    const size_t position = m_cursor.position();
    if (!m_cursor.next(pair))
        return false;
    if (pair.code != 0)
        return true;
    m_ahead = pair;
    m_aheadPosition = position;
    m_hasAhead = true;
    return false;
}

void DxfRecords::moveTo(size_t position)
{
    m_cursor.moveTo(position);
    m_hasAhead = false;
    m_unread = false;
}

} // namespace prep
