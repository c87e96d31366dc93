#include "importoptions.h"

#include "console.h"
#include "import/mapimport.h"
#include "status.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QTextCodec>

#include <algorithm>
#include <limits>
#include <memory>

namespace {

constexpr int maxPointPrefLength = 20;
constexpr int maxStartNum = 999999999;
QStringList* messageSink = nullptr;

void takeMessage(const QString& message)
{
    messageSink->append(message);
}

/// Keeps what an import reports.
class MessageCollector : public ImportObserver {
public:
    explicit MessageCollector(QStringList& messages)
        : m_messages(messages)
    {
    }
    void failed(const ImportFailure& failure) override { m_messages.append(failure.text()); }

private:
    QStringList& m_messages;
};

std::unique_ptr<MapImport> makeImporter(const Format& format)
{
    // An importer takes the system's codec when it is made.
    const SystemCodecScope systemCodec;
    return format.makeImporter();
}

QByteArray defaultEncoding()
{
    return ImportOptions::offered().encoding;
}

/// The identifiers of the formats, as a help text names them.
QString formatNames()
{
    QStringList names;
    for (const Format& format : formats())
        names.append(format.id);
    return names.join(QStringLiteral(" или "));
}

bool readSwitch(const QCommandLineParser& parser, const QString& option)
{
    const QString value = parser.value(option);
    if (value == QLatin1String("on"))
        return true;
    if (value == QLatin1String("off"))
        return false;
    throw Failure{ WrongUsage,
        QStringLiteral("--%1: ожидается on или off, а не «%2»").arg(option, value) };
}

QByteArray readEncoding(const QCommandLineParser& parser)
{
    const QString text = parser.value(QStringLiteral("encoding"));
    const QByteArray name = text.toLatin1();
    if (name != defaultEncoding() && !QTextCodec::codecForName(name)) {
        throw Failure{ WrongUsage,
            QStringLiteral("неизвестная кодировка «%1»; список даёт --list-encodings").arg(text) };
    }
    return name;
}

} // namespace

const Format& ImportArguments::formatOf(const QString& fileName) const
{
    const Format* const found = format ? format : formatOfFile(fileName);
    if (found)
        return *found;
    throw Failure{ WrongUsage,
        QStringLiteral("%1: формат по расширению не определить; укажите --format %2")
            .arg(fileName, formatNames()) };
}

QByteArray ImportArguments::codecName() const
{
    return options.encoding == defaultEncoding() ? systemEncoding() : options.encoding;
}

QList<QCommandLineOption> importCommandLineOptions()
{
    const ImportOptions defaults = ImportOptions::offered();
    const auto option = [](const char* name, const char* text, const char* value,
                            const QString& defaultValue = QString()) {
        return QCommandLineOption(QString::fromLatin1(name), QString::fromUtf8(text),
            QString::fromUtf8(value), defaultValue);
    };
    return {
        option("format", "Формат файлов: mif или dxf; без параметра - по расширению.", "ФОРМАТ"),
        option("points", "Отдельный файл точек.", "ФАЙЛ"),
        option("search-points", "Искать обозначения точек: on или off; без параметра - on.",
            "on|off", QStringLiteral("on")),
        option("point-prefix", "Префикс ненайденных точек; без параметра - «н».", "ТЕКСТ",
            defaults.pointPref),
        option("point-start", "Начальный номер ненайденных точек; без параметра - 1.", "ЧИСЛО",
            QString::number(defaults.pointStartNum)),
        option("search-objects", "Искать обозначения объектов: on или off; без параметра - on.",
            "on|off", QStringLiteral("on")),
        option("object-prefix", "Префикс объектов без обозначения; без параметра - «:ЗУ».", "ТЕКСТ",
            defaults.objectPref),
        option("object-start", "Начальный номер объектов без обозначения; без параметра - 1.",
            "ЧИСЛО", QString::number(defaults.objectStartNum)),
        option("encoding", "Кодировка файлов; без параметра - Default, то есть кодировка системы.",
            "ИМЯ", QString::fromLatin1(defaults.encoding)),
        option("list-encodings", "Показать имена кодировок и закончить работу.", ""),
    };
}

ImportArguments readImportArguments(const QCommandLineParser& parser)
{
    ImportArguments arguments;
    const QString format = parser.value(QStringLiteral("format")).toLower();
    arguments.format = formatOfId(format);
    if (parser.isSet(QStringLiteral("format")) && !arguments.format) {
        throw Failure{ WrongUsage,
            QStringLiteral("--format: ожидается %1, а не «%2»").arg(formatNames(), format) };
    }
    ImportOptions& options = arguments.options;
    options.pointFileName = parser.value(QStringLiteral("points"));
    options.searchPointDefs = readSwitch(parser, QStringLiteral("search-points"));
    options.pointPref = parser.value(QStringLiteral("point-prefix"));
    if (options.pointPref.size() > maxPointPrefLength) {
        throw Failure{ WrongUsage,
            QStringLiteral("--point-prefix: не больше %1 символов").arg(maxPointPrefLength) };
    }
    options.pointStartNum = readNumber(parser, QStringLiteral("point-start"), 1, maxStartNum);
    options.searchObjectDefs = readSwitch(parser, QStringLiteral("search-objects"));
    options.objectPref = parser.value(QStringLiteral("object-prefix"));
    options.objectStartNum = readNumber(parser, QStringLiteral("object-start"), 1, maxStartNum);
    options.encoding = readEncoding(parser);
    return arguments;
}

QCommandLineOption columnsOption()
{
    return { QStringLiteral("columns"),
        QStringLiteral("Столбцы номера точки, X и Y, считая с 1; без параметра - 1,3,2."),
        QStringLiteral("N,X,Y"), QStringLiteral("1,3,2") };
}

GeometryInfo readColumns(const QCommandLineParser& parser)
{
    const QString what = QStringLiteral("--columns");
    const QString text = parser.value(QStringLiteral("columns"));
    const QStringList columns = text.split(QLatin1Char(','));
    if (columns.size() != 3) {
        throw Failure{ WrongUsage,
            QStringLiteral("%1: ожидается N,X,Y, а не «%2»").arg(what, text) };
    }
    const auto column = [&](int i) { return parseNumber(columns.at(i), what, 1, maxColumn) - 1; };
    return { column(0), column(1), column(2), 0 };
}

QString encodingList()
{
    QStringList names;
    for (const QByteArray& name : QTextCodec::availableCodecs())
        names.append(QString::fromLatin1(name));
    names.sort(Qt::CaseInsensitive);
    names.removeDuplicates();
    names.prepend(QString::fromLatin1(defaultEncoding()));
    return names.join(QLatin1Char('\n'));
}

int readNumber(const QCommandLineParser& parser, const QString& option, int least, int most)
{
    return parseNumber(parser.value(option), QStringLiteral("--") + option, least, most);
}

int parseNumber(const QString& text, const QString& what, int least, int most)
{
    bool ok = false;
    const int number = text.toInt(&ok);
    if (ok && number >= least && number <= most)
        return number;
    throw Failure{ WrongUsage,
        QStringLiteral("%1: ожидается целое число от %2 до %3, а не «%4»")
            .arg(what, QString::number(least), QString::number(most), text) };
}

Import runImport(const QString& fileName, const ImportArguments& arguments)
{
    Import import;
    MessageCollector collector(import.messages);
    messageSink = &import.messages;
    setStatusFunc(takeMessage);
    guarded([&] {
        const auto importer = makeImporter(arguments.formatOf(fileName));
        ImportOptions options = arguments.options;
        options.objectFileName = fileName;
        importer->setOptions(options);
        importer->map = &import.objects;
        importer->observer = &collector;
        importer->importMap();
    });
    setStatusFunc(nullptr);
    return import;
}
