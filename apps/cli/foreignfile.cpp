#include "foreignfile.h"

#include "console.h"
#include "import/formats.h"
#include "interrupt.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <algorithm>
#include <iterator>

namespace {

constexpr const char* suffixes[] = { "tab", "shp", "gpkg", "geojson", "kml", "gml", "dwg" };

[[noreturn]] void fail(const QString& text)
{
    throw Failure{ Failed, text };
}

QString findProgram()
{
    const QString program = QStandardPaths::findExecutable(QStringLiteral("ogr2ogr"));
    if (program.isEmpty())
        fail(QStringLiteral("этот формат читается программой ogr2ogr, а её нет; её приносит пакет "
                            "gdal-bin"));
    return program;
}

/// Makes links to a file and to those that belong to it, so that what the program writes beside its
/// input stays in `folder`. Gives the name of the file there.
QString linkInto(const QString& folder, const QString& fileName)
{
    const QFileInfo file(fileName);
    const QString base = file.completeBaseName();
    for (const QFileInfo& other : file.absoluteDir().entryInfoList(QDir::Files)) {
        if (other.completeBaseName().compare(base, Qt::CaseInsensitive) == 0)
            QFile::link(other.absoluteFilePath(), QDir(folder).filePath(other.fileName()));
    }
    return QDir(folder).filePath(file.fileName());
}

/// What the program says is wrong: its first error, or else what it said last.
QString complaintOf(const QByteArray& errors)
{
    const QStringList lines =
        QString::fromUtf8(errors).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& line : lines) {
        if (line.startsWith(QLatin1String("ERROR")))
            return line.simplified();
    }
    return lines.isEmpty() ? QString() : lines.last().simplified();
}

/// Runs the program to its end; a signal that ends this one ends it, too.
void run(const QString& program, const QStringList& arguments)
{
    constexpr int glance = 100; // ms
    const Interrupt::Deferral deferral;
    QProcess process;
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.start(program, arguments);
    if (!process.waitForStarted())
        fail(QStringLiteral("программа ogr2ogr не запускается"));
    while (!process.waitForFinished(glance)) {
        if (Interrupt::requested())
            process.kill();
        if (process.state() == QProcess::NotRunning)
            break;
    }
    if (Interrupt::requested())
        return;
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        fail(QStringLiteral("программа ogr2ogr не прочитала файл: %1")
                 .arg(complaintOf(process.readAllStandardError())));
}

bool matchesAny(const QStringList& patterns, const QString& name)
{
    return std::any_of(patterns.begin(), patterns.end(), [&name](const QString& pattern) {
        const QString expression = QRegularExpression::wildcardToRegularExpression(pattern);
        return QRegularExpression(expression, QRegularExpression::CaseInsensitiveOption)
            .match(name)
            .hasMatch();
    });
}

QString chooseLayer(const QDir& folder, const prep::PrepareOptions& options)
{
    QStringList layers;
    for (const QString& name : folder.entryList({ QStringLiteral("*.mif") }, QDir::Files)) {
        const QString layer = QFileInfo(name).completeBaseName();
        const bool isTaken = options.layers.isEmpty() || matchesAny(options.layers, layer);
        if (isTaken && !matchesAny(options.skipLayers, layer))
            layers.append(layer);
    }
    if (layers.isEmpty())
        fail(QStringLiteral("в файле нет выбранных слоёв"));
    if (layers.size() > 1) {
        fail(QStringLiteral("в файле несколько слоёв: %1; выберите один из них: --layers ИМЯ")
                 .arg(layers.join(QStringLiteral(", "))));
    }
    return folder.filePath(layers.first() + QStringLiteral(".mif"));
}

} // namespace

const Format* formatOfForeignFile(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix().toLower();
    const bool isKnown = std::any_of(std::begin(suffixes), std::end(suffixes),
        [&suffix](const char* known) { return suffix == QLatin1String(known); });
    return isKnown ? formatOfId(QStringLiteral("mif")) : nullptr;
}

QString convertForeignFile(
    const QString& fileName, const prep::PrepareOptions& options, const QTemporaryDir& folder)
{
    const QString program = findProgram();
    if (!QFileInfo(fileName).isFile())
        fail(QStringLiteral("файл не открывается"));
    const QDir dir(folder.path());
    if (!folder.isValid() || !dir.mkdir(QStringLiteral("in")))
        fail(QStringLiteral("не удаётся создать временную папку"));
    const QString source = linkInto(dir.filePath(QStringLiteral("in")), fileName);
    const QString target = dir.filePath(QStringLiteral("out"));
    QStringList arguments{ QStringLiteral("-f"), QStringLiteral("MapInfo File"),
        QStringLiteral("-dsco"), QStringLiteral("FORMAT=MIF"), QStringLiteral("-dim"),
        QStringLiteral("XY") };
    if (!options.fromEncoding.isEmpty())
        arguments << QStringLiteral("--config") << QStringLiteral("SHAPE_ENCODING")
                  << QString::fromLatin1(options.fromEncoding);
    // MIF has no letters but Latin ones in names of columns: only the program can tell this one.
    if (!options.nameField.isEmpty())
        arguments << QStringLiteral("-select") << options.nameField;
    run(program, arguments << target << source);
    Interrupt::obey();
    return chooseLayer(QDir(target), options);
}
