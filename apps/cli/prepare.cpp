#include "commands.h"
#include "import/formats.h"
#include "outputfile.h"
#include "prepare/preparedxf.h"
#include "prepare/preparemif.h"
#include "prepare/reporttext.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSet>
#include <QTextCodec>

#include <cmath>

namespace {

using prep::PrepareOptions;

const QString standardOutput = QStringLiteral("-");

QList<QCommandLineOption> prepareOptions()
{
    const auto option = [](const char* name, const char* text, const char* value = "",
                            const char* defaultValue = "") {
        return QCommandLineOption(QString::fromLatin1(name), QString::fromUtf8(text),
            QString::fromUtf8(value), QString::fromLatin1(defaultValue));
    };
    return {
        { { QStringLiteral("o"), QStringLiteral("output") },
            QStringLiteral("Куда записать файл; «-» - стандартный вывод (только DXF)."),
            QStringLiteral("ФАЙЛ") },
        option("out-dir", "Папка, в которую файлы записываются под своими именами.", "ПАПКА"),
        option("level",
            "Что делать: repair - только исправить запись, flatten - ещё и разбить блоки и кривые; "
            "без параметра - flatten.",
            "repair|flatten", "flatten"),
        option("tolerance",
            "Наибольшее отклонение хорды от кривой в единицах файла; без параметра - 0.01.",
            "ЧИСЛО", "0.01"),
        option("blocks", "Вставки блоков: auto, explode или points; без параметра - auto.",
            "auto|explode|points", "auto"),
        option("circles", "Окружности: points или contours; без параметра - points.",
            "points|contours", "points"),
        option("layers", "Взять только слои по образцу; можно повторять.", "ОБРАЗЕЦ"),
        option("skip-layers", "Пропустить слои по образцу; можно повторять.", "ОБРАЗЕЦ"),
        option("visible", "Взять только видимое."),
        option("labels",
            "Какие надписи взять, через запятую: text, mtext, attrib, dimension; без параметра - "
            "text,mtext,attrib.",
            "ВИДЫ", "text,mtext,attrib"),
        option("join", "Соединить в контуры линии, концы которых сходятся ближе ЧИСЛА.", "ЧИСЛО"),
        option("hatch", "Записать и границы штриховок."),
        option("from-encoding", "Кодировка исходных файлов; без параметра - по байтам.", "ИМЯ"),
        option("name-field", "Столбец обозначений в MIF; он становится первым.", "СТОЛБЕЦ"),
        option("swap-xy", "Переставить координаты."),
        option("scale", "Умножить координаты на число.", "ЧИСЛО"),
        option("json", "Отчёт в виде JSON на стандартный вывод."),
    };
}

// The command line

double readPositive(const QCommandLineParser& parser, const char* name, double least)
{
    const QString text = parser.value(QString::fromLatin1(name));
    bool ok = false;
    const double number = text.toDouble(&ok);
    if (ok && std::isfinite(number) && number >= least)
        return number;
    throw Failure{ WrongUsage,
        QStringLiteral("--%1: ожидается число не меньше %2, а не «%3»")
            .arg(QString::fromLatin1(name), QString::number(least), text) };
}

/// The place of the option's value among the choices, which stand in the option's help.
int readChoice(const QCommandLineParser& parser, const char* name, const QStringList& choices)
{
    const QString value = parser.value(QString::fromLatin1(name));
    const int index = choices.indexOf(value);
    if (index >= 0)
        return index;
    throw Failure{ WrongUsage,
        QStringLiteral("--%1: ожидается %2, а не «%3»")
            .arg(QString::fromLatin1(name), choices.join(QStringLiteral(" или ")), value) };
}

QByteArray readCodec(const QCommandLineParser& parser, const char* name)
{
    const QString option = QString::fromLatin1(name);
    const QString text = parser.isSet(option) ? parser.value(option) : QString();
    if (text.isEmpty() || QTextCodec::codecForName(text.toLatin1()))
        return text.toLatin1();
    throw Failure{ WrongUsage,
        QStringLiteral("неизвестная кодировка «%1»; список даёт --list-encodings").arg(text) };
}

void readLabels(const QString& text, PrepareOptions& options)
{
    options.texts = options.mtexts = options.attributes = options.dimensions = false;
    for (const QString& kind : text.split(QLatin1Char(','))) {
        bool* const wanted = kind == QLatin1String("text") ? &options.texts
            : kind == QLatin1String("mtext")               ? &options.mtexts
            : kind == QLatin1String("attrib")              ? &options.attributes
            : kind == QLatin1String("dimension")           ? &options.dimensions
                                                           : nullptr;
        if (!wanted) {
            throw Failure{ WrongUsage,
                QStringLiteral("--labels: ожидается text, mtext, attrib, dimension через запятую, "
                               "а не «%1»")
                    .arg(text) };
        }
        *wanted = true;
    }
}

PrepareOptions readPrepareOptions(const QCommandLineParser& parser)
{
    constexpr double leastTolerance = 1e-9;
    const auto list = [](const char* words) {
        return QString::fromLatin1(words).split(QLatin1Char(' '));
    };
    PrepareOptions options;
    options.level = static_cast<prep::Level>(readChoice(parser, "level", list("repair flatten")));
    options.tolerance = readPositive(parser, "tolerance", leastTolerance);
    options.blocks =
        static_cast<prep::BlockMode>(readChoice(parser, "blocks", list("auto explode points")));
    options.circles =
        static_cast<prep::CircleMode>(readChoice(parser, "circles", list("points contours")));
    options.layers = parser.values(QStringLiteral("layers"));
    options.skipLayers = parser.values(QStringLiteral("skip-layers"));
    options.visibleOnly = parser.isSet(QStringLiteral("visible"));
    readLabels(parser.value(QStringLiteral("labels")), options);
    if (parser.isSet(QStringLiteral("join")))
        options.join = readPositive(parser, "join", 0);
    options.hatches = parser.isSet(QStringLiteral("hatch"));
    options.fromEncoding = readCodec(parser, "from-encoding");
    options.encoding = readCodec(parser, "encoding");
    options.nameField = parser.value(QStringLiteral("name-field"));
    options.swapXY = parser.isSet(QStringLiteral("swap-xy"));
    if (parser.isSet(QStringLiteral("scale")))
        options.scale = readPositive(parser, "scale", std::numeric_limits<double>::min());
    if (options.level == prep::Level::Repair
        && (options.swapXY || options.scale != 1 || options.join || options.visibleOnly
            || !options.layers.isEmpty() || !options.skipLayers.isEmpty())) {
        throw Failure{ WrongUsage,
            QStringLiteral("--swap-xy, --scale, --join, --visible, --layers и --skip-layers "
                           "действуют только с --level flatten") };
    }
    return options;
}

const Format& formatOf(const QString& fileName, const QCommandLineParser& parser)
{
    const QString id = parser.value(QStringLiteral("format")).toLower();
    const Format* const format = id.isEmpty() ? formatOfFile(fileName) : formatOfId(id);
    if (format)
        return *format;
    throw Failure{ WrongUsage,
        QStringLiteral("%1: формат по расширению не определить; укажите --format mif или dxf")
            .arg(fileName) };
}

/// A file and what is to become of it.
struct PrepareTask {
    QString fileName;
    QString midFileName; ///< empty where there is none
    const Format* format;
    QString target;

    bool isMif() const { return format->companionFile(target) != QString(); }
    QString midTarget() const { return format->companionFile(target); }
};

QString targetOf(const QString& fileName, const Format& format, const QCommandLineParser& parser)
{
    QString output = parser.value(QStringLiteral("output"));
    const QString folder = parser.value(QStringLiteral("out-dir"));
    if (output.isEmpty() == folder.isEmpty())
        throw Failure{ WrongUsage, QStringLiteral("укажите -o ФАЙЛ или --out-dir ПАПКА") };
    if (!output.isEmpty())
        return output;
    return QDir(folder).filePath(
        QFileInfo(fileName).completeBaseName() + QLatin1Char('.') + format.suffix);
}

QVector<PrepareTask> readTasks(const QCommandLineParser& parser)
{
    const QStringList files = parser.positionalArguments();
    if (files.size() > 1 && parser.isSet(QStringLiteral("output")))
        throw Failure{ WrongUsage, QStringLiteral("для нескольких файлов укажите --out-dir") };
    QVector<PrepareTask> tasks;
    for (const QString& fileName : files) {
        const Format& format = formatOf(fileName, parser);
        PrepareTask task{ fileName, {}, &format, targetOf(fileName, format, parser) };
        if (task.isMif())
            task.midFileName = prep::midFileOf(fileName);
        if (task.target == standardOutput
            && (task.isMif() || parser.isSet(QStringLiteral("json")))) {
            throw Failure{ WrongUsage,
                QStringLiteral("на стандартный вывод можно записать только один DXF, без --json") };
        }
        tasks.append(task);
    }
    return tasks;
}

/// No result may take the place of another one or of a file that is read.
void checkTargets(const QVector<PrepareTask>& tasks)
{
    QSet<QString> sources;
    for (const PrepareTask& task : tasks) {
        sources.insert(QFileInfo(task.fileName).canonicalFilePath());
        sources.insert(QFileInfo(task.midFileName).canonicalFilePath());
    }
    sources.remove(QString());
    QSet<QString> targets;
    for (const PrepareTask& task : tasks) {
        for (const QString& target : { task.target, task.midTarget() }) {
            if (target.isEmpty())
                continue;
            if (sources.contains(QFileInfo(target).canonicalFilePath()))
                throw Failure{ WrongUsage,
                    QStringLiteral("результат %1 занял бы место исходного файла").arg(target) };
            if (targets.contains(QFileInfo(target).absoluteFilePath()))
                throw Failure{ WrongUsage,
                    QStringLiteral("два файла дали бы один результат %1").arg(target) };
            targets.insert(QFileInfo(target).absoluteFilePath());
        }
    }
}

// The work

QByteArray readFile(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure{ Failed, QStringLiteral("файл не открывается") };
    if (file.size() > std::numeric_limits<int>::max() - 64)
        throw Failure{ Failed, QStringLiteral("файл слишком велик") };
    return file.readAll();
}

void checkWritten(bool written, const prep::PrepareReport& report)
{
    if (!written)
        throw Failure{ Failed, report.failure };
}

prep::PrepareReport prepareFile(const PrepareTask& task, const PrepareOptions& options)
{
    prep::PrepareReport report;
    QByteArray bytes = readFile(task.fileName);
    OutputFile::checkPlace(task.target);
    if (!task.isMif()) {
        OutputFile out(task.target);
        checkWritten(prep::prepareDxf(std::move(bytes), options, out, report), report);
        out.commit();
        return report;
    }
    prep::MifPair pair{ std::move(bytes), {} };
    if (!task.midFileName.isEmpty())
        pair.mid = readFile(task.midFileName);
    const bool renamed = !task.midFileName.isEmpty()
        && task.midFileName != task.format->companionFile(task.fileName);
    report.note(prep::Note::MidRenamed, renamed ? 1 : 0);
    OutputFile mifOut(task.target);
    OutputFile midOut(task.midTarget());
    checkWritten(prep::prepareMif(std::move(pair), options, mifOut, midOut, report), report);
    midOut.commit();
    mifOut.commit();
    return report;
}

ExitStatus runPrepare(const QCommandLineParser& parser)
{
    const PrepareOptions options = readPrepareOptions(parser);
    const QVector<PrepareTask> tasks = readTasks(parser);
    checkTargets(tasks);
    const bool asJson = parser.isSet(QStringLiteral("json"));
    QJsonArray answers;
    ExitStatus status = Done;
    for (const PrepareTask& task : tasks) {
        prep::PrepareReport report;
        try {
            report = prepareFile(task, options);
        } catch (const Failure& failure) {
            report.failure = failure.text;
            status = Failed;
        }
        for (const QString& line : prep::reportLines(report, task.target))
            printMessage(task.fileName, line);
        if (report.hasLosses() && status == Done)
            status = Found;
        if (asJson)
            answers.append(prep::reportJson(report, task.fileName, task.target));
    }
    if (asJson) {
        OutputFile out(standardOutput);
        out.write(QJsonDocument(answers).toJson());
        out.commit();
    }
    return status;
}

} // namespace

const Command prepareCommand{ "prepare", "ФАЙЛ... -o ФАЙЛ | --out-dir ПАПКА [параметры]",
    "Записать копию файла, которая читается целиком.", prepareOptions, runPrepare, false };
