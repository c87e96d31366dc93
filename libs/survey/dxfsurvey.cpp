#include "survey/dxfsurvey.h"

#include "import/number.h"

#include <utility>

namespace {

constexpr const char* inBlocks = " (в блоках)";

/// The marks of a POLYLINE in code 70.
constexpr int closedBit = 1;
constexpr int meshBits = 16 | 64;

bool isOneOf(TextView text, std::initializer_list<const char*> names)
{
    return std::any_of(names.begin(), names.end(),
        [text](const char* name) { return text == QLatin1String(name); });
}

} // namespace

// The census

void DxfSurvey::takeCensus(LineReader& in)
{
    DxfPairs pairs(in);
    while (!pairs.atEnd()) {
        // A blank line in the place of a code is passed over.
        if (pairs.readCodeValue())
            takePair(pairs, in.lineNum());
    }
    endPolyline();
}

void DxfSurvey::takePair(const DxfPairs& pairs, int line)
{
    if (std::exchange(m_sectionStarts, false)) {
        m_section = pairs.value == QLatin1String("ENTITIES") ? Section::Entities
            : pairs.value == QLatin1String("BLOCKS")         ? Section::Blocks
                                                             : Section::Other;
        return;
    }
    if (pairs.isEntity()) {
        startEntity(pairs.value, line);
        return;
    }
    if (m_codepageFollows && pairs.code == QLatin1String("3"))
        m_survey.declaredEncoding = pairs.value.toString();
    m_codepageFollows =
        pairs.code == QLatin1String("9") && pairs.value == QLatin1String("$DWGCODEPAGE");
    if (pairs.code == QLatin1String("1") && m_kind == QLatin1String("TEXT")) {
        takeDesignation(pairs.value);
    } else if (pairs.code == QLatin1String("70") && m_polyline.line > 0) {
        if (m_kind == QLatin1String("POLYLINE"))
            m_polyline.flags = pairs.value.toString();
        m_polyline.closed = m_polyline.closed || pairs.value == QLatin1String("1");
    } else if (pairs.code == QLatin1String("42")
        && (m_kind == QLatin1String("LWPOLYLINE") || m_polyline.line > 0)) {
        bool ok = false;
        const double bulge = toDouble(pairs.value, &ok);
        m_bulges += ok && bulge != 0 ? 1 : 0;
    }
}

void DxfSurvey::startEntity(TextView kind, int line)
{
    m_kind.clear();
    const bool isVertex = kind == QLatin1String("VERTEX");
    if (!isVertex)
        endPolyline();
    m_sectionStarts = kind == QLatin1String("SECTION");
    if (m_sectionStarts || m_section == Section::Other || kind.isEmpty()
        || isOneOf(kind, { "SEQEND", "ENDSEC", "EOF", "BLOCK", "ENDBLK" }))
        return;
    if (m_section == Section::Blocks) {
        if (!isVertex)
            ++m_survey.kinds[kind.toString().toStdString() + inBlocks].count;
        return;
    }
    m_kind = kind.toString();
    if (isVertex)
        return;
    ++m_survey.kinds[m_kind.toStdString()].count;
    if (m_kind == QLatin1String("POLYLINE"))
        m_polyline.line = line;
}

void DxfSurvey::endPolyline()
{
    const Polyline polyline = std::exchange(m_polyline, {});
    const int flags = polyline.flags.toInt();
    if ((flags & closedBit) == 0 || polyline.closed || (flags & meshBits) != 0)
        return;
    if (m_openedByFlag++ == 0) {
        m_firstFlags = polyline.flags;
        m_firstFlagsLine = polyline.line;
    }
}

// Failures

void DxfSurvey::explain(const ImportFailure& failure)
{
    if (failure.kind == FailureKind::NotDxf)
        explainHeader();
    else if (failure.kind == FailureKind::DxfEntity)
        explainEntity(failure);
}

void DxfSurvey::explainHeader()
{
    LineReader in;
    open(in, m_survey.fileName);
    DxfPairs pairs(in);
    const QLatin1String comment("999");
    if (!pairs.readCodeValue()) {
        addCause(Cause::BlankFirstLine, 1);
        return;
    }
    if (pairs.code.toString().startsWith(QLatin1String("AutoCAD Binary DXF"))) {
        addCause(Cause::NotText, 0, QStringLiteral("двоичный DXF"));
        return;
    }
    if (pairs.code.toString().startsWith(QLatin1String("AC10"))) {
        addCause(Cause::NotText, 0, QStringLiteral("чертёж DWG"));
        return;
    }
    if (pairs.code == comment)
        addCause(Cause::LeadingComment, 1);
    while (pairs.code == comment && !pairs.atEnd() && pairs.readCodeValue()) { }
    const int line = in.lineNum() - 1;
    const bool isSection = pairs.isEntity() && pairs.value == QLatin1String("SECTION")
        && pairs.readCodeValue() && pairs.code == QLatin1String("2");
    if (!isSection)
        addCause(Cause::NotDxf, line);
    else if (pairs.value != QLatin1String("HEADER"))
        addCause(Cause::MissingHeader, line, pairs.value.toString());
}

void DxfSurvey::explainEntity(const ImportFailure& failure)
{
    // Codes stand on odd lines: a blank one is what the reader did not get over. A value that is
    // blank makes its entity a bad one. Between entities the file may end where a section's name
    // should stand.
    const Place place = placeOf(failure.line);
    if (failure.line % 2 == 1 && place.exists && place.text.isEmpty())
        addCause(place.isBlankToEnd ? Cause::TrailingBlankLine : Cause::BlankLine, failure.line);
    else if (failure.entity.size() > 0)
        addCause(Cause::BadObject, failure.entityLine, failure.entity);
    else
        addCause(Cause::BadObject, failure.line - 1, QStringLiteral("SECTION"));
}

// Findings

/// The texts are sorted only to name points, or when they are read for the objects alone.
bool DxfSurvey::leavesTextsUnsorted() const
{
    const qint64 points =
        countOf("POINT") + countOf("INSERT") + countOf("CIRCLE") + countOf("ELLIPSE");
    return readsPoints() && searchesObjectDefs() && points == 0 && countOf("TEXT") > 1;
}

void DxfSurvey::judge()
{
    const qint64 contours = countOf("LINE") + countOf("POLYLINE") + countOf("LWPOLYLINE");
    const bool searchesDefs = m_options.searchPointDefs || searchesObjectDefs();
    if (readsObjects() && contours == 0 && countOf("INSERT") > 0)
        addCause(Cause::BlockInsertsOnly, 0, {}, countOf("INSERT"));
    if (searchesDefs && countOf("MTEXT") > 0 && countOf("TEXT") == 0)
        addCause(Cause::MTextOnly, 0, {}, countOf("MTEXT"));
    if (contours > 0 && leavesTextsUnsorted())
        addCause(Cause::UnsortedTexts, 0, {}, countOf("TEXT"));
    if (readOf("POLYLINE") > 0 && m_openedByFlag > 0)
        addCause(Cause::ClosedFlag, m_firstFlagsLine, m_firstFlags, m_openedByFlag);
    if (readOf("POLYLINE") + readOf("LWPOLYLINE") > 0 && m_bulges > 0)
        addCause(Cause::Bulges, 0, {}, m_bulges);
}
