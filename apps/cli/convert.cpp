#include "commands.h"
#include "geometry/designation.h"
#include "importoptions.h"
#include "jobs.h"
#include "outputfile.h"
#include "resultwriter.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QXmlStreamWriter>

namespace {

/// The columns that a field can have in the dialog.
constexpr int maxFieldColumn = 20;

const QString standardOutput = QStringLiteral("-");

QList<QCommandLineOption> convertOptions()
{
    return {
        { { QStringLiteral("o"), QStringLiteral("output") },
            QStringLiteral("Куда записать результат; «-» или без параметра - стандартный вывод."),
            QStringLiteral("ФАЙЛ") },
        { QStringLiteral("out-dir"),
            QStringLiteral("Папка результатов: для каждого файла - файл xml того же имени."),
            QStringLiteral("ПАПКА") },
        { QStringLiteral("jobs"),
            QStringLiteral("Сколько файлов обрабатывать одновременно; без параметра - 1."),
            QStringLiteral("ЧИСЛО"), QStringLiteral("1") },
        { QStringLiteral("partial"),
            QStringLiteral("Записать и то, что прочитано до ошибки импорта.") },
        { QStringLiteral("field"),
            QStringLiteral("Заполнить столбец каталога текстом; можно повторять."),
            QStringLiteral("СТОЛБЕЦ=ТЕКСТ") },
        { QStringLiteral("sort"), QStringLiteral("Сортировать объекты.") },
        { QStringLiteral("update"), QStringLiteral("Обновить при импорте.") },
        { QStringLiteral("table"), QStringLiteral("Имя таблицы объектов."), QStringLiteral("ИМЯ") },
        { QStringLiteral("catalogue"), QStringLiteral("Имя таблицы каталога координат."),
            QStringLiteral("ИМЯ") },
        columnsOption(),
        { QStringLiteral("object-column"),
            QStringLiteral("Столбец обозначения объекта, считая с 1; без параметра - 1."),
            QStringLiteral("ЧИСЛО"), QStringLiteral("1") },
    };
}

void readField(const QString& text, QMap<int, QString>& fields)
{
    const int equals = text.indexOf(QLatin1Char('='));
    if (equals < 0) {
        throw Failure{ WrongUsage,
            QStringLiteral("--field: ожидается СТОЛБЕЦ=ТЕКСТ, а не «%1»").arg(text) };
    }
    const int column = parseNumber(text.left(equals), QStringLiteral("--field"), 1, maxFieldColumn);
    const QString value = text.mid(equals + 1);
    if (!value.isEmpty())
        fields.insert(column - 1, value);
}

ResultOptions readResultOptions(const QCommandLineParser& parser)
{
    ResultOptions options;
    options.tableName = parser.value(QStringLiteral("table"));
    options.catalogueTableName = parser.value(QStringLiteral("catalogue"));
    options.update = parser.isSet(QStringLiteral("update"));
    options.info = readColumns(parser);
    options.info.defColNum = readNumber(parser, QStringLiteral("object-column"), 1, maxColumn) - 1;
    for (const QString& field : parser.values(QStringLiteral("field")))
        readField(field, options.fields);
    return options;
}

/// A designation with half of a surrogate pair has no UTF-8: it becomes what QString::toUtf8 makes
/// of it. The writer's own encoder would mix it up with what follows.
void makeEncodable(QString& def)
{
    if (!def.isValidUtf16())
        def = QString::fromUtf8(def.toUtf8());
}

void makeEncodable(QVector<DefPolygon>& objects)
{
    for (DefPolygon& object : objects) {
        makeEncodable(object.def);
        for (QVector<DefPoint>& contour : object.contours) {
            for (DefPoint& vertex : contour)
                makeEncodable(vertex.def);
        }
    }
}

void writeXml(const QString& target, QVector<DefPolygon>& objects, const ResultOptions& options)
{
    makeEncodable(objects);
    OutputFile out(target);
    QXmlStreamWriter writer(&out);
    writer.setAutoFormatting(true);
    writeResult(writer, objects, options);
    out.commit();
}

ExitStatus convertFile(
    const QString& fileName, const QString& target, const QCommandLineParser& parser)
{
    OutputFile::checkPlace(target);
    Import import = runImport(fileName, readImportArguments(parser));
    for (const QString& message : qAsConst(import.messages))
        printMessage(fileName, message);
    const bool failed = !import.messages.isEmpty();
    if (failed && !parser.isSet(QStringLiteral("partial")))
        return Failed;
    if (parser.isSet(QStringLiteral("sort")))
        sortObjects(import.objects);
    writeXml(target, import.objects, readResultOptions(parser));
    return failed ? Failed : Done;
}

QString targetIn(const QString& folder, const QString& fileName)
{
    return QDir(folder).filePath(QFileInfo(fileName).completeBaseName() + QStringLiteral(".xml"));
}

QStringList targetsOf(const QStringList& files, const QCommandLineParser& parser)
{
    const QString output = parser.value(QStringLiteral("output"));
    const QString folder = parser.value(QStringLiteral("out-dir"));
    for (const char* option : { "output", "out-dir" }) {
        const QString name = QLatin1String(option);
        if (parser.isSet(name) && parser.value(name).isEmpty())
            throw Failure{ WrongUsage, QStringLiteral("--%1: имя не может быть пустым").arg(name) };
    }
    if (!output.isEmpty() && !folder.isEmpty())
        throw Failure{ WrongUsage, QStringLiteral("-o и --out-dir вместе не указывают") };
    if (folder.isEmpty() && files.size() > 1)
        throw Failure{ WrongUsage, QStringLiteral("для нескольких файлов укажите --out-dir") };
    if (folder.isEmpty())
        return { output.isEmpty() ? standardOutput : output };

    QStringList targets;
    for (const QString& file : files)
        targets.append(targetIn(folder, file));
    return targets;
}

/// No result may take the place of another one or of a file that is read.
void checkTargets(const QStringList& files, const QStringList& targets, const QString& pointFile)
{
    QSet<QString> sources;
    const QStringList named = pointFile.isEmpty() ? files : files + QStringList(pointFile);
    for (const QString& file : named) {
        sources.insert(QFileInfo(file).canonicalFilePath());
        sources.insert(QFileInfo(file.chopped(1) + QLatin1Char('d')).canonicalFilePath());
    }
    sources.remove(QString());
    QHash<QString, QString> fileOfTarget;
    for (int i = 0; i < files.size(); ++i) {
        const QString& target = targets.at(i);
        QString& file = fileOfTarget[target];
        if (!file.isEmpty()) {
            throw Failure{ WrongUsage,
                QStringLiteral("файлы %1 и %2 дали бы один результат %3")
                    .arg(file, files.at(i), target) };
        }
        file = files.at(i);
        if (sources.contains(QFileInfo(target).canonicalFilePath())) {
            throw Failure{ WrongUsage,
                QStringLiteral("%1: результат заменил бы исходный файл").arg(target) };
        }
    }
}

QString outcome(const JobResult& result, const QString& target)
{
    if (result.crashed)
        return QStringLiteral("обработка прервалась аварийно");
    return result.status == Done ? QStringLiteral("записано в %1").arg(target)
                                 : QStringLiteral("с ошибками");
}

/// Every file in a process of its own: what goes wrong with one costs only that one.
ExitStatus convertFiles(
    const QStringList& files, const QStringList& targets, const QCommandLineParser& parser)
{
    OutputFile::checkPlace(targets.first());
    QList<QStringList> argumentLists;
    const QStringList common = forwardedArguments(parser, convertOptions(),
        { QStringLiteral("output"), QStringLiteral("out-dir"), QStringLiteral("jobs") });
    for (int i = 0; i < files.size(); ++i) {
        argumentLists.append(QStringList{ QStringLiteral("convert") } + common
            + QStringList{
                QStringLiteral("--output=") + targets.at(i), QStringLiteral("--"), files.at(i) });
    }
    const int jobCount = readNumber(parser, QStringLiteral("jobs"), 1, maxJobs);
    int failures = 0;
    runJobs(argumentLists, jobCount, [&](int index, const JobResult& result, Progress& progress) {
        progress.print(result.errors);
        progress.print(files.at(index) + QStringLiteral(": ") + outcome(result, targets.at(index)));
        failures += result.crashed || result.status != Done ? 1 : 0;
    });
    printError(QStringLiteral("Всего файлов: %1, записано: %2, с ошибками: %3")
                   .arg(files.size())
                   .arg(files.size() - failures)
                   .arg(failures));
    return failures == 0 ? Done : Failed;
}

ExitStatus runConvert(const QCommandLineParser& parser)
{
    const QStringList files = parser.positionalArguments();
    const QStringList targets = targetsOf(files, parser);
    const ImportArguments arguments = readImportArguments(parser);
    for (const QString& file : files)
        arguments.formatOf(file);
    checkTargets(files, targets, arguments.options.pointFileName);
    readResultOptions(parser);
    readNumber(parser, QStringLiteral("jobs"), 1, maxJobs);
    return files.size() == 1 ? convertFile(files.first(), targets.first(), parser)
                             : convertFiles(files, targets, parser);
}

} // namespace

const Command convertCommand{ "convert", "ФАЙЛ... [-o ФАЙЛ | --out-dir ПАПКА] [параметры]",
    "Записать результат импорта в XML.", convertOptions, runConvert, false };
