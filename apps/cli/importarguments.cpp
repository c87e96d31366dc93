#include "importarguments.h"

#include "console.h"
#include "standardinput.h"

#include <QCommandLineParser>
#include <QTextCodec>

namespace {

constexpr int maxPointPrefLength = 20;
constexpr int maxStartNum = 999999999;

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
    return name == defaultEncoding() ? systemEncoding() : name;
}

/// What --format says; null to go by the suffix of the name.
const Format* readFormat(const QCommandLineParser& parser)
{
    const QString option = QStringLiteral("format");
    const QString id = parser.value(option).toLower();
    const Format* const format = formatOfId(id);
    if (parser.isSet(option) && !format) {
        throw Failure{ WrongUsage,
            QStringLiteral("--format: ожидается %1, а не «%2»").arg(formatNames(), id) };
    }
    return format;
}

const Format& findFormat(const QString& fileName, const Format* chosen)
{
    const Format* const found = chosen ? chosen : formatOfFile(fileName);
    if (found)
        return *found;
    throw Failure{ WrongUsage,
        QStringLiteral("%1: формат по расширению не определить; укажите --format %2")
            .arg(fileName, formatNames()) };
}

ImportOptions readOptions(const QCommandLineParser& parser)
{
    ImportOptions options = ImportOptions::offered();
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
    return options;
}

} // namespace

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
            "ИМЯ", QString::fromLatin1(defaultEncoding())),
        option("list-encodings", "Показать имена кодировок и закончить работу.", ""),
    };
}

QVector<ImportTask> readImportTasks(
    const QCommandLineParser& parser, const Format* (*formatOfOther)(const QString& fileName))
{
    const Format* const format = readFormat(parser);
    const ImportOptions options = readOptions(parser);
    QVector<ImportTask> tasks;
    for (const QString& argument : parser.positionalArguments()) {
        const QString file = inputFileName(argument);
        const Format* const other = !format && formatOfOther ? formatOfOther(file) : nullptr;
        ImportTask task{ other ? other : &findFormat(file, format), options };
        task.options.objectFileName = file;
        tasks.append(task);
    }
    return tasks;
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
    names.removeAll(QString());
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
