#pragma once

#include "prepare/preparereport.h"

#include <string_view>

class QIODevice;

namespace prep {

/// Writes an ASCII drawing pair by pair as the readers take it: with a HEADER section in front,
/// with an end, without comments and stray lines, and without entities of model space that would
/// stop the readers or be misread by them. No coordinate and no text changes.
void repairDxf(std::string_view bytes, QIODevice& out, PrepareReport& report);

} // namespace prep
