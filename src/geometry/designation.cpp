#include "geometry/designation.h"

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
    std::vector<SortKey> keys(static_cast<size_t>(objects.size()));
    int index = 0;
    for (SortKey& key : keys) {
        splitDef(objects.at(index).def, key.prefix, key.number);
        key.index = index++;
    }
    std::sort(keys.begin(), keys.end());

    QVector<DefPolygon> sorted;
    sorted.reserve(objects.size());
    for (const SortKey& key : keys)
        sorted.append(std::move(objects[key.index]));
    objects = std::move(sorted);
}

uint hashOfDef(const QString& def, uint seed)
{
    // Most characters are digits.
    const auto caseFolded = [](uint character) {
        const bool isPlain = character < 'A' || (character > 'Z' && character < 0x80);
        return isPlain ? character : QChar::toCaseFolded(character);
    };
    // Mixed at each step, so that no set of designations collides whatever the seed.
    uint hash = seed;
    for (int i = 0; i < def.size(); ++i) {
        uint character = def.at(i).unicode();
        const bool isPair =
            def.at(i).isHighSurrogate() && i + 1 < def.size() && def.at(i + 1).isLowSurrogate();
        if (isPair) {
            character = QChar::surrogateToUcs4(def.at(i), def.at(i + 1));
            ++i;
        }
        hash = (hash ^ caseFolded(character)) * 0x9E3779B1U;
        hash ^= hash >> 15;
    }
    return hash;
}
