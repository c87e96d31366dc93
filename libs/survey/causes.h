#pragma once

#include <QString>

/// Why an import gives less than, or other than, what its user expects.
enum class Cause {
    EmptyFile,
    NotText, ///< binary drawing
    BlankFirstLine,
    LeadingComment,
    MissingHeader,
    NotDxf,
    BlockInsertsOnly,
    MTextOnly,
    UnsortedTexts, ///< no point-like entity: texts stay in the order of the file
    ClosedFlag,
    Bulges,
    MifHeader,
    Delimiter,
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
    Encoding,
};

/// A cause as found in a file.
struct FoundCause {
    Cause cause;
    QString fileName;
    int line = 0; ///< one-based; 0 when it is no matter of one line
    QString detail; ///< what the text says in particular
    qint64 count = 0; ///< in how many places; 0 when it is no matter of a number
};

/// The cause's name for programs that read the answer.
QString causeId(Cause cause);
/// What is the matter, in one sentence.
QString causeText(const FoundCause& found);
/// What to do about it, in one sentence.
QString remedyText(const FoundCause& found);
