#include "import/dxfpairs.h"

namespace {

constexpr DxfCodes entityOnly{ std::array<QLatin1String, 1>{ DxfPairs::entityCode } };

} // namespace

bool DxfPairs::readCodeValue()
{
    if (unread) {
        unread = false;
        return true;
    }
    const DxfStretches::Place place = here();
    code = m_in.readLine().trimmed();
    if (code.isEmpty())
        return false;
    value = m_in.readLine().trimmed();
    if (m_noted && isEntity())
        noteEntity(place);
    return true;
}

void DxfPairs::skipOthers(const DxfCodes& codes)
{
    if (!unread)
        m_in.skipPairs([&codes](std::string_view line) { return codes.exclude(line); });
}

DxfStretches::Place DxfPairs::here() const
{
    if (!m_noted)
        return { 0, 0 };
    return { m_in.position(), m_in.lineOfFile() };
}

void DxfPairs::noteEntity(const DxfStretches::Place& place) const
{
    const auto isValue = [this](const char* name) { return value == QLatin1String(name); };
    const bool isWanted = isValue("LWPOLYLINE") || isValue("LINE") || isValue("POLYLINE")
        || isValue("VERTEX") || isValue("SEQEND") || isValue("SECTION");
    m_noted->note(place, isWanted);
}

void DxfPairs::passOver(const DxfStretches& stretches)
{
    if (unread)
        return;
    if (const DxfStretches::Place* const end = stretches.endOf(m_in.position()))
        m_in.seek(end->position, end->line);
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
        return readCodeValue();
    while (!m_in.atEnd()) {
        skipOthers(entityOnly);
        const DxfStretches::Place place = here();
        code = m_in.readLine().trimmed();
        if (code.isEmpty())
            return false;
        if (isEntity()) {
            value = m_in.readLine().trimmed();
            if (m_noted)
                noteEntity(place);
            return true;
        }
        m_in.skipLine();
    }
    return true;
}
