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

void notePassedOver(const DxfPairCursor& cursor, PrepareReport& report)
{
    report.note(Note::Comments, cursor.comments());
    report.note(Note::BlankLines, cursor.blankLines());
    report.note(Note::StrayLines, cursor.strayLines());
}

/// What nothing but ASCII is taken for: what the header says, unless the drawing holds characters
/// that it writes as \U+XXXX because its code page has not got them.
QByteArray codecOfAscii(const QByteArray& bytes, const DxfEncoding& declared)
{
    return declared.isUtf8 || bytes.contains("\\U+") ? QByteArray() : declared.codec;
}

void flattenDxf(const SourceText& text, const DxfDrawing& drawing, const PrepareOptions& options,
    QIODevice& out, PrepareReport& report)
{
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
    const DxfDrawing drawing(view(text.bytes));
    if (!drawing.hasSections() && !drawing.hasEntities()) {
        report.failure = QStringLiteral("это не чертёж DXF");
        return false;
    }
    notePassedOver(drawing.cursor(), report);
    if (options.level == Level::Repair)
        repairDxf(view(text.bytes), out, report);
    else
        flattenDxf(text, drawing, options, out, report);
    return true;
}

} // namespace prep
