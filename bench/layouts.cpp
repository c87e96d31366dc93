#include "layouts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <random>
#include <set>
#include <utility>

namespace {

constexpr Vertex origin{ 2190000, 430000 };
/// Objects of the layouts without parcels have as many vertices as a parcel has on average.
constexpr int lineLength = 9;
constexpr int usualDecimals = 2;
constexpr int degreeDecimals = 8;

/// Numbers that are the same with every standard library.
class Random {
public:
    double between(double least, double most)
    {
        constexpr double unit = 1.0 / 9007199254740992.0;
        return least + (most - least) * static_cast<double>(m_engine() >> 11) * unit;
    }
    bool chance(double probability) { return between(0, 1) < probability; }

private:
    std::mt19937_64 m_engine{ 20260101 };
};

Vertex rounded(double x, double y)
{
    return { std::round(x * 100) / 100, std::round(y * 100) / 100 };
}

Vertex between(const Vertex& a, const Vertex& b)
{
    return rounded((a.x + b.x) / 2, (a.y + b.y) / 2);
}

Vertex randomVertex(Random& random)
{
    return rounded(origin.x + random.between(0, 100000), origin.y + random.between(0, 100000));
}

int vertexCountOf(const Shape& shape)
{
    size_t count = 0;
    for (const Ring& ring : shape.rings)
        count += ring.size();
    return static_cast<int>(count);
}

Shape lineShape(Ring ring)
{
    const Vertex label = between(ring.front(), ring.back());
    return Shape{ false, { std::move(ring) }, label };
}

/// Two rows of parcels between streets, a little turned and distorted. Neighbouring parcels share
/// their corners and the bends in their borders.
class Block {
public:
    static constexpr size_t columns = 6;
    static constexpr size_t rows = 2;
    static constexpr double pitchX = 220;
    static constexpr double pitchY = 90;

    Block(const Vertex& corner, Random& random)
        : m_random(random)
    {
        const double angle = random.between(-0.05, 0.05);
        for (size_t row = 0; row <= rows; ++row) {
            for (size_t column = 0; column <= columns; ++column) {
                const double x = 32 * static_cast<double>(column) + random.between(-3, 3);
                const double y = 35 * static_cast<double>(row) + random.between(-3, 3);
                m_corners[row][column] =
                    rounded(corner.x + x * std::cos(angle) - y * std::sin(angle),
                        corner.y + x * std::sin(angle) + y * std::cos(angle));
            }
        }
        for (size_t row = 0; row <= rows; ++row) {
            for (size_t column = 0; column < columns; ++column)
                m_alongBends[row][column] =
                    bend(m_corners[row][column], m_corners[row][column + 1]);
        }
        for (size_t row = 0; row < rows; ++row) {
            for (size_t column = 0; column <= columns; ++column)
                m_acrossBends[row][column] =
                    bend(m_corners[row][column], m_corners[row + 1][column]);
        }
    }

    Shape parcel(size_t row, size_t column)
    {
        const Vertex& first = m_corners[row][column];
        const Vertex& opposite = m_corners[row + 1][column + 1];
        const Vertex middle = between(first, opposite);
        Shape shape{ true, { Ring{} }, rounded(middle.x + 2, middle.y + 1) };
        Ring& ring = shape.rings.front();
        append(ring, first, m_alongBends[row][column]);
        append(ring, m_corners[row][column + 1], m_acrossBends[row][column + 1]);
        append(ring, opposite, m_alongBends[row + 1][column]);
        append(ring, m_corners[row + 1][column], m_acrossBends[row][column]);
        ring.push_back(first);
        if (m_random.chance(0.04))
            shape.rings.push_back(hole(middle));
        return shape;
    }

private:
    using Bend = std::optional<Vertex>;

    Bend bend(const Vertex& a, const Vertex& b)
    {
        if (!m_random.chance(0.93))
            return std::nullopt;
        const Vertex middle = between(a, b);
        return rounded(
            middle.x + m_random.between(-0.5, 0.5), middle.y + m_random.between(-0.5, 0.5));
    }

    static void append(Ring& ring, const Vertex& corner, const Bend& bend)
    {
        ring.push_back(corner);
        if (bend)
            ring.push_back(*bend);
    }

    Ring hole(const Vertex& middle)
    {
        const double size = m_random.between(2, 6);
        const auto corner = [&](double x, double y) {
            return rounded(middle.x + x * size, middle.y + y * size);
        };
        return { corner(-1, -1), corner(1, -1), corner(1, 1), corner(-1, 1), corner(-1, -1) };
    }

    Random& m_random;
    std::array<std::array<Vertex, columns + 1>, rows + 1> m_corners;
    std::array<std::array<Bend, columns>, rows + 1> m_alongBends;
    std::array<std::array<Bend, columns + 1>, rows> m_acrossBends;
};

std::vector<Shape> makeCity(int vertexCount)
{
    constexpr double verticesPerBlock = 107;
    const int blocksAcross = static_cast<int>(std::ceil(std::sqrt(vertexCount / verticesPerBlock)));
    Random random;
    std::vector<Shape> shapes;
    int count = 0;
    for (int i = 0; count < vertexCount; ++i) {
        Block block({ origin.x + i % blocksAcross * Block::pitchX,
                        origin.y + i / blocksAcross * Block::pitchY },
            random);
        for (size_t parcel = 0; parcel < Block::rows * Block::columns && count < vertexCount;
             ++parcel) {
            shapes.push_back(block.parcel(parcel / Block::columns, parcel % Block::columns));
            count += vertexCountOf(shapes.back());
        }
    }
    return shapes;
}

std::vector<Shape> makeDegrees(int vertexCount)
{
    constexpr double metresPerDegree = 111000;
    const double scale = std::pow(10, degreeDecimals);
    const auto toDegrees = [scale](Vertex& place) {
        place = { std::round(place.x / metresPerDegree * scale) / scale,
            std::round(place.y / metresPerDegree * scale) / scale };
    };
    std::vector<Shape> shapes = makeCity(vertexCount);
    for (Shape& shape : shapes) {
        for (Ring& ring : shape.rings)
            std::for_each(ring.begin(), ring.end(), toDegrees);
        toDegrees(shape.label);
    }
    return shapes;
}

std::vector<Shape> makeGrid(int vertexCount)
{
    constexpr double size = 10;
    constexpr int verticesPerCell = 5;
    const int across = static_cast<int>(std::ceil(std::sqrt(vertexCount / verticesPerCell)));
    std::vector<Shape> shapes;
    for (int i = 0; i < vertexCount / verticesPerCell; ++i) {
        const double x = origin.x + i % across * size;
        const double y = origin.y + i / across * size;
        Ring ring{ { x, y }, { x + size, y }, { x + size, y + size }, { x, y + size }, { x, y } };
        shapes.push_back(Shape{ true, { std::move(ring) }, { x + size / 2, y + size / 2 } });
    }
    return shapes;
}

std::vector<Shape> makeColumn(int vertexCount)
{
    std::vector<Shape> shapes;
    for (int i = 0; i < vertexCount / lineLength; ++i) {
        Ring ring;
        // Each line begins where the last one ended.
        for (int j = 0; j < lineLength; ++j)
            ring.push_back(rounded(origin.x, origin.y + (i * (lineLength - 1) + j) * 0.5));
        shapes.push_back(lineShape(std::move(ring)));
    }
    return shapes;
}

Ring randomRing(int vertexCount, Random& random)
{
    Ring ring;
    for (int i = 0; i < vertexCount; ++i)
        ring.push_back(randomVertex(random));
    return ring;
}

std::vector<Shape> makeRandom(int vertexCount)
{
    Random random;
    std::vector<Shape> shapes;
    for (int i = 0; i < vertexCount / lineLength; ++i)
        shapes.push_back(lineShape(randomRing(lineLength, random)));
    return shapes;
}

std::vector<Shape> makeSingle(int vertexCount)
{
    Random random;
    return { lineShape(randomRing(lineLength, random)),
        lineShape(randomRing(vertexCount, random)) };
}

struct Layout {
    QLatin1String name;
    std::vector<Shape> (*make)(int vertexCount);
    int decimals = usualDecimals;
};

constexpr Layout layouts[] = {
    { QLatin1String("city"), makeCity },
    { QLatin1String("degrees"), makeDegrees, degreeDecimals },
    { QLatin1String("grid"), makeGrid },
    { QLatin1String("column"), makeColumn },
    { QLatin1String("random"), makeRandom },
    { QLatin1String("single"), makeSingle },
};

} // namespace

QStringList layoutNames()
{
    QStringList names;
    for (const Layout& layout : layouts)
        names.append(layout.name);
    return names;
}

std::vector<Shape> makeLayout(const QString& name, int vertexCount)
{
    for (const Layout& layout : layouts) {
        if (name == layout.name)
            return layout.make(vertexCount);
    }
    return {};
}

int layoutDecimals(const QString& name)
{
    for (const Layout& layout : layouts) {
        if (name == layout.name)
            return layout.decimals;
    }
    return usualDecimals;
}

std::vector<Vertex> distinctVertices(const std::vector<Shape>& shapes)
{
    std::set<std::pair<double, double>> met;
    std::vector<Vertex> vertices;
    for (const Shape& shape : shapes) {
        for (const Ring& ring : shape.rings) {
            for (const Vertex& vertex : ring) {
                if (met.emplace(vertex.x, vertex.y).second)
                    vertices.push_back(vertex);
            }
        }
    }
    return vertices;
}

QString objectDef(int index)
{
    static const std::array<QString, 4> forms{ QStringLiteral(":ЗУ%1"),
        QStringLiteral("50:21:0010203:%1"), QStringLiteral("Участок № %1"),
        QStringLiteral(":%1:чзу1") };
    return forms[static_cast<size_t>(index) % forms.size()].arg(index + 1);
}

QString pointDef(int index)
{
    return index % 3 == 0 ? QString::number(index + 1) : QStringLiteral("н%1").arg(index + 1);
}
