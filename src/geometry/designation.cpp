#include "geometry/designation.h"

#include "geometry/defnames.h"
#include "geometry/digits.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <charconv>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

/// A character without its case. Most are ASCII, where no table has to be asked.
uint caseFolded(uint character)
{
    if (character >= 0x80)
        return QChar::toCaseFolded(character);
    return character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character;
}

/// What a designation is split into.
struct SplitDef {
    QStringView prefix; ///< of the designation
    int number = -1;
};

SplitDef splitDef(const QString& def)
{
    const QChar lineFeed = QLatin1Char('\n');
    const int end = def.endsWith(lineFeed) ? def.size() - 1 : def.size();
    int start = end;
    while (start > 0 && isDigit(def.at(start - 1)))
        --start;

    const bool hasNumber =
        start < end && !def.leftRef(start).contains(lineFeed) && def.isValidUtf16();
    if (!hasNumber)
        return { def, -1 };
    return { QStringView(def).left(start), def.midRef(start, end - start).toInt() };
}

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
        split[i] = known == first.constEnd() ? splitDef(def) : split[*known];
        if (known == first.constEnd() && def.size() >= longText)
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
    size_t place; ///< of the prefix among the folded ones
    size_t size; ///< of the prefix
    std::vector<PrefixBearer>::const_iterator begin;
    std::vector<PrefixBearer>::const_iterator end;
};

/// Puts the characters of a text behind others, each as QString::compare() takes it where it
/// ignores case: a pair of surrogates tells with its second half which character it is.
void appendFolded(std::u32string& folded, QStringView text)
{
    QChar before;
    for (const QChar c : text) {
        const bool isPair = c.isLowSurrogate() && before.isHighSurrogate();
        const uint character = isPair ? QChar::surrogateToUcs4(before, c) : c.unicode();
        folded.push_back(caseFolded(character));
        before = c;
    }
}

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
    std::u32string folded;
    forEachName(bearers, [&](auto begin, auto end) {
        const QStringView prefix = begin->name.text();
        groups.push_back({ folded.size(), static_cast<size_t>(prefix.size()), begin, end });
        appendFolded(folded, prefix);
    });
    const auto prefixOf = [&folded](const PrefixGroup& group) {
        return std::u32string_view(folded).substr(group.place, group.size);
    };
    std::sort(groups.begin(), groups.end(),
        [&](const PrefixGroup& a, const PrefixGroup& b) { return prefixOf(a) < prefixOf(b); });

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
    const SplitDef split = splitDef(def);
    const bool isWhole = split.prefix.size() == def.size();
    prefix = isWhole ? def : def.left(static_cast<int>(split.prefix.size()));
    number = split.number;
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
    const QStringView def = key.def;
    for (qsizetype i = 0; i < def.size(); ++i) {
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
