#include "formexport.h"

#include "export/exportfile.h"
#include "plan/planfile.h"
#include "sheet.h"
#include "wholefile.h"

#include <QDir>
#include <QPdfWriter>

namespace {

constexpr QSize largestPicture(1600, 1200);

QVector<Shape> shapesOf(const QVector<DefPolygon>& objects)
{
    QVector<Shape> shapes;
    shapes.reserve(objects.size());
    for (const DefPolygon& object : objects)
        shapes.append(isArea(object) ? Shape::Area : Shape::Line);
    return shapes;
}

QString trouble(const WholeFile& file)
{
    return QStringLiteral("Ошибка записи файла %1: %2")
        .arg(QDir::toNativeSeparators(file.fileName()), file.errorString());
}

bool writePicture(QIODevice& out, const FormExport& task)
{
    PlanPainter plan(task.table.objects, PlanAxes{ task.northingFirst, true, true });
    return writePlan(out, task.form == FormFile::Svg ? PlanFormat::Svg : PlanFormat::Png,
        plan.pageWithin(largestPicture), plan, task.title);
}

bool writeSheet(QIODevice& out, const FormExport& task, const std::atomic_bool& cancelled)
{
    QPdfWriter pdf(&out);
    pdf.setPageLayout(Sheet::page());
    pdf.setTitle(task.title);
    return Sheet(task.table, task.objects, task.northingFirst, task.title).paint(pdf, cancelled);
}

/// Writes to a file; false when nothing came of it though the file could be written.
bool write(QIODevice& out, QIODevice* companion, const FormExport& task,
    const std::atomic_bool& cancelled, QString* remark)
{
    ExportOptions options;
    options.swapped = task.northingFirst;
    const QVector<DefPolygon>& objects = task.table.objects;
    switch (task.form) {
    case FormFile::Xml:
        writeForm(out, task.table);
        return true;
    case FormFile::Csv:
        // As the tables of spreadsheets here want it.
        options.russianNumbers = true;
        writeCsv(out, objects, shapesOf(objects), options);
        return true;
    case FormFile::GeoJson:
        writeGeoJson(out, objects, shapesOf(objects), options);
        return true;
    case FormFile::Mif: {
        const qint64 unknown = writeMif(out, *companion, objects, shapesOf(objects), options);
        if (unknown > 0 && remark)
            *remark = QStringLiteral("Обозначений с буквами, которых нет в Windows-1251: %1")
                          .arg(unknown);
        return true;
    }
    case FormFile::Svg:
    case FormFile::Png:
        return writePicture(out, task);
    case FormFile::Pdf:
        return writeSheet(out, task, cancelled);
    }
    return false;
}

} // namespace

QString writeFormFile(const FormExport& task, const std::atomic_bool& cancelled, QString* remark)
{
    WholeFile out(task.fileName);
    // Beside a MIF file stands its MID file under the same name.
    WholeFile companion(
        task.fileName.left(task.fileName.lastIndexOf(QLatin1Char('.'))) + QLatin1String(".mid"));
    const bool hasCompanion = task.form == FormFile::Mif;
    if (!out.open(QIODevice::WriteOnly))
        return trouble(out);
    if (hasCompanion && !companion.open(QIODevice::WriteOnly))
        return trouble(companion);
    const bool isWritten = write(out, hasCompanion ? &companion : nullptr, task, cancelled, remark);
    if (cancelled)
        return QStringLiteral("Отменено.");
    if (!isWritten)
        return QStringLiteral("Для этого не хватает памяти.");
    if (hasCompanion) {
        const WholeFile* const failed = commitPair(companion, out);
        return failed ? trouble(*failed) : QString();
    }
    return commitWhole(out) ? QString() : trouble(out);
}
