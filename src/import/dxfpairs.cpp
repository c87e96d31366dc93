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
    code = QStringView(m_keptCode);
    value = QStringView(m_keptValue);
}

bool DxfPairs::skipToEntity()
{
    if (unread)
        return readCodeValue() && (isEntity() || skipToEntity());
    while (!m_in.atEnd()) {
        code = m_in.readLine().trimmed();
        if (code.isEmpty())
            return false;
        if (isEntity()) {
            value = m_in.readLine().trimmed();
            return true;
        }
        m_in.skipLine();
    }
    return true;
}
