#include "geometry/defnames.h"

#include <QRandomGenerator>

DefName DefNames::nameOf(QStringView def)
{
    // A seed of its own: nobody can write a file whose designations collide.
    static const uint seed = QRandomGenerator::system()->generate();
    constexpr int longText = 64;
    const auto named = [def] {
        return DefName{ qHash(DefKey{ def }, seed), static_cast<int>(def.size()), def.data() };
    };
    if (def.size() < longText)
        return named();

    // What is at one place is one text, or the start of it that comes before its number.
    const auto known = m_ofData.constFind(def.data());
    if (known != m_ofData.constEnd() && known->size == def.size())
        return *known;
    DefName name = named();
    const auto first = m_first.constFind(name);
    if (first == m_first.constEnd())
        m_first.insert(name, name.data);
    else
        name.data = *first;
    m_ofData.insert(def.data(), name);
    return name;
}
