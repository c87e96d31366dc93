#pragma once

#include "prepare/prepareoptions.h"
#include "prepare/preparereport.h"

#include <QByteArray>

class QIODevice;

namespace prep {

/// Writes the drawing in `bytes` (ASCII or binary DXF) as one that the readers take whole, and
/// tells in `report` what that took. False, with report.failure told and nothing written, when the
/// bytes are no drawing.
bool prepareDxf(
    QByteArray bytes, const PrepareOptions& options, QIODevice& out, PrepareReport& report);

} // namespace prep
