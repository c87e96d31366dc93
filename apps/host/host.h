#pragma once

struct HostOptions;
class QString;

/// Prints a line in UTF-8, whatever the locale.
void say(const QString& line);

/// Loads the plug-in, lists its operations and runs the one asked for.
///
/// Returns the program's exit code: 0 when all went well, 1 on a failure, 2 when the operation gave
/// no result because it was cancelled or is unknown.
int runHost(const HostOptions& options, bool unattended);
