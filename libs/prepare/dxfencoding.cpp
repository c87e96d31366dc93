#include "prepare/dxfencoding.h"

#include "prepare/dxfpaircursor.h"

#include <QTextCodec>

namespace prep {

namespace {

/// No header is as long as this, however many comments stand before it.
constexpr size_t headerSize = 1 << 18;

QByteArray codecOfCodePage(const QString& codePage)
{
    const QByteArray name = codePage.toLatin1().toLower();
    if (name.startsWith("ansi_"))
        return "windows-" + name.mid(5);
    return name.startsWith("dos") ? "IBM" + name.mid(3) : QByteArray();
}

void readVersion(std::string_view version, DxfEncoding& encoding)
{
    encoding.isUtf8 = version >= "AC1021";
    encoding.hasEscapes = version > "AC1009";
}

} // namespace

DxfEncoding declaredEncoding(std::string_view bytes)
{
    DxfPairCursor cursor(bytes.substr(0, headerSize));
    DxfEncoding encoding;
    std::string_view variable;
    DxfPair pair;
    while (cursor.next(pair) && !(pair.code == 0 && pair.text() == "ENDSEC")) {
        if (pair.code == 9)
            variable = pair.text();
        else if (variable == "$DWGCODEPAGE" && pair.code == 3)
            encoding.codePage =
                QString::fromLatin1(pair.text().data(), static_cast<int>(pair.text().size()));
        else if (variable == "$ACADVER" && pair.code == 1)
            readVersion(pair.text(), encoding);
    }
    const QByteArray codec = codecOfCodePage(encoding.codePage);
    if (QTextCodec::codecForName(codec))
        encoding.codec = codec;
    return encoding;
}

QByteArray codePageOf(const QByteArray& codec)
{
    const QByteArray name = codec.toLower();
    if (name.startsWith("windows-"))
        return "ANSI_" + name.mid(8);
    return name.startsWith("ibm") ? "DOS" + name.mid(3) : QByteArray();
}

} // namespace prep
