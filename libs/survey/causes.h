#pragma once

#include <QString>

#include <optional>
#include <vector>

/// Why an import gives less than, or other than, what its user expects.
enum class Cause {
    EmptyFile,
    NotText, ///< binary drawing
    OtherFormat, ///< a file of another kind under this name
    BlankFirstLine,
    LeadingComment,
    MissingHeader,
    NotDxf,
    BlockInsertsOnly,
    MTextOnly,
    UnsortedTexts, ///< no point-like entity: texts stay in the order of the file
    ClosedFlag,
    Bulges,
    LeftOut, ///< kinds that are not read, beside others that are
    HiddenLayers,
    PaperSpace,
    Mesh,
    OneVertex,
    MifHeader,
    Delimiter,
    DelimiterMissing,
    MidDelimiter,
    NoData,
    MidOtherCase,
    MidMissing,
    MidUnreadable,
    MidBlankRow,
    MidTooShort,
    MidTooLong,
    Collection,
    CountOnNextLine,
    BlankLine,
    TrailingBlankLine,
    BadObject,
    NothingInside,
    NoObjects,
    Axes,
    Degrees,
    Encoding,
};

/// A cause as found in a file.
struct FoundCause {
    Cause cause;
    QString fileName;
    int line = 0; ///< one-based; 0 when it is no matter of one line
    QString detail; ///< what the text says in particular
    qint64 count = 0; ///< in how many places; 0 when it is no matter of a number
    QString source; ///< the file to import; the other one may be its companion
};

/// All causes, in the order in which they are listed.
std::vector<Cause> allCauses();
/// The cause of this name; none for no cause.
std::optional<Cause> causeOfId(const QString& id);

/// The cause's name for programs that read the answer.
QString causeId(Cause cause);
/// What is the matter, in one sentence.
QString causeText(const FoundCause& found);
/// Whether a prepared copy of the file is a remedy.
bool isMendedByCopy(Cause cause);
/// What to do about it, in one sentence; a command line stands behind a colon, to be copied.
QString remedyText(const FoundCause& found);
