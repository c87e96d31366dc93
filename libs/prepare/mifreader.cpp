#include "prepare/mifreader.h"

#include "prepare/plainnumber.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace prep {

namespace {

constexpr std::string_view space = " \t\r\n\v\f";

bool isSameWord(std::string_view word, std::string_view upper)
{
    return word.size() == upper.size()
        && std::equal(word.begin(), word.end(), upper.begin(),
            [](char a, char b) { return a == b || (a >= 'a' && a <= 'z' && a - 'a' + 'A' == b); });
}

constexpr struct {
    std::string_view name;
    MifKind kind;
} kinds[] = {
    { "REGION", MifKind::Region },
    { "PLINE", MifKind::Pline },
    { "LINE", MifKind::Line },
    { "POINT", MifKind::Point },
    { "NONE", MifKind::None },
    { "ARC", MifKind::Arc },
    { "TEXT", MifKind::Text },
    { "RECT", MifKind::Rect },
    { "ROUNDRECT", MifKind::RoundRect },
    { "ELLIPSE", MifKind::Ellipse },
    { "MULTIPOINT", MifKind::MultiPoint },
    { "COLLECTION", MifKind::Collection },
};

bool isAscii(char c)
{
    return static_cast<unsigned char>(c) < 0x80;
}

/// Whether the readers may take a header line for the one in front of the data: there are blanks
/// beside those of ASCII, and carriage returns are none.
bool mayBeData(std::string_view line)
{
    std::string plain;
    std::copy_if(line.begin(), line.end(), std::back_inserter(plain),
        [](char c) { return isAscii(c) && c != '\r'; });
    return isSameWord(trimmed(plain), "DATA");
}

std::string_view firstWord(std::string_view line)
{
    return line.substr(0, line.find_first_of(space));
}

/// The next line, trimmed.
std::string_view takeLine(std::string_view& rest)
{
    const size_t length = std::min(rest.find('\n'), rest.size());
    const std::string_view line = trimmed(rest.substr(0, length));
    rest.remove_prefix(std::min(length + 1, rest.size()));
    return line;
}

} // namespace

std::optional<MifKind> mifKindOf(std::string_view word)
{
    for (const auto& row : kinds) {
        if (isSameWord(word, row.name))
            return row.kind;
    }
    return {};
}

std::string_view takeClause(std::string_view& clauses)
{
    while (!clauses.empty()) {
        const std::string_view line = takeLine(clauses);
        const std::string_view first = firstWord(line);
        // Other words may be those of an object to the readers, once they are decoded and without
        // the carriage returns in them.
        const bool isClause = !line.empty() && line.find('\r') == std::string_view::npos
            && ((line[0] >= 'A' && line[0] <= 'Z') || (line[0] >= 'a' && line[0] <= 'z'))
            && std::all_of(first.begin(), first.end(), isAscii);
        if (isClause)
            return line;
    }
    return {};
}

// Lines and words

std::string_view MifReader::line()
{
    std::string_view rest = m_bytes.substr(m_position);
    const std::string_view line = takeLine(rest);
    m_position = m_bytes.size() - rest.size();
    return line;
}

std::string_view MifReader::word()
{
    const size_t start = std::min(m_bytes.find_first_not_of(space, m_position), m_bytes.size());
    const std::string_view gap = m_bytes.substr(m_position, start - m_position);
    const auto lineEnds = std::count(gap.begin(), gap.end(), '\n');
    const bool atLineStart = m_position > 0 && m_bytes[m_position - 1] == '\n';
    m_wordStartsLine = lineEnds > 0 || atLineStart;
    m_blankBeforeWord = lineEnds > (atLineStart ? 0 : 1);
    const size_t end = std::min(m_bytes.find_first_of(space, start), m_bytes.size());
    m_position = end;
    return m_bytes.substr(start, end - start);
}

void MifReader::noteOddPlace(bool startsLine)
{
    m_mendedLines += m_wordStartsLine != startsLine || m_blankBeforeWord ? 1 : 0;
}

std::optional<double> MifReader::number(std::string_view* digits)
{
    const size_t before = m_position;
    const std::string_view text = word();
    const std::optional<double> number = toNumber(text);
    if (!number)
        m_position = before;
    else if (digits)
        *digits = text;
    return number;
}

int MifReader::count()
{
    return toWhole(word()).value_or(-1);
}

// The file

bool MifReader::readHeader(std::vector<std::string_view>& lines)
{
    constexpr size_t most = 20000;
    while (m_position < m_bytes.size() && lines.size() < most) {
        const std::string_view text = line();
        if (isSameWord(text, "DATA"))
            return true;
        if (!mayBeData(text))
            lines.push_back(text);
    }
    return false;
}

bool MifReader::next(MifObject& object)
{
    while (m_position < m_bytes.size()) {
        const size_t start = m_position;
        const std::string_view text = line();
        const std::string_view first = firstWord(text);
        const std::optional<MifKind> kind = mifKindOf(first);
        if (!kind)
            continue;
        object = MifObject();
        object.kind = *kind;
        object.name = first;
        const size_t nextLine = m_position;
        const qint64 mended = m_mendedLines;
        m_position = static_cast<size_t>(first.data() + first.size() - m_bytes.data());
        object.complete =
            object.kind == MifKind::Text ? readText(object, start) : readObject(object);
        // What is left of a bad object is passed over line by line.
        if (object.complete) {
            line();
        } else {
            m_position = nextLine;
            m_mendedLines = mended;
        }
        readClauses(object);
        return true;
    }
    return false;
}

// What stands behind an object and is none.
void MifReader::readClauses(MifObject& object)
{
    const size_t start = m_position;
    size_t end = start;
    while (m_position < m_bytes.size() && !mifKindOf(firstWord(line())))
        end = m_position;
    m_position = end;
    if (object.complete)
        object.clauses = m_bytes.substr(start, end - start);
}

// Objects

bool MifReader::readPart(int count, MifObject& object)
{
    const size_t rest = m_bytes.size() - m_position;
    // Each vertex takes four bytes at least.
    if (count < 0 || static_cast<size_t>(count) > rest / 4 + 1)
        return false;
    object.parts.push_back(static_cast<uint32_t>(count));
    for (int i = 0; i < count; ++i) {
        FlatVertex vertex;
        const std::optional<double> x = number(&vertex.xDigits);
        noteOddPlace(true);
        const std::optional<double> y = number(&vertex.yDigits);
        noteOddPlace(false);
        if (!x || !y)
            return false;
        vertex.x = *x;
        vertex.y = *y;
        object.vertices.append(vertex);
    }
    return true;
}

bool MifReader::readObject(MifObject& object)
{
    switch (object.kind) {
    case MifKind::None:
    case MifKind::Text:
        return true;
    case MifKind::Collection:
        object.collected = count();
        return object.collected >= 0;
    case MifKind::Pline:
        return readPline(object);
    case MifKind::Region:
        return readRegion(object);
    case MifKind::MultiPoint:
        return readPart(count(), object);
    default:
        break;
    }
    const qint64 mended = m_mendedLines;
    if (!readPart(object.kind == MifKind::Point ? 1 : 2, object))
        return false;
    m_mendedLines = mended; // all on one line here
    if (object.kind == MifKind::Arc) {
        const std::optional<double> start = number();
        const std::optional<double> end = number();
        object.start = start.value_or(0);
        object.end = end.value_or(360);
    } else if (object.kind == MifKind::RoundRect) {
        object.rounding = number().value_or(0);
    }
    return true;
}

bool MifReader::readPline(MifObject& object)
{
    const std::string_view first = word();
    noteOddPlace(false);
    const bool isMultiple = isSameWord(first, "MULTIPLE");
    const int sections = isMultiple ? count() : 1;
    for (int i = 0; i < sections; ++i) {
        const int vertices = isMultiple ? count() : toWhole(first).value_or(-1);
        if (isMultiple)
            noteOddPlace(true);
        if (!readPart(vertices, object) || vertices < 2)
            return false;
    }
    return sections > 0;
}

bool MifReader::readRegion(MifObject& object)
{
    const int rings = count();
    noteOddPlace(false);
    for (int i = 0; i < rings; ++i) {
        const int vertices = count();
        noteOddPlace(true);
        if (!readPart(vertices, object) || vertices < 3)
            return false;
    }
    return rings >= 0;
}

bool MifReader::readText(MifObject& object, size_t start)
{
    // The text is in quotes; words in it must not be taken for objects.
    const size_t open = m_bytes.find_first_not_of(space, m_position);
    if (open == std::string_view::npos || m_bytes[open] != '"')
        return false;
    const size_t close = m_bytes.find('"', open + 1);
    if (close == std::string_view::npos)
        return false;
    m_position = close + 1;
    object.text = trimmed(m_bytes.substr(start, m_position - start));
    const qint64 mended = m_mendedLines;
    const bool good = readPart(2, object);
    m_mendedLines = mended;
    return good;
}

} // namespace prep
