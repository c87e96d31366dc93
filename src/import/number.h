#pragma once

#include <QStringView>

/// The value of `text` as QString::toDouble gives it, to the last bit, with the same `ok`; plain
/// decimal numbers are converted without a temporary string.
double toDouble(QStringView text, bool* ok);

/// Reads two plain decimal numbers parted by one space, the usual form of a vertex. False, with
/// the outputs undefined, for any other text, which may still hold two numbers.
bool toPlainPair(QStringView text, double* first, double* second);
