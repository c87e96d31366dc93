#include "preparefile.h"

#include "console.h"
#include "fileprogress.h"
#include "importrun/importrun.h"
#include "interrupt.h"
#include "outputfile.h"
#include "prepare/foreignfile.h"
#include "prepare/preparedxf.h"
#include "prepare/preparemif.h"
#include "standardinput.h"

#include <QFile>
#include <QTemporaryDir>

#include <limits>

namespace {

QByteArray readFile(const QString& fileName)
{
    const QString trouble = pipeOrDeviceTrouble(fileName);
    if (!trouble.isEmpty())
        throw Failure{ Failed, trouble };
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

void prepareDrawing(
    const PrepareTask& task, const prep::PrepareOptions& options, prep::PrepareReport& report)
{
    QByteArray bytes = readFile(task.fileName);
    OutputFile out(task.target);
    checkWritten(prep::prepareDxf(std::move(bytes), options, out, report), report);
    out.commit();
}

void preparePair(const PrepareTask& task, const QString& mifFileName,
    const prep::PrepareOptions& options, prep::PrepareReport& report)
{
    const QString midFileName = prep::midFileOf(mifFileName);
    prep::MifPair pair{ readFile(mifFileName), {} };
    if (!midFileName.isEmpty())
        pair.mid = readFile(midFileName);
    const bool renamed =
        !midFileName.isEmpty() && midFileName != task.format->companionFile(mifFileName);
    report.note(prep::Note::MidRenamed, renamed && !task.isForeign ? 1 : 0);
    OutputFile mifOut(task.target);
    OutputFile midOut(task.midTarget());
    checkWritten(prep::prepareMif(std::move(pair), options, mifOut, midOut, report), report);
    OutputFile::commitPair(midOut, mifOut);
}

/// A signal that ends this program ends the other one first.
prep::ForeignPair convertForeign(
    const QString& fileName, const prep::PrepareOptions& options, QTemporaryDir& folder)
{
    prep::ForeignPair pair;
    {
        const Interrupt::Deferral deferral;
        FileProgress::tellConverting();
        pair = prep::convertForeignFile(
            fileName, options, folder, { Interrupt::requested, FileProgress::tellConverting });
        FileProgress::tellConverted();
    }
    if (Interrupt::requested())
        folder.remove();
    Interrupt::obey();
    if (!pair.failure.isEmpty())
        throw Failure{ Failed, pair.failure };
    return pair;
}

void prepareForeign(
    const PrepareTask& task, const prep::PrepareOptions& options, prep::PrepareReport& report)
{
    QTemporaryDir folder;
    const prep::ForeignPair pair = convertForeign(task.fileName, options, folder);
    report.note(prep::Note::Converted);
    preparePair(task, pair.mifFileName, pair.options, report);
}

} // namespace

TargetClaim PrepareTask::claim() const
{
    TargetClaim claim{ fileName, { fileName }, { target } };
    if (isMif()) {
        claim.targets.append(midTarget());
        if (!isForeign)
            claim.sources.append(prep::midFileOf(fileName));
    }
    return claim;
}

prep::PrepareReport prepareFile(const PrepareTask& task, const prep::PrepareOptions& options,
    const std::function<void()>& entityWritten)
{
    prep::PrepareReport report;
    report.entityWritten = entityWritten;
    report.scanned = FileProgress::tellScanned;
    OutputFile::checkPlace(task.target);
    spoolStandardInput(task.fileName);
    if (task.isForeign)
        prepareForeign(task, options, report);
    else if (task.format->id == QLatin1String("mif"))
        preparePair(task, task.fileName, options, report);
    else if (task.format->id == QLatin1String("dxf"))
        prepareDrawing(task, options, report);
    else
        throw Failure{ WrongUsage,
            QStringLiteral("%1: для этого формата подготовки нет").arg(task.fileName) };
    return report;
}
