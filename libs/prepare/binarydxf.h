#pragma once

#include <QByteArray>

#include <string_view>

namespace prep {

/// Whether the bytes begin as a binary drawing does.
bool isBinaryDxf(std::string_view bytes);

/// A binary drawing as an ASCII one, pair for pair. Group codes of one byte (up to Release 12) and
/// of two bytes are both read. Where the bytes break off or make no sense the drawing ends;
/// `complete` tells whether that was so.
QByteArray asciiOfBinaryDxf(std::string_view bytes, bool* complete);

} // namespace prep
