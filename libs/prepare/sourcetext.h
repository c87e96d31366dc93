#pragma once

#include "prepare/prepareoptions.h"
#include "prepare/preparereport.h"

#include <QByteArray>

class QTextCodec;

namespace prep {

/// The text of a file in the encoding of the result.
struct SourceText {
    QByteArray bytes;
    const QTextCodec* codec = nullptr; ///< that of the bytes
    const QTextCodec* byteCodec = nullptr; ///< that of the file, where it was another one
};

/// Tells the encoding of a file from its bytes, unless the options name it, and transcodes the file
/// if the options ask for it or if it is one that the readers do not take (UTF-16, a byte-order
/// mark). Tells the report of it. `codecOfAscii` names the encoding of a file of nothing but ASCII,
/// which the bytes do not tell; empty for UTF-8.
SourceText sourceText(const QByteArray& bytes, const PrepareOptions& options,
    const QByteArray& codecOfAscii, PrepareReport& report);

inline std::string_view view(const QByteArray& bytes)
{
    return { bytes.constData(), static_cast<size_t>(bytes.size()) };
}

} // namespace prep
