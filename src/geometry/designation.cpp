#include "geometry/designation.h"

#include "geometry/defnames.h"
#include "geometry/digits.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <charconv>
#include <numeric>
#include <utility>
#include <vector>

namespace {

/// What a designation is split into.
struct SplitDef {
    QString prefix;
    int number = -1;
};

/// What an object is sorted by, and where it stood.
struct SortKey {
    int prefix = 0; ///< the rank of the prefix in their order
    int number = -1;
    int index = 0;
};

bool operator<(const SortKey& a, const SortKey& b)
{
    return a.prefix != b.prefix ? a.prefix < b.prefix : a.number < b.number;
}

std::vector<SplitDef> splitDefs(const QVector<DefPolygon>& objects)
{
    // One long text may be the designation of thousands: what it is split into is shared, too.
    constexpr int longText = 64;
    QHash<const QChar*, size_t> first;
    std::vector<SplitDef> split(static_cast<size_t>(objects.size()));
    for (size_t i = 0; i < split.size(); ++i) {
        const QString& def = objects.at(static_cast<int>(i)).def;
        const auto known =
            def.size() < longText ? first.constEnd() : first.constFind(def.constData());
        if (known != first.constEnd()) {
            split[i] = split[*known];
            continue;
        }
        splitDef(def, split[i].prefix, split[i].number);
        if (def.size() >= longText)
            first.insert(def.constData(), i);
    }
    return split;
}

/// An object by the prefix of its designation.
struct PrefixBearer {
    DefName name;
    size_t object; ///< its index
};

/// The objects that share a prefix.
struct PrefixGroup {
    const QString* prefix;
    std::vector<PrefixBearer>::const_iterator begin;
    std::vector<PrefixBearer>::const_iterator end;
};

/// The keys of all objects. Thousands of them share a prefix as a rule: each prefix is compared
/// with the others once, not whenever two objects are.
std::vector<SortKey> sortKeys(const QVector<DefPolygon>& objects)
{
    const std::vector<SplitDef> split = splitDefs(objects);
    DefNames names;
    std::vector<PrefixBearer> bearers;
    bearers.reserve(split.size());
    for (const SplitDef& def : split)
        bearers.push_back({ names.nameOf(def.prefix), bearers.size() });
    std::vector<PrefixGroup> groups;
    forEachName(bearers, [&](auto begin, auto end) {
        groups.push_back({ begin->name.text, begin, end });
    });
    std::sort(groups.begin(), groups.end(), [](const PrefixGroup& a, const PrefixGroup& b) {
        return QString::compare(*a.prefix, *b.prefix, Qt::CaseInsensitive) < 0;
    });

    std::vector<SortKey> keys(split.size());
    int rank = 0;
    for (const PrefixGroup& group : groups) {
        for (auto it = group.begin; it != group.end; ++it)
            keys[it->object] = { rank, split[it->object].number, static_cast<int>(it->object) };
        ++rank;
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
