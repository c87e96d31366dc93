#pragma once

#include "import/textview.h"

/// The value of `text` as QString::toDouble gives it, to the last bit, with the same `ok`; plain
/// decimal numbers are converted without a temporary string.
double toDouble(TextView text, bool* ok);

/// The value of `text` as QString::toInt gives it in base 10, with the same `ok`.
int toInt(TextView text, bool* ok = nullptr);

/// Reads two plain decimal numbers parted by one space, the usual form of a vertex. False, with
/// the outputs undefined, for any other text, which may still hold two numbers.
bool toPlainPair(TextView text, double* first, double* second);
