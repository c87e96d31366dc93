#include "geometry/designation.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <charconv>
#include <numeric>
#include <utility>
#include <vector>

namespace {

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

/// What an object is sorted by, and where it stood.
struct SortKey {
    QString prefix;
    int number = -1;
    int index = 0;
};

bool operator<(const SortKey& a, const SortKey& b)
{
    const int order = QString::compare(a.prefix, b.prefix, Qt::CaseInsensitive);
    return order != 0 ? order < 0 : a.number < b.number;
}

std::vector<SortKey> sortKeys(const QVector<DefPolygon>& objects)
{
    // One long text may be the designation of thousands: what it is split into is shared, too.
    constexpr int longText = 64;
    QHash<const QChar*, size_t> keyOfText;
    std::vector<SortKey> keys(static_cast<size_t>(objects.size()));
    for (size_t i = 0; i < keys.size(); ++i) {
        const QString& def = objects.at(static_cast<int>(i)).def;
        const auto known =
            def.size() < longText ? keyOfText.constEnd() : keyOfText.constFind(def.constData());
        if (known != keyOfText.constEnd()) {
            keys[i] = keys[*known];
        } else {
            splitDef(def, keys[i].prefix, keys[i].number);
            if (def.size() >= longText)
                keyOfText.insert(def.constData(), i);
        }
        keys[i].index = static_cast<int>(i);
    }
    return keys;
}

} // namespace

void splitDef(const QString& def, QString& prefix, int& number)
{
    const QChar lineFeed = QLatin1Char('\n');
    const int end = def.endsWith(lineFeed) ? def.size() - 1 : def.size();
    int start = end;
    while (start > 0 && isDigit(def.at(start - 1)))
        --start;

    const bool hasNumber =
        start < end && !def.leftRef(start).contains(lineFeed) && def.isValidUtf16();
    if (!hasNumber) {
        prefix = def;
        number = -1;
        return;
    }
    number = def.midRef(start, end - start).toInt();
    prefix = def.left(start);
}

QString numberedDef(const QString& prefix, int number)
{
    std::array<char, 12> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    const int count = static_cast<int>(end - digits.data());

    QString result(prefix.size() + count, Qt::Uninitialized);
    QChar* out = std::copy(prefix.cbegin(), prefix.cend(), result.data());
    std::transform(digits.data(), end, out, [](char c) { return QLatin1Char(c); });
    return result;
}

void sortObjects(QVector<DefPolygon>& objects)
{
    std::vector<SortKey> keys = sortKeys(objects);
    std::sort(keys.begin(), keys.end());

    QVector<DefPolygon> sorted;
    sorted.reserve(objects.size());
    for (const SortKey& key : keys)
        sorted.append(std::move(objects[key.index]));
    objects = std::move(sorted);
}

uint qHash(const DefKey& key, uint seed)
{
    // Mixed at each step, so that no set of designations collides whatever the seed.
    uint hash = seed;
    const QString& def = key.def;
    for (int i = 0; i < def.size(); ++i) {
        uint character = def.at(i).unicode();
        const bool isPair =
            def.at(i).isHighSurrogate() && i + 1 < def.size() && def.at(i + 1).isLowSurrogate();
        if (isPair) {
            character = QChar::surrogateToUcs4(def.at(i), def.at(i + 1));
            ++i;
        }
        hash = (hash ^ QChar::toCaseFolded(character)) * 0x9E3779B1U;
        hash ^= hash >> 15;
    }
    return hash;
}
