#include "commands.h"
#include "importoptions.h"
#include "outputfile.h"
#include "plan/plancanvas.h"
#include "plan/planpainter.h"

#include <QBuffer>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>
#include <QPainter>

namespace {

constexpr int maxSide = 20000;

QList<QCommandLineOption> planOptions()
{
    return {
        { { QStringLiteral("o"), QStringLiteral("output") },
            QStringLiteral("Файл рисунка; вид рисунка - по расширению."),
            QStringLiteral("ФАЙЛ.svg|ФАЙЛ.png") },
        { QStringLiteral("size"),
            QStringLiteral("Ширина и высота рисунка в пикселях; без параметра - 1600x1200."),
            QStringLiteral("ШxВ"), QStringLiteral("1600x1200") },
        { QStringLiteral("partial"),
            QStringLiteral("Нарисовать и то, что прочитано до ошибки импорта.") },
    };
}

QSize readSize(const QCommandLineParser& parser)
{
    const QString what = QStringLiteral("--size");
    const QString text = parser.value(QStringLiteral("size"));
    const QStringList sides = text.split(QLatin1Char('x'));
    if (sides.size() != 2)
        throw Failure{ WrongUsage, QStringLiteral("%1: ожидается ШxВ, а не «%2»").arg(what, text) };
    return { parseNumber(sides.at(0), what, 200, maxSide),
        parseNumber(sides.at(1), what, 200, maxSide) };
}

void writeSvg(
    OutputFile& out, const QSize& size, const QVector<DefPolygon>& objects, const QString& title)
{
    SvgCanvas canvas(out, size, title);
    PlanPainter(objects).paint(canvas, size, title);
}

void writePng(
    OutputFile& out, const QSize& size, const QVector<DefPolygon>& objects, const QString& title)
{
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        throw Failure{ Failed, QStringLiteral("для рисунка такого размера не хватает памяти") };
    {
        QPainter painter(&image);
        PainterCanvas canvas(painter);
        PlanPainter(objects).paint(canvas, size, title);
    }
    QImageWriter(&out, "png").write(image);
}

QString titleOf(const QStringList& files)
{
    QStringList names;
    for (const QString& file : files)
        names.append(QFileInfo(file).fileName());
    return names.join(QLatin1String(", "));
}

ExitStatus runPlan(const QCommandLineParser& parser)
{
    const QStringList files = parser.positionalArguments();
    const QString target = parser.value(QStringLiteral("output"));
    const QString kind = QFileInfo(target).suffix().toLower();
    if (kind != QLatin1String("svg") && kind != QLatin1String("png")) {
        throw Failure{ WrongUsage,
            QStringLiteral("укажите файл рисунка: -o ФАЙЛ.svg или -o ФАЙЛ.png") };
    }
    const QSize size = readSize(parser);
    const ImportArguments arguments = readImportArguments(parser);
    for (const QString& file : files)
        arguments.formatOf(file);
    OutputFile::checkPlace(target);

    QVector<DefPolygon> objects;
    bool failed = false;
    for (const QString& file : files) {
        const Import import = runImport(file, arguments);
        objects += import.objects;
        failed = failed || !import.messages.isEmpty();
        for (const QString& message : import.messages)
            printMessage(file, message);
    }
    if (failed && !parser.isSet(QStringLiteral("partial")))
        return Failed;

    OutputFile out(target);
    const auto write = kind == QLatin1String("svg") ? writeSvg : writePng;
    write(out, size, objects, titleOf(files));
    out.commit();
    return failed ? Failed : Done;
}

} // namespace

const Command planCommand{ "plan", "ФАЙЛ... -o ФАЙЛ.svg|ФАЙЛ.png [параметры]",
    "Нарисовать план объектов.", planOptions, runPlan, true };
