#include "preparecopy.h"

#include "import/formats.h"
#include "prepare/foreignfile.h"
#include "prepare/preparedxf.h"
#include "prepare/preparemif.h"
#include "prepare/reporttext.h"
#include "readable.h"
#include "wholefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <limits>

namespace {

/// What ends a preparation.
struct Trouble {
    QString text;
};

QByteArray readFile(const QString& fileName)
{
    const QString trouble = pipeTrouble(fileName);
    if (!trouble.isEmpty())
        throw Trouble{ trouble };
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        throw Trouble{ QStringLiteral("файл %1 не открывается: %2")
                           .arg(QDir::toNativeSeparators(fileName), file.errorString()) };
    if (file.size() > std::numeric_limits<int>::max() - 64)
        throw Trouble{ QStringLiteral("файл слишком велик") };
    return file.readAll();
}

void open(WholeFile& file)
{
    if (!file.open(QIODevice::WriteOnly))
        throw Trouble{ QStringLiteral("файл %1 не записывается: %2")
                           .arg(QDir::toNativeSeparators(file.fileName()), file.errorString()) };
}

void checkGoesOn(const std::atomic_bool& cancelled)
{
    if (cancelled)
        throw Trouble{ QStringLiteral("отменено") };
}

void checkCommitted(const WholeFile* failed)
{
    if (failed)
        throw Trouble{ QStringLiteral("ошибка записи файла %1: %2")
                           .arg(QDir::toNativeSeparators(failed->fileName()),
                               failed->errorString()) };
}

/// A name beside the file that no file has.
QString freeName(const QString& fileName, const Format& format)
{
    const QFileInfo info(fileName);
    const auto isFree = [&](const QString& name) {
        const QString companion = format.companionFile(name);
        return !QFileInfo::exists(name) && (companion.isEmpty() || !QFileInfo::exists(companion));
    };
    for (int i = 1;; ++i) {
        const QString number = i == 1 ? QString() : QStringLiteral("-%1").arg(i);
        QString name = info.dir().filePath(
            QStringLiteral("%1-готов%2.%3").arg(info.completeBaseName(), number, format.suffix));
        if (isFree(name))
            return name;
    }
}

void checkWritten(bool isWritten, const prep::PrepareReport& report)
{
    if (!isWritten)
        throw Trouble{ report.failure };
}

/// `isOwn`: the pair is the user's, whose MID file may have another name than it should.
void preparePair(const QString& fileName, const QString& target, const Format& format, bool isOwn,
    const prep::PrepareOptions& options, prep::PrepareReport& report,
    const std::atomic_bool& cancelled)
{
    const QString midFileName = prep::midFileOf(fileName);
    prep::MifPair pair{ readFile(fileName), {} };
    if (!midFileName.isEmpty())
        pair.mid = readFile(midFileName);
    const bool renamed = !midFileName.isEmpty() && midFileName != format.companionFile(fileName);
    report.note(prep::Note::MidRenamed, renamed && isOwn ? 1 : 0);
    WholeFile mif(target);
    WholeFile mid(format.companionFile(target));
    open(mif);
    open(mid);
    checkWritten(prep::prepareMif(std::move(pair), options, mif, mid, report), report);
    checkGoesOn(cancelled);
    checkCommitted(commitPair(mid, mif));
}

void prepareDrawing(const QString& fileName, const QString& target,
    const prep::PrepareOptions& options, prep::PrepareReport& report,
    const std::atomic_bool& cancelled)
{
    QByteArray bytes = readFile(fileName);
    WholeFile out(target);
    open(out);
    checkWritten(prep::prepareDxf(std::move(bytes), options, out, report), report);
    checkGoesOn(cancelled);
    checkCommitted(commitWhole(out) ? nullptr : &out);
}

/// What came of a preparation that writes to `target`.
template <typename Prepare>
PreparedCopy written(const QString& target, Prepare prepare)
{
    PreparedCopy copy{ target, {}, {} };
    prep::PrepareReport report;
    try {
        prepare(report);
        copy.changes = prep::noteLines(report);
    } catch (const Trouble& trouble) {
        copy.error = trouble.text;
    } catch (const std::bad_alloc&) {
        copy.error = QStringLiteral("не хватает памяти");
    }
    return copy;
}

} // namespace

PreparedCopy prepareCopy(
    const QString& fileName, bool visibleOnly, const std::atomic_bool& cancelled)
{
    const Format* const format = formatOfFile(fileName);
    if (!format)
        return { {}, {}, QStringLiteral("вид файла по расширению не определить") };
    const QString target = freeName(fileName, *format);
    prep::PrepareOptions options;
    options.visibleOnly = visibleOnly;
    return written(target, [&](prep::PrepareReport& report) {
        if (format->companionFile(fileName).isEmpty())
            prepareDrawing(fileName, target, options, report, cancelled);
        else
            preparePair(fileName, target, *format, true, options, report, cancelled);
    });
}

PreparedCopy prepareForeignCopy(const QString& fileName, const QString& layer,
    const QString& column, const std::atomic_bool& cancelled)
{
    const Format* const format = prep::formatOfForeignFile(fileName);
    if (!format)
        return { {}, {}, QStringLiteral("вид файла по расширению не определить") };
    const QString target = freeName(fileName, *format);
    prep::PrepareOptions options;
    options.layers = QStringList(prep::layerPattern(layer));
    options.nameField = column;
    options.withoutNames = column.isEmpty();
    return written(target, [&](prep::PrepareReport& report) {
        const QTemporaryDir folder;
        const prep::ForeignPair pair = prep::convertForeignFile(
            fileName, options, folder, { [&cancelled] { return cancelled.load(); }, {} });
        if (!pair.failure.isEmpty())
            throw Trouble{ pair.failure };
        report.note(prep::Note::Converted);
        preparePair(pair.mifFileName, target, *format, false, pair.options, report, cancelled);
    });
}
