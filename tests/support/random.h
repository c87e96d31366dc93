#pragma once

#include <QString>

#include <cstring>
#include <limits>
#include <random>

/// Random values that are the same in every run.
class Random {
public:
    explicit Random(unsigned seed)
        : m_engine(seed)
    {
    }

    /// From 0 to `count` - 1.
    int below(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_engine); }
    /// True once in `count` times on average.
    bool oneIn(int count) { return below(count) == 0; }
    double between(double low, double high)
    {
        return std::uniform_real_distribution<double>(low, high)(m_engine);
    }
    quint64 bits() { return std::uniform_int_distribution<quint64>()(m_engine); }

    /// Any double at all: every pattern of bits is equally likely.
    double anyDouble()
    {
        const quint64 pattern = bits();
        double value;
        std::memcpy(&value, &pattern, sizeof value);
        return value;
    }

    template <typename Container>
    auto pick(const Container& from) -> decltype(from.begin()[0])
    {
        return from.begin()[below(static_cast<int>(from.size()))];
    }

    /// A text of up to `longest` of the given characters.
    QString text(const QString& alphabet, int longest)
    {
        QString result;
        for (int left = below(longest + 1); left > 0; --left)
            result.append(pick(alphabet));
        return result;
    }

private:
    std::mt19937_64 m_engine;
};
