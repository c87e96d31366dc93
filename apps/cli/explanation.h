#pragma once

#include <QString>

/// What a cause of a check's findings means and what to do about it; "all" stands for all of them.
/// Ends the command for an unknown one.
QString explanation(const QString& causeId);
