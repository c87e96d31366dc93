#pragma once

#include "import/formats.h"

#include <optional>
#include <string_view>

/// A kind of files that is known by how they start.
struct FileKind {
    std::string_view start; ///< ASCII letters in lower case
    const char* name; ///< for people, in Russian
    const char* format; ///< the identifier of the format that reads it; empty for none
    bool isBinaryDrawing = false;

    bool isOf(const Format& wanted) const { return wanted.id == QLatin1String(format); }
};

/// The kind of a file by its first bytes; none where they tell nothing.
std::optional<FileKind> fileKindOf(std::string_view start);
