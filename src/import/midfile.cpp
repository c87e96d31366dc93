#include "import/midfile.h"

#include <QVarLengthArray>

#include <algorithm>
#include <string_view>

namespace {

constexpr QChar space(QChar::Space);
constexpr QChar quote(u'"');

/// A text without spaces around it; null where nothing else is in it.
template <typename Unit, typename Decode>
QString withoutSpaces(const Unit* begin, const Unit* end, Decode decode)
{
    const auto isSpace = [decode](Unit unit) { return decode(unit) == space; };
    while (begin != end && isSpace(*begin))
        ++begin;
    while (begin != end && isSpace(end[-1]))
        --end;
    if (begin == end)
        return {};
    QString text(static_cast<int>(end - begin), Qt::Uninitialized);
    std::transform(begin, end, text.data(), decode);
    return text;
}

/// The first column of a row whose units `decode` turns into characters.
template <typename Unit, typename Decode>
QString firstColumn(const Unit* begin, const Unit* end, QChar delimiter, Decode decode)
{
    const auto isQuote = [decode](Unit unit) { return decode(unit) == quote; };
    if (begin != end && isQuote(*begin))
        return withoutSpaces(begin + 1, std::find_if(begin + 1, end, isQuote), decode);

    // A quote further on is dropped, and what follows up to the next one is part of the column.
    QVarLengthArray<QChar, 128> column;
    bool inQuotes = false;
    bool atStart = true;
    for (const Unit* it = begin; it != end; ++it) {
        const QChar c = decode(*it);
        if (c == space && atStart)
            continue;
        if (c == quote) {
            if (inQuotes)
                break;
            inQuotes = true;
            atStart = true;
        } else if (c == delimiter && !inQuotes) {
            break;
        } else {
            column.append(c);
            atStart = false;
        }
    }
    return withoutSpaces(column.cbegin(), column.cend(), [](QChar c) { return c; });
}

} // namespace

QString midFileName(const QString& mifFileName)
{
    return mifFileName.chopped(std::min(mifFileName.size(), 1)) + QLatin1Char('d');
}

bool MidFile::readMidRow(QString* def)
{
    // Of a row only the first column is wanted: the rest is not decoded where it need not be.
    const std::string_view bytes = m_in.readBytes();
    if (!bytes.data()) {
        const TextView row = m_in.readLine().trimmed();
        if (def && !row.isEmpty())
            *def = extractDef(row);
        return !row.isEmpty();
    }
    const auto decode = [this](char byte) { return m_in.byteTable().at(byte); };
    const auto isSpace = [decode](char byte) { return decode(byte).isSpace(); };
    const auto begin = std::find_if_not(bytes.begin(), bytes.end(), isSpace);
    if (begin == bytes.end())
        return false;
    if (def) {
        const auto end = std::find_if_not(bytes.rbegin(), bytes.rend(), isSpace).base();
        *def = firstColumn(begin, end, delimiter, decode);
    }
    return true;
}

QString MidFile::extractDef(TextView row) const
{
    return row.visit([this](auto begin, auto end) {
        return firstColumn(
            begin, end, delimiter, [](auto unit) { return QChar(static_cast<char16_t>(unit)); });
    });
}
