#include "import/dxftext.h"
#include "import/linereader.h"
#include "literal/literaldxfimport.h"
#include "packedinput.h"
#include "require.h"

#include <QTextCodec>
#include <QTextStream>

namespace {

/// The lines of a file are those of the stream, with their ends; each is decoded as a text of a
/// drawing is.
void requireLines(const QString& fileName, QTextCodec* codec)
{
    LineReader reader;
    require(reader.open(fileName, codec), "the file opens");
    QFile file(fileName);
    require(file.open(QIODevice::ReadOnly | QIODevice::Text), "the file opens as a stream");
    QTextStream stream(&file);
    stream.setCodec(codec);
    while (!stream.atEnd()) {
        require(!reader.atEnd(), "the reader ends no sooner than the stream");
        const QString line = stream.readLine();
        require(reader.readLine().toString() == line, "the lines are the stream's");
        const QString decoded = decodeText(line, codec);
        require(decoded == literal::decodeText(line, codec), "the text is decoded literally");
    }
    require(reader.atEnd(), "the reader ends with the stream");
}

} // namespace

/// The text: a file in the encoding that the letters choose.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TempFiles folder;
    const PackedInput input(data, size);
    QTextCodec* codec = QTextCodec::codecForName(input.options().encoding);
    requireLines(folder.write(QStringLiteral("text"), input.text(0)),
        codec ? codec : QTextCodec::codecForLocale());
    return 0;
}
