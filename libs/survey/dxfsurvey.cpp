#include "survey/surveyor.h"

#include <utility>

namespace {

constexpr std::string_view binaryMark = "AutoCAD Binary DXF";
constexpr std::string_view dwgMark = "AC10";

/// The marks of a POLYLINE that is a mesh, in code 70.
constexpr int meshBits = 16 | 64;

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> names)
{
    for (const std::string_view name : names) {
        if (text == name)
            return true;
    }
    return false;
}

QString toText(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
}

/// Which of an entity's required numbers were seen, and seen good.
struct Coordinates {
    bool x = false;
    bool y = false;
    bool endX = false;
    bool endY = false;
    bool bad = false;

    void take(std::string_view code, std::string_view value)
    {
        bool* const seen = code == "10" ? &x
            : code == "20"              ? &y
            : code == "11"              ? &endX
            : code == "21"              ? &endY
                                        : nullptr;
        if (!seen)
            return;
        *seen = true;
        if (!isNumber(value))
            bad = true;
    }
    bool isPoint() const { return x && y && !bad; }
    bool isLine() const { return isPoint() && endX && endY; }
};

/// The entity whose pairs are being read.
struct Entity {
    std::string kind;
    int line = 0;
    Coordinates coordinates;
    bool hasText = false;
    std::string_view flags; ///< code 70
    qint64 declaredVertices = 0; ///< code 90
    qint64 vertices = 0;
    qint64 bulges = 0;
    bool closed = false;
};

class DxfSurvey : private Surveyor {
public:
    using Surveyor::Surveyor;

    FileSurvey run()
    {
        if (!isReadable())
            return m_survey;
        checkHeader();
        while (readPair())
            takePair();
        endEntity();
        endPolyline(false);
        finish();
        return m_survey;
    }

private:
    enum class Section { Other, Entities, Blocks };

    bool isReadable()
    {
        const std::string_view bytes = view(m_text);
        if (bytes.empty())
            addCause(Cause::EmptyFile, 0);
        else if (bytes.substr(0, binaryMark.size()) == binaryMark)
            addCause(Cause::NotText, 0, QStringLiteral("двоичный DXF"));
        else if (bytes.substr(0, dwgMark.size()) == dwgMark)
            addCause(Cause::NotText, 0, QStringLiteral("чертёж DWG"));
        m_survey.stopped = !m_survey.causes.isEmpty();
        return !m_survey.stopped;
    }

    // The start of the file

    void checkHeader()
    {
        LineCursor lines(view(m_text));
        std::string_view code = lines.next();
        if (code.empty()) {
            addCause(Cause::BlankFirstLine, 1);
            stop();
            return;
        }
        std::string_view value = lines.next();
        if (code == "999") {
            addCause(Cause::LeadingComment, 1);
            stop();
        }
        while (code == "999" && !lines.atEnd()) {
            code = lines.next();
            value = lines.next();
        }
        const int line = lines.lineNumber() - 1;
        const std::string_view nextCode = lines.next();
        const std::string_view name = lines.next();
        if (code != "0" || value != "SECTION" || nextCode != "2") {
            addCause(Cause::NotDxf, line);
            stop();
        } else if (name != "HEADER") {
            addCause(Cause::MissingHeader, line, toText(name));
            stop();
        }
    }

    // Pairs

    bool readPair()
    {
        while (!m_lines.atEnd()) {
            m_code = m_lines.next();
            if (!m_code.empty()) {
                m_value = m_lines.next();
                return true;
            }
            noteBlankLine();
        }
        return false;
    }

    /// A blank line where a group code should stand stops the reader.
    void noteBlankLine()
    {
        if (m_survey.stopped)
            return;
        m_blankLine = m_lines.lineNumber();
        stopPointPass();
    }

    void takePair()
    {
        if (m_code == "0") {
            startEntity();
            return;
        }
        if (m_sectionStarts) {
            m_sectionStarts = false;
            m_section = m_value == "ENTITIES" ? Section::Entities
                : m_value == "BLOCKS"         ? Section::Blocks
                                              : Section::Other;
            return;
        }
        if (m_codepageFollows && m_code == "3")
            m_survey.declaredEncoding = toText(m_value);
        m_codepageFollows = m_code == "9" && m_value == "$DWGCODEPAGE";
        if (m_section == Section::Entities)
            takeEntityPair();
    }

    void startEntity()
    {
        endEntity();
        if (m_value == "SECTION") {
            endPolyline(false);
            m_sectionStarts = true;
            m_section = Section::Other;
            return;
        }
        if (m_value == "SEQEND") {
            endPolyline(true);
            return;
        }
        if (isOneOf(m_value, { "ENDSEC", "EOF", "BLOCK", "ENDBLK" })
            || m_section == Section::Other) {
            endPolyline(false);
            return;
        }
        if (m_section == Section::Blocks) {
            if (m_value != "VERTEX")
                ++m_survey.kinds[std::string(m_value) + inBlocks].count;
            return;
        }
        if (m_value != "VERTEX")
            endPolyline(false);
        m_entity = Entity();
        m_entity.kind = std::string(m_value);
        m_entity.line = m_lines.lineNumber();
    }

    void takeEntityPair()
    {
        Entity& entity = m_entity;
        entity.coordinates.take(m_code, m_value);
        if (m_code == "1") {
            entity.hasText = true;
            if (entity.kind == "TEXT")
                m_texts.append(m_value.data(), static_cast<int>(m_value.size())).append('\n');
        } else if (m_code == "70") {
            entity.flags = m_value;
            entity.closed = entity.closed || m_value == "1";
        } else if (m_code == "90") {
            entity.declaredVertices = toInt(m_value, 0);
        } else if (m_code == "42" && numberOf(m_value, 0) != 0) {
            ++entity.bulges;
        }
        if (entity.kind == "LWPOLYLINE")
            countVertex();
    }

    void countVertex()
    {
        Coordinates& coordinates = m_entity.coordinates;
        if (!coordinates.x || !coordinates.y)
            return;
        ++m_entity.vertices;
        coordinates.x = false;
        coordinates.y = false;
    }

    // Entities

    void endEntity()
    {
        const Entity entity = std::exchange(m_entity, Entity());
        if (entity.kind.empty())
            return;
        if (entity.kind == "VERTEX") {
            addVertex(entity);
            return;
        }
        KindCount& kind = m_survey.kinds[entity.kind];
        ++kind.count;
        if (entity.kind == "POLYLINE")
            m_polyline = entity;
        else
            kind.read += isUsed(entity) ? 1 : 0;
    }

    bool isUsed(const Entity& entity)
    {
        if (m_survey.stopped)
            return false;
        if (isOneOf(entity.kind, { "POINT", "INSERT", "CIRCLE", "ELLIPSE" }))
            return isPointUsed(entity);
        if (entity.kind == "TEXT")
            return isTextUsed(entity);
        if (!m_options.readsObjects)
            return false;
        if (entity.kind == "LINE")
            return entity.coordinates.isLine() ? addShape(Shape::Line) : fail(entity, false);
        return entity.kind == "LWPOLYLINE" && isLwpolylineUsed(entity);
    }

    bool isPointUsed(const Entity& entity)
    {
        if (!m_options.readsPoints)
            return false;
        return entity.coordinates.isPoint() || fail(entity, true);
    }

    bool isTextUsed(const Entity& entity)
    {
        if (!m_options.readsPoints && !m_options.searchObjectDefs)
            return false;
        return (entity.hasText && entity.coordinates.isPoint())
            || fail(entity, m_options.readsPoints);
    }

    bool isLwpolylineUsed(const Entity& entity)
    {
        const bool closed = (toInt(entity.flags, 0) & 1) != 0;
        addShape(closed ? Shape::Area : Shape::Line);
        if (entity.coordinates.bad || entity.declaredVertices < 2
            || entity.vertices < entity.declaredVertices)
            return fail(entity, false);
        m_bulges += entity.bulges;
        return true;
    }

    void addVertex(const Entity& vertex)
    {
        if (m_polyline.kind.empty())
            return;
        ++m_polyline.vertices;
        m_polyline.bulges += vertex.bulges;
        m_polyline.closed = m_polyline.closed || vertex.closed;
        if (!vertex.coordinates.isPoint())
            m_polyline.coordinates.bad = true;
    }

    void endPolyline(bool complete)
    {
        const Entity polyline = std::exchange(m_polyline, Entity());
        if (polyline.kind.empty() || m_survey.stopped || !m_options.readsObjects)
            return;
        addShape(polyline.closed ? Shape::Area : Shape::Line);
        if (!complete || polyline.vertices < 2 || polyline.coordinates.bad) {
            fail(polyline, false);
            return;
        }
        ++m_survey.kinds[polyline.kind].read;
        m_bulges += polyline.bulges;
        const int flags = toInt(polyline.flags, 0);
        if ((flags & 1) == 0 || polyline.closed || (flags & meshBits) != 0)
            return;
        if (m_openedByFlag++ == 0) {
            m_firstFlags = toText(polyline.flags);
            m_firstFlagsLine = polyline.line;
        }
    }

    bool addShape(Shape shape)
    {
        m_survey.shapes.append(shape);
        return true;
    }

    bool fail(const Entity& entity, bool inPointPass)
    {
        addCause(Cause::BadObject, entity.line, QString::fromStdString(entity.kind));
        inPointPass ? stopPointPass() : stop();
        return false;
    }

    // The answer

    void finish()
    {
        finishCounts();
        if (m_blankLine > 0) {
            const bool trailing = m_lines.atEnd() && isBlankFrom(m_blankLine);
            addCause(trailing ? Cause::TrailingBlankLine : Cause::BlankLine, m_blankLine);
        }
        judgeKinds();
        judgeEncoding(m_survey, m_options, m_bytes, m_texts);
    }

    bool isBlankFrom(int line) const
    {
        LineCursor lines(view(m_text));
        while (lines.lineNumber() < line - 1)
            lines.next();
        while (!lines.atEnd()) {
            if (!lines.next().empty())
                return false;
        }
        return true;
    }

    qint64 countOf(const char* kind) const
    {
        const auto found = m_survey.kinds.find(kind);
        return found == m_survey.kinds.end() ? 0 : found->second.count;
    }

    /// The texts are sorted only to name points, or when they are read for the objects alone.
    bool leavesTextsUnsorted() const
    {
        const qint64 points =
            countOf("POINT") + countOf("INSERT") + countOf("CIRCLE") + countOf("ELLIPSE");
        return m_options.readsPoints && m_options.readsObjects && m_options.searchPointDefs
            && m_options.searchObjectDefs && points == 0 && countOf("TEXT") > 1;
    }

    void judgeKinds()
    {
        const qint64 contours = countOf("LINE") + countOf("POLYLINE") + countOf("LWPOLYLINE");
        if (m_options.readsObjects && contours == 0 && countOf("INSERT") > 0)
            addCause(Cause::BlockInsertsOnly, 0, {}, countOf("INSERT"));
        if (m_options.searchPointDefs || m_options.searchObjectDefs) {
            if (countOf("MTEXT") > 0 && countOf("TEXT") == 0)
                addCause(Cause::MTextOnly, 0, {}, countOf("MTEXT"));
        }
        if (contours > 0 && leavesTextsUnsorted())
            addCause(Cause::UnsortedTexts, 0, {}, countOf("TEXT"));
        if (m_openedByFlag > 0)
            addCause(Cause::ClosedFlag, m_firstFlagsLine, m_firstFlags, m_openedByFlag);
        if (m_bulges > 0)
            addCause(Cause::Bulges, 0, {}, m_bulges);
    }

    static constexpr const char* inBlocks = " (в блоках)";

    QByteArray m_texts; ///< the labels
    std::string_view m_code;
    std::string_view m_value;
    Section m_section = Section::Other;
    bool m_sectionStarts = false;
    bool m_codepageFollows = false;
    Entity m_entity;
    Entity m_polyline;
    int m_blankLine = 0; ///< the line that stopped the reader
    qint64 m_bulges = 0;
    qint64 m_openedByFlag = 0; ///< closed polylines that the reader takes for open ones
    QString m_firstFlags;
    int m_firstFlagsLine = 0;
};

} // namespace

FileSurvey surveyDxf(const QString& fileName, const SurveyOptions& options)
{
    return DxfSurvey(fileName, options).run();
}
