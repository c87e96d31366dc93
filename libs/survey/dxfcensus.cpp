#include "survey/dxfcensus.h"

#include "import/number.h"

#include <algorithm>
#include <array>
#include <utility>

namespace {

/// More names than these are nothing that a drawing has; a census stays small.
constexpr size_t maxKinds = 1000;
constexpr size_t maxNames = 100000;
constexpr size_t maxNameLength = 256;

/// The marks of a POLYLINE in code 70, and of a layer.
constexpr int closedBit = 1;
constexpr int meshBits = 16 | 64;
constexpr int frozenBit = 1;

/// A short code as it is written; the same for all that are longer.
constexpr int codeOf(std::string_view text)
{
    constexpr int characters = 256;
    if (text.size() > 2)
        return -1;
    const int first = static_cast<unsigned char>(text[0]);
    return text.size() == 1 ? first : first * characters + static_cast<unsigned char>(text[1]);
}

int toNumber(std::string_view text)
{
    return toInt(TextView(text.data(), static_cast<qsizetype>(text.size())));
}

bool isGeometry(std::string_view kind)
{
    static constexpr std::array<std::string_view, 10> kinds{ "LINE", "LWPOLYLINE", "POLYLINE",
        "ARC", "CIRCLE", "ELLIPSE", "SPLINE", "HATCH", "INSERT", "SOLID" };
    return std::find(kinds.begin(), kinds.end(), kind) != kinds.end();
}

void insertName(std::set<std::string, std::less<>>& names, std::string_view name)
{
    if (names.size() < maxNames)
        names.emplace(name.substr(0, maxNameLength));
}

bool contains(const std::set<std::string, std::less<>>& names, std::string_view name)
{
    return !names.empty() && names.find(name.substr(0, maxNameLength)) != names.end();
}

QByteArray bytesOf(std::string_view text)
{
    return { text.data(), static_cast<int>(text.size()) };
}

} // namespace

void DxfCensus::take(ByteLines& lines)
{
    while (lines.next()) {
        const std::string_view text = trimmed(lines.line);
        // A blank line in the place of a code is passed over.
        if (text.empty())
            continue;
        // The line is gone when its value is read.
        const int code = codeOf(text);
        if (!lines.next())
            break;
        takePair(code, lines.line, lines.number);
    }
    endEntity();
    endPolyline();
}

void DxfCensus::takePair(int code, std::string_view value, int line)
{
    if (code == codeOf("0")) {
        endEntity();
        startEntity(trimmed(value), line);
    } else if (m_role != Role::None || m_section == Section::Header) {
        takeValue(code, value);
    }
}

DxfCensus::Role DxfCensus::roleOf(std::string_view kind) const
{
    static constexpr std::pair<std::string_view, Role> roles[] = { { "LINE", Role::Line },
        { "LWPOLYLINE", Role::LwPolyline }, { "VERTEX", Role::Vertex },
        { "POLYLINE", Role::Polyline }, { "TEXT", Role::Text }, { "INSERT", Role::Insert },
        { "POINT", Role::Point }, { "SEQEND", Role::None }, { "ENDSEC", Role::None },
        { "EOF", Role::None } };
    for (const auto& [name, role] : roles) {
        if (kind == name)
            return role;
    }
    return Role::Other;
}

void DxfCensus::startEntity(std::string_view kind, int line)
{
    m_role = Role::None;
    m_line = line;
    if (kind.empty())
        return;
    if (kind == "SECTION") {
        endPolyline();
        m_role = Role::Section;
        return;
    }
    if (m_section == Section::Tables && kind == "LAYER")
        m_role = Role::Layer;
    if (m_section == Section::Blocks)
        startBlockContent(kind);
    if (m_section != Section::Entities)
        return;
    m_role = roleOf(kind);
    if (m_role == Role::Vertex)
        return;
    endPolyline();
    if (m_role == Role::None)
        return;
    countKind(kind, "");
    if (m_role == Role::Polyline)
        m_polylineLine = line;
}

void DxfCensus::startBlockContent(std::string_view kind)
{
    if (kind == "BLOCK")
        m_role = Role::Block;
    if (kind == "BLOCK" || kind == "ENDBLK" || kind == "VERTEX" || kind == "SEQEND"
        || kind == "ENDSEC" || kind == "EOF")
        return;
    countKind(kind, inBlocks);
    if (isGeometry(kind))
        insertName(m_blocksWithGeometry, m_block);
}

void DxfCensus::countKind(std::string_view kind, const char* suffix)
{
    std::string name(kind.substr(0, maxNameLength));
    name += suffix;
    if (!m_lastCount || m_lastKind != name) {
        m_lastCount = kinds.size() < maxKinds || kinds.find(name) != kinds.end()
            ? &kinds[name]
            : &kinds[otherKinds];
        m_lastKind = std::move(name);
    }
    ++m_lastCount->count;
}

/// Most values are coordinates, and nothing is done about them.
void DxfCensus::takeValue(int code, std::string_view value)
{
    switch (code) {
    case codeOf("1"):
        if (m_role == Role::Text)
            m_receiver(value);
        break;
    case codeOf("2"):
        takeName(trimmed(value));
        break;
    case codeOf("3"):
        if (std::exchange(m_codepageFollows, false))
            codepage = bytesOf(trimmed(value).substr(0, maxNameLength));
        break;
    case codeOf("8"):
        m_isHidden = contains(m_hiddenLayers, trimmed(value));
        break;
    case codeOf("9"):
        m_codepageFollows = trimmed(value) == "$DWGCODEPAGE";
        break;
    case codeOf("42"):
        takeBulge(trimmed(value));
        break;
    case codeOf("62"):
        m_layerIsHidden =
            m_layerIsHidden || (m_role == Role::Layer && toNumber(trimmed(value)) < 0);
        break;
    case codeOf("67"):
        m_isOnPaper = toNumber(trimmed(value)) == 1;
        break;
    case codeOf("70"):
        takeFlags(trimmed(value));
        break;
    case codeOf("90"):
        takeCount(trimmed(value));
        break;
    default:
        break;
    }
}

void DxfCensus::takeName(std::string_view name)
{
    switch (m_role) {
    case Role::Section:
        m_section = name == "ENTITIES" ? Section::Entities
            : name == "BLOCKS"         ? Section::Blocks
            : name == "TABLES"         ? Section::Tables
            : name == "HEADER"         ? Section::Header
                                       : Section::Other;
        m_role = Role::None;
        break;
    case Role::Layer:
        m_layer = name.substr(0, maxNameLength);
        break;
    case Role::Block:
        m_block = name.substr(0, maxNameLength);
        break;
    case Role::Insert:
        m_holdsGeometry = contains(m_blocksWithGeometry, name);
        break;
    default:
        break;
    }
}

void DxfCensus::takeBulge(std::string_view number)
{
    if (m_role != Role::LwPolyline && m_role != Role::Vertex && m_role != Role::Polyline)
        return;
    bool ok = false;
    const TextView text(number.data(), static_cast<qsizetype>(number.size()));
    bulges += toDouble(text, &ok) != 0 && ok ? 1 : 0;
}

void DxfCensus::takeFlags(std::string_view flags)
{
    if (m_role == Role::Layer)
        m_layerIsHidden = m_layerIsHidden || (toNumber(flags) & frozenBit) != 0;
    if (m_role == Role::Polyline)
        m_polylineFlags = bytesOf(flags);
    m_polylineIsClosed = m_polylineIsClosed || (m_polylineLine > 0 && flags == "1");
}

void DxfCensus::takeCount(std::string_view count)
{
    const bool isSingle = m_role == Role::LwPolyline && toNumber(count) == 1;
    if (isSingle && singleVertex.count++ == 0)
        singleVertex.line = m_line;
}

void DxfCensus::endEntity()
{
    if (m_role == Role::Layer && std::exchange(m_layerIsHidden, false))
        insertName(m_hiddenLayers, m_layer);
    if (isDrawn() && m_section == Section::Entities) {
        const bool isContour =
            m_role == Role::Line || m_role == Role::Polyline || m_role == Role::LwPolyline;
        hidden +=
            m_isHidden && (isContour || m_role == Role::Text || m_role == Role::Point) ? 1 : 0;
        paper += m_isOnPaper && isContour ? 1 : 0;
        insertsWithGeometry += m_role == Role::Insert && m_holdsGeometry ? 1 : 0;
    }
    m_isHidden = false;
    m_isOnPaper = false;
    m_holdsGeometry = false;
    m_role = Role::None;
}

void DxfCensus::endPolyline()
{
    const int line = std::exchange(m_polylineLine, 0);
    const QByteArray text = std::exchange(m_polylineFlags, {});
    const bool isClosed = std::exchange(m_polylineIsClosed, false);
    const int flags = toNumber({ text.constData(), static_cast<size_t>(text.size()) });
    if (line == 0)
        return;
    if ((flags & meshBits) != 0) {
        if (meshes.count++ == 0)
            meshes.line = line;
    } else if ((flags & closedBit) != 0 && !isClosed && openedByFlag.count++ == 0) {
        openedByFlag.line = line;
        openingFlags = text;
    }
}
