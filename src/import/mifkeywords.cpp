#include "import/mifkeywords.h"

#include <algorithm>
#include <iterator>

namespace {

/// Whether the size of a token and its first letter are those of a keyword, as far as they tell.
bool mayBe(TextView token, QLatin1String keyword)
{
    if (!token.isAscii())
        return true;
    constexpr char caseBit = 'a' ^ 'A';
    return token.size() == keyword.size()
        && (*token.ascii() | caseBit) == (*keyword.data() | caseBit);
}

} // namespace

bool isMifKeyword(TextView token, QLatin1String keyword)
{
    return token.isAscii() ? token.equalsIgnoringCase(keyword)
                           : token.toString().toUpper() == keyword;
}

const MifObjectKind* mifObjectKind(TextView token)
{
    static const MifObjectKind kinds[] = {
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
    const auto found =
        std::find_if(std::begin(kinds), std::end(kinds), [token](const MifObjectKind& kind) {
            return mayBe(token, kind.name) && isMifKeyword(token, kind.name);
        });
    return found == std::end(kinds) ? nullptr : found;
}
