#pragma once

#include "import/textview.h"

/// What the reader makes of an object of a MIF file.
enum class MifKeyword {
    Point,
    Line,
    Pline,
    Region,
    Collection,
    Skipped, ///< an object that is passed over
};

/// A kind of objects in a MIF file.
struct MifObjectKind {
    QLatin1String name; ///< in capitals
    MifKeyword keyword;
};

/// Whether `token` in upper case equals the upper-case `keyword`.
bool isMifKeyword(TextView token, QLatin1String keyword);

/// False for most lines that start no object: those whose first two letters begin no keyword.
bool mayStartObject(TextView line);

/// The kind of the object that a line starts whose first token this is; null when it starts none.
const MifObjectKind* mifObjectKind(TextView token);
