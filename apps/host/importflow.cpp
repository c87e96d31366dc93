#include "importflow.h"

#include "background.h"
#include "document.h"
#include "foreigndialog.h"
#include "plaintext.h"
#include "preparecopy.h"
#include "readable.h"
#include "survey/filesurvey.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QWidget>

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

QString shortName(const QString& fileName)
{
    return QFileInfo(fileName).fileName();
}

/// Why one of the files that an import would read is not to be opened.
QString pipeTroubleOf(const QString& operation, const ImportOptions& options)
{
    const Format* const format = formatOfOperation(operation);
    if (!format)
        return {};
    for (const QString& file : filesOf(*format, options)) {
        QString trouble = pipeTrouble(file);
        if (!trouble.isEmpty())
            return trouble;
    }
    return {};
}

} // namespace

ImportFlow::ImportFlow(Document& document, PluginHost& host, QWidget& window)
    : m_document(document)
    , m_host(host)
    , m_window(window)
{
    connect(&host, &PluginHost::message, this,
        [this](const QString& text) { emit reported(m_running, text); });
}

void ImportFlow::import(const QString& operation, const QString& fileName)
{
    ImportOptions named;
    named.objectFileName = fileName;
    const QString trouble = pipeTroubleOf(operation, named);
    if (!trouble.isEmpty()) {
        warn(&m_window, QStringLiteral("Файл не открыт"), trouble);
        return;
    }
    m_running = fileName;
    const ImportAnswer answer = m_host.run(operation, fileName, m_settings);
    const bool isTaken = !answer.result.isNull() && takeResult(answer);
    if (isTaken)
        emit imported(answer.fileName);
    // Who saw that nothing came, and cancelled, is told why; nothing is said of a file that was not
    // read.
    const bool isRead = isTaken || answer.isStarted || !answer.messages.isEmpty();
    if (!answer.fileName.isEmpty() && isRead)
        check(operation, answer.options);
}

bool ImportFlow::takeResult(const ImportAnswer& answer)
{
    struct Reading {
        FormTable table;
        std::optional<FormError> error;
    };
    auto reading = std::make_shared<Reading>();
    const GeometryInfo columns = m_settings.columns;
    const QString xml = answer.result;
    const bool isDone = runWithProgress(&m_window, QStringLiteral("Объекты читаются…"),
        [reading, columns, xml](
            const std::atomic_bool&) { reading->error = readForm(xml, columns, reading->table); });
    if (!isDone)
        return false;
    if (reading->error) {
        emit reported(answer.fileName, reading->error->text);
        return false;
    }
    FormTable table = m_document.table();
    if (table.objects.isEmpty())
        table = reading->table;
    else
        table.take(reading->table);
    m_document.replaceTable(table, QStringLiteral("импорт «%1»").arg(shortName(answer.fileName)));
    m_lastFile = answer.fileName;
    m_lastStep = m_document.undoStack().index();
    return true;
}

void ImportFlow::check(const QString& fileName)
{
    const Format* const format = formatOfFile(fileName);
    if (!format) {
        emit reported(fileName, QStringLiteral("Вид файла по расширению не определить."));
        return;
    }
    ImportOptions options = ImportOptions::offered();
    options.objectFileName = fileName;
    const QByteArray likely =
        QFileInfo(fileName).isFile() ? likelyEncoding(*format, fileName) : QByteArray();
    options.encoding = likely.isEmpty() ? QTextCodec::codecForLocale()->name() : likely;
    check(format->operation, options);
}

void ImportFlow::check(const QString& operation, const ImportOptions& options)
{
    const Format* const format = formatOfOperation(operation);
    if (!format)
        return;
    const QString trouble = pipeTroubleOf(operation, options);
    if (!trouble.isEmpty()) {
        emit reported(options.objectFileName, trouble);
        return;
    }
    auto report = std::make_shared<std::optional<Report>>();
    const GeometryInfo columns = m_settings.columns;
    const bool isDone = runWithProgress(&m_window,
        QStringLiteral("Файл «%1» проверяется…").arg(shortName(options.objectFileName)),
        [report, format, options, columns](const std::atomic_bool&) {
            ImportRun run;
            *report = makeReport(*format, options, columns, listedFindings, run);
        });
    if (isDone && *report)
        emit checked(**report);
    else
        emit reported(options.objectFileName, QStringLiteral("Файл не проверен до конца."));
}

void ImportFlow::tellTrouble(const QString& fileName, const QString& trouble)
{
    const bool isDrawing = fileName.endsWith(QLatin1String(".dwg"), Qt::CaseInsensitive);
    const QString remedy = isDrawing
        ? QStringLiteral("Сохраните чертёж в программе, в которой он сделан, как текстовый (ASCII) "
                         "DXF.")
        : QStringLiteral("Можно и выгрузить объекты в MIF или DXF из программы, в которой они "
                         "сделаны.");
    warn(&m_window, QStringLiteral("Файл не открыт"),
        QStringLiteral("%1: %2.\n\n%3").arg(shortName(fileName), trouble, remedy));
}

QVector<prep::ForeignLayer> ImportFlow::layersOf(const QString& fileName)
{
    auto listed = std::make_shared<prep::ForeignLayers>();
    const bool isDone = runWithProgress(&m_window,
        QStringLiteral("Файл «%1» просматривается…").arg(shortName(fileName)),
        [listed, fileName](const std::atomic_bool& cancelled) {
            const QTemporaryDir folder;
            *listed = prep::listForeignLayers(
                fileName, folder, { [&cancelled] { return cancelled.load(); }, {} });
        });
    if (!isDone)
        return {};
    QVector<prep::ForeignLayer> layers;
    std::copy_if(listed->layers.cbegin(), listed->layers.cend(), std::back_inserter(layers),
        [](const prep::ForeignLayer& layer) { return layer.hasObjects; });
    if (layers.isEmpty()) {
        tellTrouble(fileName,
            listed->failure.isEmpty() ? QStringLiteral("в файле нет объектов") : listed->failure);
    }
    return layers;
}

void ImportFlow::importForeign(const QString& fileName)
{
    const QVector<prep::ForeignLayer> layers = layersOf(fileName);
    if (layers.isEmpty())
        return;
    ForeignDialog dialog(fileName, layers, &m_window);
    if (dialog.exec() != QDialog::Accepted)
        return;
    auto copy = std::make_shared<PreparedCopy>();
    const QString layer = dialog.layer();
    const QString column = dialog.column();
    const bool isDone = runWithProgress(&m_window,
        QStringLiteral("Пишется копия файла «%1»…").arg(shortName(fileName)),
        [=](const std::atomic_bool& cancelled) {
            *copy = prepareForeignCopy(fileName, layer, column, cancelled);
        });
    if (!isDone)
        return;
    if (!copy->error.isEmpty()) {
        tellTrouble(fileName, copy->error);
        return;
    }
    emit mended(fileName, copy->fileName, copy->changes);
    import(m_host.operationFor(copy->fileName), copy->fileName);
}

void ImportFlow::mend(const QString& fileName, bool visibleOnly)
{
    auto copy = std::make_shared<PreparedCopy>();
    const bool isDone = runWithProgress(&m_window,
        QStringLiteral("Пишется исправленная копия файла «%1»…").arg(shortName(fileName)),
        [copy, fileName, visibleOnly](const std::atomic_bool& cancelled) {
            *copy = prepareCopy(fileName, visibleOnly, cancelled);
        });
    if (!isDone)
        return;
    if (!copy->error.isEmpty()) {
        warn(&m_window, QStringLiteral("Копия не записана"), copy->error);
        return;
    }
    // What came of the file itself makes room for what comes of its copy.
    if (m_lastFile == fileName && m_document.undoStack().index() == m_lastStep)
        m_document.undoStack().undo();
    emit mended(fileName, copy->fileName, copy->changes);
    import(m_host.operationFor(copy->fileName), copy->fileName);
}
