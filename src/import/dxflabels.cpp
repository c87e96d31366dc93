#include "import/dxflabels.h"

#include "geometry/digits.h"
#include "geometry/pointorder.h"

#include <algorithm>
#include <iterator>

namespace {

bool isLatinOrRussianLetter(QChar c)
{
    const auto isBetween = [c](char16_t first, char16_t last) {
        return c.unicode() >= first && c.unicode() <= last;
    };
    return isBetween(u'A', u'Z') || isBetween(u'a', u'z') || isBetween(u'А', u'я') || c == u'Ё'
        || c == u'ё';
}

/// Whether a text looks like a point number: at most one letter, then digits. A line feed at the
/// very end is overlooked.
bool isPointDef(const QString& def)
{
    auto it = def.cbegin();
    const auto end = def.endsWith(QLatin1Char('\n')) ? def.cend() - 1 : def.cend();
    if (it != end && isLatinOrRussianLetter(*it))
        ++it;
    return it != end && std::all_of(it, end, isDigit);
}

} // namespace

void DxfLabels::clear()
{
    m_texts.clear();
    m_index = std::monostate();
}

void DxfLabels::append(const DefPoint& text)
{
    m_texts.append(text);
    m_index = std::monostate();
}

void DxfLabels::sort()
{
    sortPoints(m_texts);
    m_index = std::monostate();
}

void DxfLabels::filterObjectDefs()
{
    QVector<DefPoint> objectTexts;
    std::copy_if(m_texts.cbegin(), m_texts.cend(), std::back_inserter(objectTexts),
        [](const DefPoint& text) { return !isPointDef(text.def); });
    if (objectTexts.isEmpty())
        return;
    m_texts = objectTexts;
    m_index = std::monostate();
}

void DxfLabels::makeIndex() const
{
    if (arePointsSorted(m_texts))
        m_index = NearestIndex(m_texts);
    else
        m_index = SequenceIndex(m_texts);
}

const DefPoint* DxfLabels::findNearest(const QPointF& place) const
{
    if (std::holds_alternative<std::monostate>(m_index))
        makeIndex();
    if (const auto* sorted = std::get_if<NearestIndex>(&m_index))
        return sorted->find(place);
    return std::get<SequenceIndex>(m_index).find(place);
}
