#pragma once

#include "catalogue/cataloguecolumns.h"

class QSettings;

/// Writes the map into the subgroup "FieldNumValueMap" of the current group, whose earlier
/// contents go; empty texts are left out.
void saveFieldMap(QSettings& settings, const FieldNumValueMap& map);

/// Replaces the map by what saveFieldMap stored; keys that are no column and empty texts are
/// skipped.
void loadFieldMap(QSettings& settings, FieldNumValueMap& map);
