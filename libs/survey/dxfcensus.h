#pragma once

#include "survey/bytelines.h"
#include "survey/filesurvey.h"

#include <QByteArray>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

/// Counts what a drawing holds, beyond the place where a reader stops too.
class DxfCensus {
public:
    /// Is given each text that may become a designation.
    using TextReceiver = std::function<void(std::string_view)>;

    explicit DxfCensus(TextReceiver receiver)
        : m_receiver(std::move(receiver))
    {
    }

    void take(ByteLines& lines);

    /// A number of entities, and the line on which the first of them starts.
    struct Places {
        qint64 count = 0;
        int line = 0;
    };

    std::map<std::string, KindCount> kinds;
    QByteArray codepage; ///< what the header says
    qint64 bulges = 0; ///< other than nought
    qint64 hidden = 0; ///< drawn entities on layers that are frozen or switched off
    qint64 paper = 0; ///< lines and polylines of the paper space
    qint64 insertsWithGeometry = 0; ///< inserts of blocks that hold lines or curves
    Places meshes; ///< POLYLINE that is a mesh
    Places openedByFlag; ///< closed POLYLINE that the reader takes for open ones
    QByteArray openingFlags; ///< of the first of them
    Places singleVertex; ///< LWPOLYLINE with one vertex

private:
    enum class Section { Other, Header, Tables, Blocks, Entities };
    enum class Role {
        None,
        Section,
        Layer,
        Block,
        Text,
        Line,
        Polyline,
        Vertex,
        LwPolyline,
        Insert,
        Point,
        Other
    };

    void takePair(int code, std::string_view value, int line);
    void takeValue(int code, std::string_view value);
    void takeName(std::string_view name);
    void takeBulge(std::string_view number);
    void takeFlags(std::string_view flags);
    void takeCount(std::string_view count);
    void startEntity(std::string_view kind, int line);
    void startBlockContent(std::string_view kind);
    void countKind(std::string_view kind, const char* suffix);
    void endEntity();
    void endPolyline();
    bool isDrawn() const { return m_role >= Role::Text && m_role != Role::Vertex; }
    Role roleOf(std::string_view kind) const;

    TextReceiver m_receiver;
    Section m_section = Section::Other;
    Role m_role = Role::None;
    int m_line = 0; ///< where the entity starts
    bool m_codepageFollows = false;

    std::string m_lastKind; ///< the kind that was counted last, and its count
    KindCount* m_lastCount = nullptr;

    std::string m_layer; ///< of the layer table
    bool m_layerIsHidden = false;
    std::set<std::string, std::less<>> m_hiddenLayers;
    std::string m_block; ///< whose contents are being read
    std::set<std::string, std::less<>> m_blocksWithGeometry;

    bool m_isHidden = false; ///< the entity, by its layer
    bool m_isOnPaper = false;
    bool m_holdsGeometry = false; ///< the entity is an insert of a block with geometry
    int m_polylineLine = 0; ///< where the POLYLINE starts; 0 outside of one
    QByteArray m_polylineFlags;
    bool m_polylineIsClosed = false; ///< a code 70 is 1, in it or in one of its vertices
};
