#include "prepare/dxfrecords.h"

namespace prep {

bool DxfRecords::next()
{
    if (!m_unread) {
        passPairs();
        if (!m_hasAhead)
            return false;
        m_hasAhead = false;
        m_type = m_ahead.text();
        m_position = m_aheadPosition;
    }
    m_unread = false;
    if (m_echo) {
        m_echoStart = m_echo->size();
        m_echo->pair(0, m_type);
    }
    return true;
}

void DxfRecords::unread()
{
    m_unread = true;
    if (m_echo)
        m_echo->takeBack(m_echoStart);
}

void DxfRecords::passPairs()
{
    DxfPair passed;
    while (!m_unread && pair(passed)) { }
}

bool DxfRecords::pair(DxfPair& pair)
{
    if (m_hasAhead)
        return false;
    const size_t position = m_cursor.position();
    if (!m_cursor.next(pair))
        return false;
    if (pair.code != 0) {
        if (m_echo)
            m_echo->pair(pair.code, pair.value);
        return true;
    }
    m_ahead = pair;
    m_aheadPosition = position;
    m_hasAhead = true;
    return false;
}

size_t DxfRecords::nextPosition() const
{
    if (m_unread)
        return m_position;
    return m_hasAhead ? m_aheadPosition : std::string_view::npos;
}

void DxfRecords::moveTo(size_t position)
{
    m_cursor.moveTo(position);
    m_hasAhead = false;
    m_unread = false;
}

} // namespace prep
