#include "prepare/dxfrepair.h"

#include "prepare/dxfdrawing.h"
#include "prepare/dxfentityreader.h"
#include "prepare/pairwriter.h"

#include <algorithm>
#include <iterator>

namespace prep {

namespace {

/// Whether the readers build something of this kind, so that a bad one would stop them.
bool isReadKind(std::string_view type)
{
    static constexpr std::string_view kinds[] = { "LINE", "LWPOLYLINE", "POLYLINE", "TEXT", "POINT",
        "INSERT", "CIRCLE", "ELLIPSE" };
    return std::find(std::begin(kinds), std::end(kinds), type) != std::end(kinds);
}

class DxfRepair {
public:
    DxfRepair(std::string_view bytes, QIODevice& out, PrepareReport& report)
        : m_records(bytes)
        , m_again(bytes)
        , m_out(out)
        , m_report(report)
    {
    }

    void run()
    {
        while (m_records.next()) {
            takeRecord();
            m_out.settle();
        }
        endSection();
        if (!m_hasHeader)
            addHeader();
        m_out.pair(0, "EOF");
        m_out.flush();
        m_report.note(Note::EofAdded, m_hasEof ? 0 : 1);
        m_report.notePassedOver(m_records.cursor());
    }

private:
    enum class Section { None, Entities, Other };

    void takeRecord()
    {
        const std::string_view type = m_records.type();
        if (type == "SECTION") {
            startSection();
        } else if (type == "ENDSEC") {
            endSection();
        } else if (type == "EOF") {
            m_hasEof = true;
        } else {
            if (m_section == Section::None)
                addEntitiesSection();
            if (m_section == Section::Entities)
                takeEntity();
            else
                copyRecord();
        }
    }

    // The frame

    void startSection()
    {
        endSection();
        DxfPair name;
        if (!m_records.pair(name))
            return;
        if (!m_hasHeader && name.text() != "HEADER")
            addHeader();
        m_hasHeader = true;
        m_section = name.text() == "ENTITIES" ? Section::Entities : Section::Other;
        m_out.pair(0, "SECTION");
        m_out.pair(2, name.text());
        copyPairs();
    }

    void endSection()
    {
        if (m_section != Section::None)
            m_out.pair(0, "ENDSEC");
        m_section = Section::None;
    }

    void addHeader()
    {
        m_out.pair(0, "SECTION");
        m_out.pair(2, "HEADER");
        m_out.pair(0, "ENDSEC");
        m_report.note(Note::HeaderAdded);
        m_hasHeader = true;
    }

    void addEntitiesSection()
    {
        if (!m_hasHeader)
            addHeader();
        m_out.pair(0, "SECTION");
        m_out.pair(2, "ENTITIES");
        m_section = Section::Entities;
        m_report.note(Note::SectionAdded);
    }

    void copyRecord()
    {
        m_out.pair(0, m_records.type());
        copyPairs();
    }

    void copyPairs()
    {
        DxfPair pair;
        while (m_records.pair(pair))
            m_out.pair(pair.code, pair.value);
    }

    // Entities

    /// Writes an entity as it is read, and takes it back where that will not do.
    void takeEntity()
    {
        const std::string_view type = m_records.type();
        const size_t position = m_records.position();
        const size_t written = m_out.size();
        m_out.pair(0, type);
        m_records.echoTo(&m_out);
        const std::optional<Note> reason = readEntity(m_records, m_entity);
        m_records.passPairs();
        m_records.echoTo(nullptr);
        if (isMisread(type, reason)) {
            m_out.takeBack(written);
            m_report.drop(type, *reason);
            return;
        }
        const auto* const path = std::get_if<PathShape>(&m_entity.shape);
        m_changed = false;
        if (path && !path->isTold) {
            m_out.takeBack(written);
            copyPath(*path, position);
        }
        m_report.write(type, m_changed);
    }

    static bool isMisread(std::string_view type, const std::optional<Note>& reason)
    {
        return reason == Note::PaperSpace || reason == Note::Mesh
            || (reason == Note::Incomplete && isReadKind(type));
    }

    /// Copies the records of a polyline, from that at `position` to the next entity.
    void copyPath(const PathShape& path, size_t position)
    {
        const size_t end = m_records.nextPosition();
        m_again.moveTo(position);
        m_again.next();
        if (m_again.type() == "LWPOLYLINE") {
            copyLwpolyline(path);
            return;
        }
        bool ended = false;
        do {
            ended = m_again.type() == "SEQEND";
            copyPolylineRecord(path.closed);
        } while (m_again.next() && m_again.position() < end);
        if (!ended) {
            m_out.pair(0, "SEQEND");
            mend(Note::SeqendAdded);
        }
    }

    void mend(Note note)
    {
        m_report.note(note);
        m_changed = true;
    }

    /// The readers take a POLYLINE for closed when any flag in it is the text 1, and only then.
    void copyPolylineRecord(bool closed)
    {
        const bool isVertex = m_again.type() == "VERTEX";
        m_out.pair(0, m_again.type());
        DxfPair pair;
        while (m_again.pair(pair)) {
            const bool isOne = pair.text() == "1";
            if (pair.code != 70 || (isVertex ? !isOne || closed : !closed || isOne)) {
                m_out.pair(pair.code, pair.value);
                continue;
            }
            mend(Note::ClosingFlag);
            if (!isVertex)
                m_out.pair(70, "1");
        }
    }

    /// The readers need the number of vertices and the flag before the first vertex.
    void copyLwpolyline(const PathShape& shape)
    {
        const std::string count = std::to_string(shape.vertices.size());
        m_out.pair(0, m_again.type());
        bool counted = false;
        bool flagged = !shape.closed;
        bool hasVertex = false;
        DxfPair pair;
        while (m_again.pair(pair)) {
            const bool isCount = pair.code == 90;
            const bool isFlag = pair.code == 70;
            if ((pair.code == 10 || pair.code == 20) && !hasVertex) {
                hasVertex = true;
                addMissing(counted, flagged, count);
            }
            if ((isCount || isFlag) && (hasVertex || (isCount && pair.text() != count)))
                continue;
            counted = counted || isCount;
            flagged = flagged || isFlag;
            m_out.pair(pair.code, pair.value);
        }
    }

    void addMissing(bool counted, bool flagged, const std::string& count)
    {
        if (!counted) {
            m_out.pair(90, count);
            mend(Note::VertexCount);
        }
        if (!flagged) {
            m_out.pair(70, "1");
            mend(Note::ClosingFlag);
        }
    }

    DxfRecords m_records;
    DxfRecords m_again; ///< for what must be read twice
    PairWriter m_out;
    PrepareReport& m_report;
    Entity m_entity;
    Section m_section = Section::None;
    bool m_hasHeader = false;
    bool m_hasEof = false;
    bool m_changed = false; ///< the entity at hand
};

} // namespace

void repairDxf(std::string_view bytes, QIODevice& out, PrepareReport& report)
{
    DxfRepair(bytes, out, report).run();
}

} // namespace prep
