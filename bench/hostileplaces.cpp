#include "hostileplaces.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();

double randomUnit()
{
    static std::mt19937_64 engine{ 20260101 };
    return static_cast<double>(engine() >> 11) / 9007199254740992.0;
}

template <typename Place>
QVector<DefPoint> points(int count, Place place)
{
    QVector<DefPoint> result;
    for (int i = 0; i < count; ++i) {
        const QPointF at = place(i);
        result.append(DefPoint{ QString::number(i), at.x(), at.y() });
    }
    return result;
}

int across(int count)
{
    return static_cast<int>(std::ceil(std::sqrt(count)));
}

QVector<DefPoint> lattice(int count, double step)
{
    const int side = across(count);
    return points(count, [=](int i) { return QPointF(i % side * step, i / side * step); });
}

QVector<DefPoint> harmless(int count)
{
    return points(count, [](int) { return QPointF(randomUnit() * 30000, randomUnit() * 30000); });
}

/// Their cells are the same to a hash that multiplies and adds without a key.
QVector<DefPoint> colliding(int count)
{
    return points(count, [](int i) {
        const auto cellX = static_cast<quint64>(i);
        const quint64 bits =
            ((cellX * 0x9E3779B97F4A7C15ull) ^ 0x4123456789ABCDEFull) - 0x632BE59BD9B4E019ull;
        double y;
        std::memcpy(&y, &bits, sizeof y);
        return QPointF(i * 64.0, std::isfinite(y) ? y : i);
    });
}

QVector<DefPoint> tieLattice(int count)
{
    // Each place has neighbours at equal distances that coincide with it or nearly do.
    return lattice(count, 1.0 / 128);
}

QVector<DefPoint> toleranceApart(int count)
{
    return lattice(count, 0.0101);
}

QVector<DefPoint> oneNotANumber(int count)
{
    QVector<DefPoint> result = harmless(count);
    result.first().x = nan;
    return result;
}

/// Neighbours in the order are far apart, so that none of the others merge.
QVector<DefPoint> crowdedRows(int count)
{
    return points(count, [](int i) { return QPointF(i * 1e-9, i % 2 * 5); });
}

QVector<DefPoint> crowdedCells(int count)
{
    // So many a cell as are not yet left to the tree.
    return points(count,
        [](int i) { return QPointF(i / 30 * 0.03125 + i % 30 * 1e-3, i % 30 % 2 * 0.0151); });
}

QVector<DefPoint> underflowing(int count)
{
    return points(count, [=](int i) { return QPointF((i - count / 2) * 1e-170, i % 7 * 1e-170); });
}

QVector<DefPoint> onCircle(int count)
{
    return points(count, [=](int i) {
        const double angle = 6.283185307179586 * i / count;
        return QPointF(std::cos(angle), std::sin(angle));
    });
}

QVector<DefPoint> onSlope(int count)
{
    return points(count, [](int i) { return QPointF(i * 0.05, i * -0.05); });
}

QPointF nearOrigin(int index)
{
    return QPointF(index * 1e-9, 0);
}

/// So near that the distances to points on a circle differ by less than their rounding.
QPointF nextToOrigin(int index)
{
    return QPointF((index + 1) * 1e-18, 0);
}

QPointF acrossSlope(int index)
{
    return QPointF(1e5 + index * 0.01, 1e5);
}

QPointF atOrigin(int)
{
    return QPointF(0, 0);
}

QPointF anywhere(int)
{
    return QPointF(randomUnit() * 30000, randomUnit() * 30000);
}

QPointF farRight(int index)
{
    return QPointF(1e20, index);
}

QPointF farAbove(int index)
{
    return QPointF(index % 30000, 1e20);
}

QVector<DefPoint> column(int count)
{
    return points(count, [](int) { return QPointF(5, randomUnit() * 30000); });
}

QVector<DefPoint> risingColumn(int count)
{
    return points(count, [](int i) { return QPointF(5, i); });
}

QVector<DefPoint> fallingColumn(int count)
{
    return points(count, [=](int i) { return QPointF(5, count - i); });
}

QVector<DefPoint> twoColumns(int count)
{
    return points(count, [](int i) { return QPointF(i % 2, randomUnit() * 30000); });
}

QVector<DefPoint> falling(int count)
{
    return points(count, [=](int i) { return QPointF(count - i, i % 100); });
}

QVector<DefPoint> closingIn(int count)
{
    return points(count, [=](int i) { return QPointF(i % 2 ? i - count : count - i, 0); });
}

/// Every second pair steps back a little.
QVector<DefPoint> closingInUnsteadily(int count)
{
    return points(count, [=](int i) {
        const double x = count - i + (i % 4 < 2 ? 0 : 1.5);
        return QPointF(i % 2 ? -x : x, 1000);
    });
}

QVector<DefPoint> underflowingColumn(int count)
{
    return points(count, [](int i) { return QPointF(0, (i * 7919 % 10007) * 1e-170); });
}

} // namespace

QVector<HostilePlaces> hostileInserted()
{
    return { { "harmless", harmless }, { "colliding cells", colliding },
        { "a tolerance apart", toleranceApart }, { "ties", tieLattice },
        { "one not a number", oneNotANumber } };
}

QVector<HostilePlaces> hostileArranged()
{
    return { { "harmless", harmless }, { "colliding cells", colliding },
        { "crowded cells", crowdedCells }, { "crowded rows", crowdedRows }, { "ties", tieLattice },
        { "squares underflow", underflowing }, { "one not a number", oneNotANumber } };
}

QVector<HostileLabels> hostileSorted()
{
    return { { "harmless", harmless, anywhere }, { "squares underflow", underflowing, atOrigin },
        { "far queries in x", harmless, farRight }, { "far queries in y", harmless, farAbove },
        { "one not a number", oneNotANumber, anywhere }, { "circle", onCircle, nearOrigin },
        { "circle, within rounding", onCircle, nextToOrigin }, { "slope", onSlope, acrossSlope } };
}

QVector<HostileLabels> hostileUnsorted()
{
    return { { "harmless", harmless, anywhere }, { "column", column, anywhere },
        { "rising column", risingColumn, anywhere }, { "falling column", fallingColumn, anywhere },
        { "two columns", twoColumns, anywhere }, { "falling x", falling, anywhere },
        { "squares underflow", underflowingColumn, atOrigin },
        { "one not a number", oneNotANumber, anywhere }, { "closing in", closingIn, nearOrigin },
        { "closing in unsteadily", closingInUnsteadily, nearOrigin } };
}
