#include "prepare/sourcetext.h"

#include "survey/encodingguess.h"

#include <QTextCodec>

namespace prep {

namespace {

const QTextCodec* codecOf(const QByteArray& name)
{
    const QTextCodec* const codec = QTextCodec::codecForName(name);
    return codec ? codec : QTextCodec::codecForName("UTF-8");
}

QByteArray wideCodec(std::string_view bytes)
{
    return utf16WithoutMark(bytes.substr(0, EncodingGuess::sampleSize));
}

QByteArray likelyCodec(std::string_view bytes)
{
    QByteArray wide = wideCodec(bytes);
    if (!wide.isEmpty())
        return wide;
    EncodingGuess guess;
    guess.add(bytes);
    return guess.codecName();
}

/// `bytes` without a byte-order mark, and as UTF-8 if they are UTF-16 or UTF-32.
QByteArray asUtf8(const QByteArray& bytes)
{
    constexpr int utf8MarkSize = 3;
    const QByteArray mark = codecOfMark(view(bytes));
    const QByteArray name = mark.isEmpty() ? wideCodec(view(bytes)) : mark;
    if (name.isEmpty())
        return bytes;
    if (name == "UTF-8")
        return bytes.mid(utf8MarkSize);
    return codecOf(name)->toUnicode(bytes).toUtf8();
}

} // namespace

SourceText sourceText(const QByteArray& bytes, const PrepareOptions& options,
    const QByteArray& codecOfAscii, PrepareReport& report)
{
    SourceText text;
    text.bytes = asUtf8(bytes);
    const bool wasMarked = text.bytes.constData() != bytes.constData();
    const QByteArray mark = codecOfMark(view(bytes));
    const QByteArray told = !mark.isEmpty() ? mark
        : !options.fromEncoding.isEmpty()   ? options.fromEncoding
                                            : likelyCodec(view(bytes));
    const QTextCodec* const source = codecOf(told.isEmpty() ? codecOfAscii : told);
    // What asUtf8() has changed is UTF-8 now.
    const QTextCodec* const current = wasMarked ? codecOf("UTF-8") : source;
    text.codec = options.encoding.isEmpty() ? current : codecOf(options.encoding);
    if (text.codec != current) {
        text.bytes = text.codec->fromUnicode(current->toUnicode(text.bytes));
        text.byteCodec = source;
    }
    report.note(Note::Transcoded, text.codec != source ? 1 : 0);
    report.sourceEncoding = source->name();
    report.encoding = text.codec->name();
    return text;
}

} // namespace prep
