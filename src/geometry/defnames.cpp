#include "geometry/defnames.h"

#include <QRandomGenerator>

DefName DefNames::nameOf(const QString& def)
{
    // A seed of its own: nobody can write a file whose designations collide.
    static const uint seed = QRandomGenerator::system()->generate();
    constexpr int longText = 64;
    if (def.size() < longText)
        return { qHash(DefKey{ def }, seed), &def };

    const auto known = m_ofData.constFind(def.constData());
    if (known != m_ofData.constEnd())
        return *known;
    DefName name{ qHash(DefKey{ def }, seed), &def };
    const auto first = m_first.constFind(name);
    if (first == m_first.constEnd())
        m_first.insert(name, &def);
    else
        name.text = *first;
    m_ofData.insert(def.constData(), name);
    return name;
}
