#include "geometry/placehash.h"

#include <QRandomGenerator>

PlaceHash::PlaceHash()
{
    QRandomGenerator::system()->fillRange(m_key.data(), static_cast<qsizetype>(m_key.size()));
    m_key.back() |= 1;
}
