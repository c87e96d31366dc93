#include "import/mifkeywords.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace {

constexpr char caseBit = 'a' ^ 'A';

const MifObjectKind kinds[] = {
    { QLatin1String("POINT"), MifKeyword::Point },
    { QLatin1String("REGION"), MifKeyword::Region },
    { QLatin1String("PLINE"), MifKeyword::Pline },
    { QLatin1String("LINE"), MifKeyword::Line },
    { QLatin1String("NONE"), MifKeyword::Skipped },
    { QLatin1String("ARC"), MifKeyword::Skipped },
    { QLatin1String("TEXT"), MifKeyword::Skipped },
    { QLatin1String("RECT"), MifKeyword::Skipped },
    { QLatin1String("ROUNDRECT"), MifKeyword::Skipped },
    { QLatin1String("ELLIPSE"), MifKeyword::Skipped },
    { QLatin1String("MULTIPOINT"), MifKeyword::Skipped },
    { QLatin1String("COLLECTION"), MifKeyword::Collection },
};

/// For each first letter of a keyword the second ones, as bits; most lines start with others.
/// Characters that share their last five bits are held for each other.
class FirstLetters {
public:
    FirstLetters()
    {
        for (const MifObjectKind& kind : kinds)
            m_second[place(kind.name.data()[0])] |= 1U << place(kind.name.data()[1]);
    }
    bool mayStartKeyword(const char* letters) const
    {
        return (m_second[place(letters[0])] >> place(letters[1]) & 1U) != 0;
    }

private:
    static size_t place(char c) { return static_cast<uchar>(c) % 32; }

    std::array<quint32, 32> m_second{};
};

const FirstLetters firstLetters;

/// Whether a text starts with a keyword, in whatever case. Keywords are letters alone.
bool startsWith(const char* begin, const char* end, QLatin1String keyword)
{
    const auto isSame = [](char capital, char c) { return (c & ~caseBit) == capital; };
    return end - begin >= keyword.size()
        && std::equal(keyword.begin(), keyword.end(), begin, isSame);
}

} // namespace

TextView takeToken(TextView& text)
{
    return text.visit([&text](auto begin, auto end) {
        const auto isSpace = [](auto unit) { return TextView::isSpace(unit); };
        const auto token = std::find_if_not(begin, end, isSpace);
        const auto tokenEnd = std::find_if(token, end, isSpace);
        text = TextView::between(tokenEnd, end);
        return TextView::between(token, tokenEnd);
    });
}

bool isMifKeyword(TextView token, QLatin1String keyword)
{
    if (!token.isAscii())
        return token.toString().toUpper() == keyword;
    return token.size() == keyword.size()
        && startsWith(token.ascii(), token.ascii() + token.size(), keyword);
}

static const MifObjectKind* takeDecodedKind(TextView& line)
{
    const TextView token = takeToken(line);
    const auto found = std::find_if(std::begin(kinds), std::end(kinds),
        [token](const MifObjectKind& kind) { return isMifKeyword(token, kind.name); });
    return found == std::end(kinds) ? nullptr : found;
}

const MifObjectKind* takeObjectKind(TextView& line)
{
    if (!line.isAscii())
        return takeDecodedKind(line);
    const auto isSpace = [](char c) { return TextView::isSpace(c); };
    const char* const end = line.ascii() + line.size();
    const char* const word = std::find_if_not(line.ascii(), end, isSpace);
    if (end - word < 2 || !firstLetters.mayStartKeyword(word))
        return nullptr;
    for (const MifObjectKind& kind : kinds) {
        if (!startsWith(word, end, kind.name))
            continue;
        const char* const wordEnd = word + kind.name.size();
        if (wordEnd != end && !isSpace(*wordEnd))
            continue;
        line = TextView::between(wordEnd, end);
        return &kind;
    }
    return nullptr;
}
