#include "importarguments.h"

#include "console.h"
#include "standardinput.h"
#include "suggestions.h"

#include <QCommandLineParser>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
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

/// The file that this one goes with: the MIF file of a MID file; empty for other files.
QString ownerOf(const QString& fileName)
{
    const QFileInfo info(fileName);
    if (info.suffix().compare(QLatin1String("mid"), Qt::CaseInsensitive) != 0)
        return {};
    const QString wanted = info.completeBaseName() + QStringLiteral(".mif");
    for (const QString& name : info.dir().entryList(QDir::Files)) {
        if (name.compare(wanted, Qt::CaseInsensitive) == 0)
            return fileName.chopped(info.fileName().size()) + name;
    }
    return fileName.chopped(info.fileName().size()) + wanted;
}

const Format& findFormat(const QString& fileName, const Format* chosen)
{
    const Format* const found = chosen ? chosen : formatOfFile(fileName);
    if (found)
        return *found;
    const QString owner = ownerOf(fileName);
    if (!owner.isEmpty()) {
        throw Failure{ WrongUsage,
            QStringLiteral("%1: импортируют файл MIF, а MID читается вместе с ним: укажите %2")
                .arg(fileName, owner) };
    }
    throw Failure{ WrongUsage,
        QStringLiteral("%1: формат по расширению не определить; укажите --format %2")
            .arg(fileName, formatNames()) };
}

/// The files of a folder that have the suffix of a format, in order of their names.
QStringList filesIn(const QString& folder, const Format* format, bool recursive)
{
    QStringList files;
    QDirIterator it(folder, QDir::Files,
        recursive ? QDirIterator::Subdirectories : QDirIterator::NoIteratorFlags);
    while (it.hasNext()) {
        const QString file = it.next();
        const Format* const found = formatOfFile(file);
        if (found && (!format || found == format))
            files.append(file);
    }
    if (files.isEmpty()) {
        throw Failure{ WrongUsage,
            QStringLiteral("%1: в папке нет файлов mif и dxf%2")
                .arg(folder,
                    recursive ? QString()
                              : QStringLiteral("; вложенные папки просматривает --recursive")) };
    }
    files.sort();
    return files;
}

/// The place of a file below a folder; "." for a file in the folder itself.
QString subfolderOf(const QString& fileName, const QString& folder)
{
    const QString place = QDir(folder).relativeFilePath(QFileInfo(fileName).absolutePath());
    return place.isEmpty() ? QStringLiteral(".") : place;
}

bool isSameFile(const QString& a, const QString& b)
{
    return !b.isEmpty() && QFileInfo(a) == QFileInfo(b);
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
    options.encoding = encodingOf(parser.value(QStringLiteral("encoding")));
    return options;
}

QCommandLineOption option(
    const char* name, const char* text, const char* value, const QString& defaultValue = QString())
{
    return QCommandLineOption(
        QString::fromLatin1(name), QString::fromUtf8(text), QString::fromUtf8(value), defaultValue);
}

} // namespace

QList<QCommandLineOption> inputFileOptions()
{
    return {
        option("format", "Формат файлов: mif или dxf; без параметра - по расширению.", "ФОРМАТ"),
        option("recursive", "Искать файлы и во вложенных папках.", ""),
        option("list-encodings", "Показать имена кодировок и закончить работу.", ""),
    };
}

QList<QCommandLineOption> importCommandLineOptions()
{
    const ImportOptions defaults = ImportOptions::offered();
    return QList<QCommandLineOption>{
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
        option("encoding",
            "Кодировка файлов; auto - по их байтам; без параметра - Default, то есть кодировка "
            "системы.",
            "ИМЯ", QString::fromLatin1(defaultEncoding())),
    }
    + inputFileOptions();
}

QVector<InputFile> readInputFiles(
    const QCommandLineParser& parser, const Format* (*formatOfOther)(const QString& fileName))
{
    const Format* const format = readFormat(parser);
    const bool recursive = parser.isSet(QStringLiteral("recursive"));
    QVector<InputFile> inputs;
    for (const QString& argument : parser.positionalArguments()) {
        const bool isFolder = QFileInfo(argument).isDir();
        const QStringList files = isFolder ? filesIn(argument, format, recursive)
                                           : QStringList{ inputFileName(argument) };
        for (const QString& file : files) {
            const Format* const other = !format && formatOfOther ? formatOfOther(file) : nullptr;
            inputs.append({ file, other ? other : &findFormat(file, format),
                isFolder ? subfolderOf(file, argument) : QString() });
        }
    }
    return inputs;
}

QVector<ImportTask> readImportTasks(
    const QCommandLineParser& parser, const Format* (*formatOfOther)(const QString& fileName))
{
    const ImportOptions options = readOptions(parser);
    QVector<ImportTask> tasks;
    for (const InputFile& input : readInputFiles(parser, formatOfOther)) {
        ImportTask task{ input.format, options, input.subfolder };
        task.options.objectFileName = input.name;
        // A folder may hold the points beside the objects.
        const bool isOfFolder = !input.subfolder.isEmpty();
        if (!isOfFolder || !isSameFile(input.name, options.pointFileName))
            tasks.append(task);
    }
    return tasks;
}

bool keepToOneJob(const QCommandLineParser& parser, QVector<ImportTask>& tasks)
{
    const QString jobs = QStringLiteral("jobs");
    const bool isOne = parser.isSet(jobs) && parser.value(jobs).toInt() == 1;
    for (ImportTask& task : tasks)
        task.options.inOneThread = isOne;
    return isOne;
}

QByteArray encodingOf(const QString& text)
{
    QByteArray name = text.toLatin1();
    if (name == "auto")
        return name;
    if (name != defaultEncoding() && !QTextCodec::codecForName(name)) {
        throw Failure{ WrongUsage,
            QStringLiteral("неизвестная кодировка «%1»%2; список даёт --list-encodings")
                .arg(text, suggestionText(text, encodingList().split(QLatin1Char('\n')))) };
    }
    return name == defaultEncoding() ? systemEncoding() : name;
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
    const GeometryInfo info{ column(0), column(1), column(2), 0 };
    if (info.nColNum == info.xColNum || info.nColNum == info.yColNum
        || info.xColNum == info.yColNum) {
        throw Failure{ WrongUsage,
            QStringLiteral("%1: один столбец указан дважды: «%2»").arg(what, text) };
    }
    return info;
}

QString encodingList()
{
    QStringList names;
    for (const QByteArray& name : QTextCodec::availableCodecs())
        names.append(QString::fromLatin1(name));
    names.removeAll(QString());
    names.sort(Qt::CaseInsensitive);
    names.removeDuplicates();
    // Those that drawings in Russian have come first.
    const QStringList first{ QString::fromLatin1(defaultEncoding()), QStringLiteral("auto"),
        QStringLiteral("windows-1251"), QStringLiteral("UTF-8"), QStringLiteral("IBM866"),
        QStringLiteral("KOI8-R") };
    for (int i = 0; i < first.size(); ++i) {
        for (int j = names.size() - 1; j >= 0; --j) {
            if (names.at(j).compare(first.at(i), Qt::CaseInsensitive) == 0)
                names.removeAt(j);
        }
        names.insert(i, first.at(i));
    }
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
