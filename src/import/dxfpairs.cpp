#include "import/dxfpairs.h"

bool DxfPairs::readCodeValue()
{
    if (unread) {
        unread = false;
        return true;
    }
    code = m_in.readLine().trimmed();
    if (code.isEmpty())
        return false;
    value = m_in.readLine().trimmed();
    return true;
}

void DxfPairs::keepUnread()
{
    if (!unread)
        return;
    m_keptCode = code.toString();
    m_keptValue = value.toString();
    code = m_keptCode;
    value = m_keptValue;
}
