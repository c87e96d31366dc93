#include "survey/dxfsurvey.h"

#include "import/dxfpairs.h"

#include <algorithm>
#include <iterator>

namespace {

/// Kinds whose absence nobody misses: they draw nothing, or only views of the rest.
constexpr const char* silentKinds[] = { "VIEWPORT", "ATTDEF", "ACAD_PROXY_ENTITY", "POINT",
    "CIRCLE", "ELLIPSE", "INSERT", "TEXT", "LINE", "POLYLINE", "LWPOLYLINE" };

bool isSilent(const std::string& kind)
{
    return kind.back() == ')'
        || std::any_of(std::begin(silentKinds), std::end(silentKinds),
            [&kind](const char* silent) { return kind == silent; });
}

} // namespace

void DxfSurvey::takeCensus(ByteLines& lines)
{
    m_census.take(lines);
    m_survey.kinds = std::move(m_census.kinds);
    m_survey.declaredEncoding = QString::fromLatin1(m_census.codepage);
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
        addCause(place.isBlankToEnd ? Cause::TrailingBlankLine : Cause::BlankLine, failure.line, {},
            place.isBlankToEnd ? 0 : place.blankLines);
    else if (failure.entity == QLatin1String("LWPOLYLINE")
        && failure.entityLine == m_census.singleVertex.line)
        addCause(Cause::OneVertex, failure.entityLine, {}, m_census.singleVertex.count);
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
    const bool insertsAlone = contours == 0 && countOf("INSERT") > 0;
    if (readsObjects() && insertsAlone)
        addCause(Cause::BlockInsertsOnly, 0, {}, countOf("INSERT"));
    if (searchesDefs && countOf("MTEXT") > 0 && countOf("TEXT") == 0)
        addCause(Cause::MTextOnly, 0, {}, countOf("MTEXT"));
    if (contours > 0 && leavesTextsUnsorted())
        addCause(Cause::UnsortedTexts, 0, {}, countOf("TEXT"));
    if (readsObjects() && (contours > 0 || insertsAlone))
        judgeLeftOut(insertsAlone);
    judgeObjects();
}

/// What was read, and not as it is meant.
void DxfSurvey::judgeObjects()
{
    const qint64 polylines = readOf("POLYLINE");
    if (polylines > 0 && m_census.openedByFlag.count > 0) {
        addCause(Cause::ClosedFlag, m_census.openedByFlag.line,
            QString::fromLatin1(m_census.openingFlags), m_census.openedByFlag.count);
    }
    if (polylines > 0 && m_census.meshes.count > 0)
        addCause(Cause::Mesh, m_census.meshes.line, {}, m_census.meshes.count);
    if (polylines + readOf("LWPOLYLINE") > 0 && m_census.bulges > 0)
        addCause(Cause::Bulges, 0, {}, m_census.bulges);
    if (polylines + readOf("LWPOLYLINE") + readOf("LINE") == 0)
        return;
    if (m_census.hidden > 0)
        addCause(Cause::HiddenLayers, 0, {}, m_census.hidden);
    if (m_census.paper > 0)
        addCause(Cause::PaperSpace, 0, {}, m_census.paper);
}

void DxfSurvey::judgeLeftOut(bool insertsAlone)
{
    constexpr int maxNamed = 12;
    QStringList names;
    qint64 count = 0;
    const auto add = [&](const QString& name, qint64 missing) {
        if (missing == 0)
            return;
        count += missing;
        if (names.size() < maxNamed)
            names.append(QStringLiteral("%1 - %2").arg(name).arg(missing));
    };
    for (const auto& [kind, counts] : m_survey.kinds) {
        const bool isTold = kind == "MTEXT" && countOf("TEXT") == 0;
        if (!isSilent(kind) && !isTold)
            add(QString::fromStdString(kind), counts.count - counts.read);
    }
    // Without a pass for points these are not even that.
    if (!readsPoints() && m_options.pointFileName.isEmpty()) {
        add(QStringLiteral("CIRCLE"), countOf("CIRCLE"));
        add(QStringLiteral("ELLIPSE"), countOf("ELLIPSE"));
    }
    // Where no line stands beside them they have a cause of their own.
    if (!insertsAlone)
        add(QStringLiteral("вставки блоков с линиями (INSERT)"), m_census.insertsWithGeometry);
    if (count > 0)
        addCause(Cause::LeftOut, 0, names.join(QLatin1String(", ")), count);
}
