#pragma once

#include "survey/causes.h"

/// The call of the command `prepare` that writes a copy of a file without this cause, as a shell
/// takes it; empty where there is no such call. `fileName` is the file that is imported, which need
/// not be the one that the cause is found in.
QString prepareCall(const FoundCause& found, const QString& fileName);
