#pragma once

#include <QByteArray>
#include <QString>

#include <string_view>

namespace prep {

/// What the header of a drawing says of its encoding.
struct DxfEncoding {
    QString codePage; ///< as the header writes it; empty when it does not
    QByteArray codec; ///< the name of the codec for it; empty for an unknown one
    bool hasEscapes = true; ///< a text may hold \U+XXXX; not so up to Release 12
    bool isUtf8 = false; ///< drawings of Release 2007 and later are, whatever the code page says
};

/// Reads the header of a drawing, as far as it stands near the beginning.
DxfEncoding declaredEncoding(std::string_view bytes);

/// What a header calls an encoding; empty for one that it has no name for.
QByteArray codePageOf(const QByteArray& codec);

} // namespace prep
