#pragma once

#include <QtGlobal>

#include <array>

/// A hash of pairs of numbers that is keyed at random: whatever pairs a file holds, few keys let
/// them collide.
class PlaceHash {
public:
    PlaceHash();

    quint64 operator()(quint64 a, quint64 b) const
    {
        // Sums of products of keyed halves.
        const quint64 ofA = ((a + m_key[0]) & lowHalf) * (((a >> 32) + m_key[1]) & lowHalf);
        const quint64 ofB = ((b + m_key[2]) & lowHalf) * (((b >> 32) + m_key[3]) & lowHalf);
        const quint64 sum = ofA + ofB;
        const quint64 hash = (sum ^ (sum >> 32)) * m_key[4];
        return hash ^ (hash >> 32);
    }

private:
    static constexpr quint64 lowHalf = 0xFFFFFFFFU;

    std::array<quint64, 5> m_key;
};
