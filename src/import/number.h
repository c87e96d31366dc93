#pragma once

#include <QStringView>

/// The value of `text` as QString::toDouble gives it, to the last bit, with the same `ok`; plain
/// decimal numbers are converted without a temporary string.
double toDouble(QStringView text, bool* ok);
