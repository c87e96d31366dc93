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

/// Takes the first token off a text, parted by white space from the others; empty where there is
/// none.
TextView takeToken(TextView& text);

/// Whether `token` in upper case equals the upper-case `keyword`.
bool isMifKeyword(TextView token, QLatin1String keyword);

/// The kind of the object that a line starts, whose first token tells it; null when it starts none.
/// Where it starts one, `line` is then what stands behind that token.
const MifObjectKind* takeObjectKind(TextView& line);
