#include "prepare/preparedxf.h"

#include "prepare/binarydxf.h"
#include "prepare/contourjoiner.h"
#include "prepare/dxfencoding.h"
#include "prepare/dxfrepair.h"
#include "prepare/dxfwriter.h"
#include "prepare/flattener.h"
#include "prepare/sourcetext.h"

#include <QTextCodec>

namespace prep {

namespace {

/// Whether there is anything to a drawing but ends.
bool isDrawing(std::string_view bytes)
{
    DxfRecords records(bytes);
    while (records.next()) {
        if (records.type() != "ENDSEC" && records.type() != "EOF")
            return true;
    }
    return false;
}

/// What nothing but ASCII is taken for: what the header says, unless the drawing holds characters
/// that it writes as \U+XXXX because its code page has not got them.
QByteArray codecOfAscii(const QByteArray& bytes, const DxfEncoding& declared)
{
    if (declared.isUtf8)
        return {};
    const bool isEscaped =
        declared.hasEscapes && view(bytes).find("\\U+") != std::string_view::npos;
    return isEscaped ? QByteArray() : declared.codec;
}

void flattenDxf(
    const SourceText& text, const PrepareOptions& options, QIODevice& out, PrepareReport& report)
{
    const DxfDrawing drawing(view(text.bytes), report.scanned);
    report.notePassedOver(drawing.cursor());
    DxfWriter writer(out, text.codec->name(), report);
    ContourJoiner joiner(options.join.value_or(0), writer, report);
    FlatSink& sink = options.join ? static_cast<FlatSink&>(joiner) : writer;
    Flattener(drawing, options, { text.codec, text.byteCodec }, text.bytes.size(), sink, report)
        .run();
    joiner.finish();
    writer.finish();
}

} // namespace

bool prepareDxf(
    QByteArray bytes, const PrepareOptions& options, QIODevice& out, PrepareReport& report)
{
    if (isBinaryDxf(view(bytes))) {
        bool complete = false;
        bytes = asciiOfBinaryDxf(view(bytes), &complete);
        report.note(Note::Binary);
        report.note(Note::BrokenOff, complete ? 0 : 1);
    }
    const DxfEncoding declared = declaredEncoding(view(bytes));
    report.declaredEncoding = declared.codePage;
    const SourceText text = sourceText(bytes, options, codecOfAscii(bytes, declared), report);
    bytes.clear();
    if (!isDrawing(view(text.bytes))) {
        report.failure = QStringLiteral("это не чертёж DXF");
        return false;
    }
    if (options.level == Level::Repair)
        repairDxf(view(text.bytes), out, report);
    else
        flattenDxf(text, options, out, report);
    return true;
}

} // namespace prep
