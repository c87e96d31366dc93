#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <functional>
#include <map>
#include <string>
#include <string_view>

namespace prep {

class DxfPairCursor;

/// What was done to a file, or to a part of it.
enum class Note {
    // Mended without loss.
    Converted,
    Binary,
    Comments,
    BlankLines,
    StrayLines,
    HeaderAdded,
    SectionAdded,
    EofAdded,
    ClosingFlag,
    VertexCount,
    SeqendAdded,
    Transcoded,
    // Made into what the readers take.
    InsertExploded,
    InsertAsPoint,
    CircleAsPoint,
    MissingBlock,
    FromBlock,
    Bulges,
    Chords,
    Extrusion,
    AsText,
    TextDecoded,
    Joined,
    HatchOutlines,
    PointAdded,
    AxesSwapped,
    Scaled,
    MidRenamed,
    MidMade,
    MifHeader,
    MifDelimiter,
    MidRows,
    MifLines,
    CollectionParts,
    OutlineOfShape,
    PointsOfMultipoint,
    NameFieldFirst,
    Transform,
    // Left out on purpose.
    PaperSpace,
    Mesh,
    Surface,
    NoContour,
    LayerLeftOut,
    Invisible,
    LabelLeftOut,
    HatchLeftOut,
    PointsWithoutTexts,
    EmptyLabel,
    // Could not be carried over.
    Incomplete,
    Unreadable,
    RecursiveBlock,
    ExternalBlock,
    TooDeep,
    TooMuch,
    CoarseChords,
    FitPoints,
    Unencodable,
    BrokenOff,
    MidTooShort,
    MidTooLong,
};

/// What a note means for the file.
enum class Effect { Mended, LeftOut, Lost };

Effect effectOf(Note note);
/// The note's name for programs that read the answer.
QString noteId(Note note);
/// What was done, in a few words.
QString noteText(Note note);

/// What became of the entities of one kind.
struct KindTally {
    qint64 kept = 0;
    qint64 changed = 0;
    qint64 leftOut = 0;
    qint64 lost = 0;
};

/// What was chosen for the inserts of a block.
struct BlockChoice {
    qint64 inserts = 0;
    bool asPoint = false;
};

/// What became of a file.
class PrepareReport {
public:
    void note(Note note, qint64 count = 1)
    {
        if (count > 0)
            m_notes[note] += count;
    }
    /// What a cursor over a drawing has passed over.
    void notePassedOver(const DxfPairCursor& cursor);
    /// An entity was written; `changed` as something else than stood in the file.
    void write(std::string_view kind, bool changed)
    {
        KindTally& tally = tallyOf(kind);
        ++(changed ? tally.changed : tally.kept);
        if (entityWritten)
            entityWritten();
    }
    /// Entities were not written, for the reason that the note tells.
    void drop(std::string_view kind, Note reason, qint64 count = 1);

    /// Tells what was chosen for a block. Of very many blocks not all are told one by one.
    void tellBlock(const QString& name, const BlockChoice& choice);

    bool hasLosses() const;
    const std::map<Note, qint64>& notes() const { return m_notes; }
    const std::map<std::string, KindTally>& kinds() const { return m_kinds; }

    std::function<void()> entityWritten; ///< called for each entity in write(); may be empty
    /// Called while a drawing is looked through, before anything of it is written, with the bytes
    /// that lie behind and all of them; with all at the end. May be empty.
    std::function<void(qint64 bytes, qint64 whole)> scanned;
    QString failure; ///< why nothing was written; empty when something was
    QByteArray encoding; ///< of the file that was written; a codec's name
    QByteArray sourceEncoding; ///< as told from the bytes, or as it was given
    QString declaredEncoding; ///< what the file's header says
    QMap<QString, BlockChoice> blocks; ///< see tellBlock()
    qint64 otherBlocks = 0; ///< how many more there were
    qint64 contours = 0; ///< written
    qint64 points = 0;
    qint64 labels = 0;

private:
    KindTally& tallyOf(std::string_view kind);

    std::map<Note, qint64> m_notes;
    std::map<std::string, KindTally> m_kinds;
};

} // namespace prep
