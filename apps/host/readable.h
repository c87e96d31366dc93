#pragma once

#include <QString>

/// Why the window reads no file of this name: it is that of a pipe or a device, which cannot be
/// read twice, and may keep whoever opens it waiting for ever. Empty for other names.
QString pipeTrouble(const QString& fileName);
