#pragma once

#include "prepare/dxfentity.h"
#include "prepare/dxfrecords.h"
#include "prepare/preparereport.h"

#include <optional>

namespace prep {

/// Reads the entity that begins with the current record of `records`, with the records that belong
/// to it (the vertices of a POLYLINE, the attributes of an INSERT). Gives the reason when it does
/// not become an Entity; `entity` then has its type and nothing else to rely on.
std::optional<Note> readEntity(DxfRecords& records, Entity& entity);

} // namespace prep
