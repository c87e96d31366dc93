#include "import/mifkeywords.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr char caseBit = 'a' ^ 'A';

const MifObjectKind kinds[] = {
    { QLatin1String("REGION"), MifKeyword::Region },
    { QLatin1String("PLINE"), MifKeyword::Pline },
    { QLatin1String("LINE"), MifKeyword::Line },
    { QLatin1String("POINT"), MifKeyword::Point },
    { QLatin1String("NONE"), MifKeyword::Skipped },
    { QLatin1String("ARC"), MifKeyword::Skipped },
    { QLatin1String("TEXT"), MifKeyword::Skipped },
    { QLatin1String("RECT"), MifKeyword::Skipped },
    { QLatin1String("ROUNDRECT"), MifKeyword::Skipped },
    { QLatin1String("ELLIPSE"), MifKeyword::Skipped },
    { QLatin1String("MULTIPOINT"), MifKeyword::Skipped },
    { QLatin1String("COLLECTION"), MifKeyword::Collection },
};

/// Whether the size of a token and its first letter are those of a keyword, as far as they tell.
bool mayBe(TextView token, QLatin1String keyword)
{
    if (!token.isAscii())
        return true;
    return token.size() == keyword.size()
        && (*token.ascii() | caseBit) == (*keyword.data() | caseBit);
}

} // namespace

bool isMifKeyword(TextView token, QLatin1String keyword)
{
    if (!token.isAscii())
        return token.toString().toUpper() == keyword;
    const char* const begin = token.ascii();
    return std::equal(begin, begin + token.size(), keyword.begin(), keyword.end(),
        [](char a, char capital) { return (a & ~caseBit) == capital; });
}

bool mayStartObject(TextView line)
{
    if (!line.isAscii())
        return true;
    const char* const end = line.ascii() + line.size();
    const char* const word =
        std::find_if_not(line.ascii(), end, [](char c) { return TextView::isSpace(c); });
    if (end - word < 2 || *word < 'A')
        return false;
    const char first = static_cast<char>(word[0] & ~caseBit);
    const char second = static_cast<char>(word[1] & ~caseBit);
    return std::any_of(std::begin(kinds), std::end(kinds), [=](const MifObjectKind& kind) {
        return kind.name.data()[0] == first && kind.name.data()[1] == second;
    });
}

const MifObjectKind* mifObjectKind(TextView token)
{
    const auto found =
        std::find_if(std::begin(kinds), std::end(kinds), [token](const MifObjectKind& kind) {
            return mayBe(token, kind.name) && isMifKeyword(token, kind.name);
        });
    return found == std::end(kinds) ? nullptr : found;
}
