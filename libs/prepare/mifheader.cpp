#include "prepare/mifheader.h"

#include "prepare/plainnumber.h"

#include <algorithm>

namespace prep {

namespace {

std::string_view wordOf(std::string_view line)
{
    return line.substr(0, line.find_first_of(" \t"));
}

std::string_view behindWord(std::string_view line)
{
    return trimmed(line.substr(wordOf(line).size()));
}

bool isWord(std::string_view word, const char* lower)
{
    return QByteArray::fromRawData(word.data(), static_cast<int>(word.size())).toLower() == lower;
}

/// Whether the readers take a text for one word, in any encoding.
bool isPlainWord(std::string_view text)
{
    return !text.empty()
        && std::all_of(text.begin(), text.end(), [](char c) { return c > ' ' && c < '\x7F'; });
}

/// The numbers of a line, parted by commas or blanks; none where one of them is none.
std::optional<std::array<double, 4>> fourNumbers(std::string_view text)
{
    std::array<double, 4> numbers{};
    for (double& number : numbers) {
        const size_t start = text.find_first_not_of(", \t");
        if (start == std::string_view::npos)
            return {};
        text.remove_prefix(start);
        const std::string_view word = text.substr(0, text.find_first_of(", \t"));
        const std::optional<double> value = toNumber(word);
        if (!value)
            return {};
        number = *value;
        text.remove_prefix(word.size());
    }
    return numbers;
}

} // namespace

MifHeader::MifHeader(const std::vector<std::string_view>& lines)
{
    const size_t first = std::min<size_t>(lines.size(), 3);
    m_firstLines.assign(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(first));
    for (const std::string_view line : lines) {
        if (!line.empty())
            take(line);
    }
}

void MifHeader::take(std::string_view line)
{
    const std::string_view word = wordOf(line);
    const std::string_view value = behindWord(line);
    if (m_columnsLeft > 0) {
        --m_columnsLeft;
        m_columns.emplace_back(line);
    } else if (isWord(word, "version")) {
        m_version = wordOf(value);
    } else if (isWord(word, "charset")) {
        m_charset = value;
    } else if (isWord(word, "delimiter")) {
        const size_t quote = value.find('"');
        const size_t start = quote == std::string_view::npos ? 0 : quote + 1;
        // Quotes around nothing are what is left of a tab at the end of the line.
        m_delimiter = start < value.size() && value[start] != '"' ? value[start] : '\t';
    } else if (isWord(word, "columns")) {
        m_columnsLeft = std::max(toWhole(value).value_or(0), 0);
    } else if (isWord(word, "transform")) {
        m_transform = value;
    } else {
        m_otherLines.push_back(line);
    }
}

std::optional<size_t> MifHeader::column(const QByteArray& name) const
{
    for (size_t i = 0; i < m_columns.size(); ++i) {
        const std::string_view column = wordOf(m_columns[i]);
        if (QByteArray::fromRawData(column.data(), static_cast<int>(column.size()))
                .compare(name, Qt::CaseInsensitive)
            == 0)
            return i;
    }
    return {};
}

void MifHeader::putFirst(size_t column)
{
    const auto found = m_columns.begin() + static_cast<std::ptrdiff_t>(column);
    std::rotate(m_columns.begin(), found, found + 1);
}

void MifHeader::addColumnIfNone()
{
    if (m_columns.empty())
        m_columns.emplace_back("NAME Char(64)");
}

std::optional<std::array<double, 4>> MifHeader::transform() const
{
    auto numbers = fourNumbers(m_transform);
    if (!numbers)
        return {};
    for (size_t i = 0; i < 2; ++i) {
        if ((*numbers)[i] == 0)
            (*numbers)[i] = 1;
    }
    if (*numbers == std::array<double, 4>{ 1, 1, 0, 0 })
        return {};
    return numbers;
}

bool MifHeader::isReadable() const
{
    constexpr const char* words[] = { "version", "charset", "delimiter" };
    if (m_firstLines.size() < 3)
        return false;
    for (size_t i = 0; i < 3; ++i) {
        const std::string_view value = behindWord(m_firstLines[i]);
        if (!isWord(wordOf(m_firstLines[i]), words[i]) || !isPlainWord(value))
            return false;
    }
    return true;
}

std::string MifHeader::text(char delimiter, const QByteArray& charset, bool withTransform) const
{
    // The readers take no value with blanks in it.
    const bool keepsCharset = charset.isEmpty() && isPlainWord(m_charset);
    std::string text = "Version ";
    text.append(isPlainWord(m_version) ? m_version : "300").append("\nCharset ");
    text.append(keepsCharset ? m_charset : "\"Neutral\"");
    if (!charset.isEmpty()) {
        text.erase(text.rfind(' ') + 1);
        text.append("\"" + charset.toStdString() + "\"");
    }
    text.append("\nDelimiter \"").append(1, delimiter).append("\"\n");
    for (const std::string_view line : m_otherLines)
        text.append(line).append("\n");
    if (withTransform && !m_transform.empty())
        text.append("Transform ").append(m_transform).append("\n");
    text.append("Columns ").append(std::to_string(m_columns.size())).append("\n");
    for (const std::string& column : m_columns)
        text.append("  ").append(column).append("\n");
    return text.append("Data\n\n");
}

} // namespace prep
