#include "prepare/preparemif.h"

#include "import/formats.h"
#include "prepare/midrows.h"
#include "prepare/mifheader.h"
#include "prepare/mifreader.h"
#include "prepare/mifwriter.h"
#include "prepare/sourcetext.h"
#include "survey/encodingguess.h"

#include <QDir>
#include <QFileInfo>
#include <QTextCodec>

namespace prep {

namespace {

/// What a header calls an encoding.
QByteArray charsetOf(const QByteArray& codec)
{
    const QByteArray name = codec.toLower();
    if (name == "windows-1251")
        return "WindowsCyrillic";
    if (name == "windows-1252")
        return "WindowsLatin1";
    return name == "utf-8" ? "UTF-8" : "Neutral";
}

class MifPreparation {
public:
    MifPreparation(const SourceText& mif, const QByteArray& mid, bool transcoded,
        const PrepareOptions& options, PrepareReport& report)
        : m_mif(view(mif.bytes))
        , m_mid(view(mid))
        , m_codec(mif.codec)
        , m_transcoded(transcoded)
        , m_options(options)
        , m_report(report)
    {
    }

    bool run(bool hasMid, QIODevice& mifOut, QIODevice& midOut)
    {
        MifReader reader(m_mif);
        std::vector<std::string_view> lines;
        if (!reader.readHeader(lines)) {
            m_report.failure = QStringLiteral("это не файл MIF: в нём нет строки Data");
            return false;
        }
        MifHeader header(lines);
        m_report.declaredEncoding =
            m_codec->toUnicode(header.charset().data(), static_cast<int>(header.charset().size()))
                .remove(QLatin1Char('"'));
        const char delimiter = header.delimiter();
        MidRows rows(m_mid, delimiter, header.columnCount(), countObjects(reader));
        if (!findNameField(header))
            return false;
        // The readers take a mark for a delimiter, but nothing that looks like a space.
        const bool isMark = delimiter > ' ' && delimiter < '\x7F';
        const bool splits = !isMark || m_nameField > 0;
        m_report.note(Note::MifDelimiter, isMark ? 0 : 1);
        m_report.note(Note::MifHeader, header.isReadable() ? 0 : 1);
        m_report.note(Note::MidMade, hasMid ? 0 : 1);
        header.addColumnIfNone();
        const RowForm form{ delimiter, splits, m_nameField, header.columnCount() };
        MifWriter writer(mifOut, midOut, rows, form, m_options, m_report);
        const bool flattens = m_options.level == Level::Flatten;
        writer.start(header, flattens, m_transcoded ? charsetOf(m_codec->name()) : QByteArray());
        MifObject object;
        while (reader.next(object))
            writer.take(object);
        writer.finish();
        m_report.note(Note::MifLines, reader.mendedLines());
        return true;
    }

private:
    /// How many rows the objects behind the header use.
    static size_t countObjects(MifReader reader)
    {
        MifObject object;
        size_t count = 0;
        qint64 inCollection = 0;
        while (reader.next(object)) {
            if (inCollection-- > 0)
                continue;
            ++count;
            inCollection = object.collected;
        }
        return count;
    }

    bool findNameField(MifHeader& header)
    {
        const bool isPlace = m_options.nameColumn.has_value();
        if (m_options.nameField.isEmpty() && !isPlace)
            return true;
        const std::optional<size_t> column = isPlace
            ? static_cast<size_t>(*m_options.nameColumn)
            : header.column(m_codec->fromUnicode(m_options.nameField));
        if (!column || *column >= header.columnCount()) {
            m_report.failure =
                QStringLiteral("нет столбца «%1» (--name-field)").arg(m_options.nameField);
            return false;
        }
        m_nameField = *column;
        header.putFirst(*column);
        m_report.note(Note::NameFieldFirst, *column > 0 ? 1 : 0);
        return true;
    }

    std::string_view m_mif;
    std::string_view m_mid;
    const QTextCodec* m_codec;
    bool m_transcoded;
    const PrepareOptions& m_options;
    PrepareReport& m_report;
    size_t m_nameField = 0;
};

} // namespace

bool prepareMif(MifPair pair, const PrepareOptions& options, QIODevice& mifOut, QIODevice& midOut,
    PrepareReport& report)
{
    // The texts are in the MID; the MIF may have some, too.
    PrepareReport midReport;
    const SourceText mid = sourceText(pair.mid.value_or(QByteArray()), options, {}, midReport);
    PrepareOptions mifOptions = options;
    EncodingGuess midGuess;
    midGuess.add(view(pair.mid.value_or(QByteArray())));
    const bool midTells = !midGuess.codecName().isEmpty();
    if (midTells) {
        mifOptions.fromEncoding = midReport.sourceEncoding;
        mifOptions.encoding = midReport.encoding;
    }
    const SourceText mif = sourceText(pair.mif, mifOptions, {}, report);
    SourceText rows = mid;
    if (!midTells && pair.mid)
        rows.bytes = *pair.mid;
    const bool hasMid = pair.mid.has_value();
    pair = MifPair();
    const bool transcoded = report.notes().count(Note::Transcoded) > 0;
    return MifPreparation(mif, rows.bytes, transcoded, options, report).run(hasMid, mifOut, midOut);
}

QString midFileOf(const QString& mifFileName)
{
    const Format* const mif = formatOfId(QStringLiteral("mif"));
    QString usual = mif->companionFile(mifFileName);
    if (QFileInfo::exists(usual))
        return usual;
    const QFileInfo wanted(usual);
    const QDir folder = wanted.dir();
    for (const QString& name : folder.entryList(QDir::Files)) {
        if (name.compare(wanted.fileName(), Qt::CaseInsensitive) == 0)
            return folder.filePath(name);
    }
    return {};
}

} // namespace prep
