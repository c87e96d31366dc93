#pragma once

#include <QString>
#include <QStringList>

/// The name among `names` that `typed` was likely meant to be; empty where none is near.
QString nearestName(const QString& typed, const QStringList& names);
/// "; возможно, «…»" for the nearest name; empty where none is near.
QString suggestionText(const QString& typed, const QStringList& names);
