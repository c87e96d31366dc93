#pragma once

#include <QString>

/// The file that an argument names: for "-" standard input, as a name that can be opened.
QString inputFileName(const QString& argument);

/// Makes standard input a file, where `fileName` is its name and it is a pipe or a terminal: all of
/// it is read. An import opens its file more than once. Throws a Failure when that cannot be done.
void spoolStandardInput(const QString& fileName);
