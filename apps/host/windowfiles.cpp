#include "mainwindow.h"

#include "background.h"
#include "cataloguemodel.h"
#include "diagnosispane.h"
#include "formsettingsdialog.h"
#include "guidewindow.h"
#include "import/formats.h"
#include "importflow.h"
#include "messagespane.h"
#include "objectsmodel.h"
#include "plaintext.h"
#include "prepare/foreignfile.h"
#include "readable.h"
#include "sheet.h"

#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QHash>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPrintDialog>
#include <QPrinter>
#include <QSet>
#include <QStatusBar>
#include <QTableView>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <memory>
#include <numeric>

namespace {

constexpr int noticeMs = 8000;

/// The endings of the names of files that go with one of another program's formats.
QStringList sideSuffixesOf(const QString& suffix)
{
    static const QHash<QString, QStringList> sideSuffixes{
        { QStringLiteral("shp"),
            { QStringLiteral("dbf"), QStringLiteral("shx"), QStringLiteral("prj"),
                QStringLiteral("cpg"), QStringLiteral("sbn"), QStringLiteral("sbx"),
                QStringLiteral("qix"), QStringLiteral("shp.xml") } },
        { QStringLiteral("tab"),
            { QStringLiteral("dat"), QStringLiteral("map"), QStringLiteral("id"),
                QStringLiteral("ind") } },
    };
    return sideSuffixes.value(suffix);
}

/// A file as its neighbours name it, who may write it in other letters.
QString placeOf(const QFileInfo& folder, const QString& name)
{
    return folder.absolutePath() + QLatin1Char('/') + name.toLower();
}

/// The files without those that go with another one of them.
QStringList withoutSideFiles(const QStringList& fileNames)
{
    QSet<QString> sides;
    for (const QString& fileName : fileNames) {
        const QFileInfo file(fileName);
        if (const Format* const format = formatOfFile(fileName))
            sides.insert(placeOf(file, QFileInfo(format->companionFile(fileName)).fileName()));
        for (const QString& suffix : sideSuffixesOf(file.suffix().toLower()))
            sides.insert(placeOf(file, file.completeBaseName() + QLatin1Char('.') + suffix));
    }
    QStringList opened;
    for (const QString& fileName : fileNames) {
        const QFileInfo file(fileName);
        if (!sides.contains(placeOf(file, file.fileName())))
            opened.append(fileName);
    }
    return opened;
}

QVector<int> allRows(int count)
{
    QVector<int> rows(count);
    std::iota(rows.begin(), rows.end(), 0);
    return rows;
}

} // namespace

void MainWindow::openFiles(const QStringList& fileNames)
{
    m_queue.append(withoutSideFiles(fileNames));
    QTimer::singleShot(0, this, &MainWindow::openNext);
}

void MainWindow::openNext()
{
    // The dialog of one file is open: the next one waits for its end.
    if (m_isOpening)
        return;
    m_isOpening = true;
    m_diagnosis->startBatch();
    while (!m_queue.isEmpty()) {
        const QString fileName = m_queue.takeFirst();
        const QString operation = m_host.operationFor(fileName);
        if (!operation.isEmpty()) {
            m_flow->import(operation, fileName);
        } else if (prep::formatOfForeignFile(fileName)) {
            m_flow->importForeign(fileName);
        } else if (fileName.endsWith(QLatin1String(".xml"), Qt::CaseInsensitive)) {
            if (mayReplace())
                openForm(fileName);
        } else {
            warn(this, QStringLiteral("Файл не открыт"),
                QStringLiteral(
                    "%1: открываются формы (xml), файлы, которые знает модуль импорта, и "
                    "те, что переводит программа ogr2ogr (%2).")
                    .arg(QDir::toNativeSeparators(fileName),
                        prep::foreignSuffixes().join(QStringLiteral(", "))));
        }
    }
    m_isOpening = false;
}

void MainWindow::chooseFiles(const QString& operation)
{
    const Format* const format = formatOfOperation(operation);
    const QStringList files = QFileDialog::getOpenFileNames(
        this, operation, m_lastFolder, format ? format->filter : QString());
    m_diagnosis->startBatch();
    for (const QString& file : files)
        m_flow->import(operation, file);
}

void MainWindow::chooseForeign()
{
    QStringList patterns;
    for (const QString& suffix : prep::foreignSuffixes())
        patterns.append(QStringLiteral("*.%1 *.%2").arg(suffix, suffix.toUpper()));
    const QString file =
        QFileDialog::getOpenFileName(this, QStringLiteral("Файл другого формата"), m_lastFolder,
            QStringLiteral("Файлы других форматов (%1)").arg(patterns.join(QLatin1Char(' '))));
    if (!file.isEmpty())
        openFiles({ file });
}

void MainWindow::chooseForm()
{
    const QString file = QFileDialog::getOpenFileName(this, QStringLiteral("Открыть форму"),
        m_lastFolder, QStringLiteral("Формы (*.xml);;Все файлы (*)"));
    if (!file.isEmpty() && mayReplace())
        openForm(file);
}

void MainWindow::chooseFileToCheck()
{
    QStringList patterns;
    for (const Format& format : formats())
        patterns.append(QStringLiteral("*.%1 *.%2").arg(format.suffix, format.suffix.toUpper()));
    const QString file = QFileDialog::getOpenFileName(this, QStringLiteral("Проверить файл"),
        m_lastFolder, QStringLiteral("Чертежи (%1)").arg(patterns.join(QLatin1Char(' '))));
    if (file.isEmpty())
        return;
    m_diagnosis->startBatch();
    m_flow->check(file);
}

bool MainWindow::openForm(const QString& fileName)
{
    const QString trouble = pipeTrouble(fileName);
    if (!trouble.isEmpty()) {
        warn(this, QStringLiteral("Форма не открыта"), trouble);
        return false;
    }
    struct Reading {
        FormTable table;
        QString error;
    };
    auto reading = std::make_shared<Reading>();
    const GeometryInfo columns = m_settings.columns;
    const bool isDone =
        runWithProgress(this, QStringLiteral("Форма читается…"), [=](const std::atomic_bool&) {
            QFile file(fileName);
            if (!file.open(QIODevice::ReadOnly)) {
                reading->error = file.errorString();
                return;
            }
            const auto error = readForm(file, columns, reading->table);
            if (error)
                reading->error = QStringLiteral("строка %1: %2").arg(error->line).arg(error->text);
        });
    if (!isDone)
        return false;
    if (!reading->error.isEmpty()) {
        warn(this, QStringLiteral("Форма не открыта"),
            QStringLiteral("%1: %2\n\nСтолбцы, из которых читаются обозначения и координаты, "
                           "заданы в «Правка», «Таблицы программы».")
                .arg(QDir::toNativeSeparators(fileName), reading->error));
        return false;
    }
    m_document.reset(reading->table, fileName);
    addRecent(fileName);
    return true;
}

bool MainWindow::save()
{
    if (m_document.fileName().isEmpty())
        return saveAs();
    if (!exportTo(FormFile::Xml, m_document.fileName()))
        return false;
    m_document.setSaved(m_document.fileName());
    return true;
}

bool MainWindow::saveAs()
{
    QFileDialog dialog(
        this, QStringLiteral("Сохранить форму"), m_lastFolder, QStringLiteral("Формы (*.xml)"));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(QStringLiteral("xml"));
    if (dialog.exec() != QDialog::Accepted)
        return false;
    const QString fileName = dialog.selectedFiles().value(0);
    if (!exportTo(FormFile::Xml, fileName))
        return false;
    m_document.setSaved(fileName);
    addRecent(fileName);
    return true;
}

void MainWindow::chooseExport(
    FormFile form, const QString& filter, const QString& suffix, bool chosenOnly)
{
    QFileDialog dialog(this, QStringLiteral("Экспорт"), m_lastFolder,
        QStringLiteral("%1 (*.%2)").arg(filter, suffix));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(suffix);
    if (dialog.exec() == QDialog::Accepted)
        exportTo(form, dialog.selectedFiles().value(0), chosenOnly);
}

bool MainWindow::exportTo(FormFile form, const QString& fileName, bool chosenOnly)
{
    struct Outcome {
        QString error;
        QString remark;
    };
    auto outcome = std::make_shared<Outcome>();
    FormExport task;
    task.table = m_document.table();
    task.northingFirst = m_document.isNorthingFirst();
    task.objects = chosenOnly ? chosenObjects() : allRows(task.table.objects.size());
    std::sort(task.objects.begin(), task.objects.end());
    task.title = QStringLiteral("План и каталог координат");
    task.fileName = fileName;
    task.form = form;
    const QString shown = QDir::toNativeSeparators(fileName);
    const bool isDone = runWithProgress(
        this, QStringLiteral("Пишется %1…").arg(shown), [=](const std::atomic_bool& cancelled) {
            outcome->error = writeFormFile(task, cancelled, &outcome->remark);
        });
    if (!isDone)
        return false;
    if (!outcome->error.isEmpty()) {
        warn(this, QStringLiteral("Файл не записан"), outcome->error);
        return false;
    }
    if (!outcome->remark.isEmpty())
        m_messages->add(fileName, outcome->remark);
    m_lastFolder = QFileInfo(fileName).absolutePath();
    statusBar()->showMessage(QStringLiteral("Записан файл %1").arg(shown), noticeMs);
    return true;
}

void MainWindow::print()
{
    const QString title = QStringLiteral("План и каталог координат");
    auto printer = std::make_shared<QPrinter>(QPrinter::HighResolution);
    printer->setPageLayout(Sheet::page());
    printer->setDocName(title);
    QPrintDialog dialog(printer.get(), this);
    dialog.setOption(QAbstractPrintDialog::PrintSelection, !chosenObjects().isEmpty());
    if (dialog.exec() != QDialog::Accepted)
        return;
    QVector<int> rows = printer->printRange() == QPrinter::Selection
        ? chosenObjects()
        : allRows(m_document.objects().size());
    std::sort(rows.begin(), rows.end());
    auto sheet =
        std::make_shared<Sheet>(m_document.table(), rows, m_document.isNorthingFirst(), title);
    auto isPrinted = std::make_shared<bool>(false);
    const bool isDone = runWithProgress(
        this, QStringLiteral("Печатается…"), [=](const std::atomic_bool& cancelled) {
            *isPrinted = sheet->paint(*printer, cancelled);
            if (!*isPrinted)
                printer->abort();
        });
    if (isDone && !*isPrinted) {
        warn(this, QStringLiteral("Не напечатано"), QStringLiteral("Принтер не принял задание."));
    }
}

void MainWindow::copyCatalogue()
{
    QVector<int> rows;
    for (const QItemSelectionRange& range : m_catalogue->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    // One row is where the cursor stands; more are a choice.
    if (rows.size() < 2)
        rows = allRows(m_catalogueModel->rowCount());
    struct Texts {
        QString plain;
        QString html;
    };
    auto texts = std::make_shared<Texts>();
    const CatalogueText catalogue = m_catalogueModel->text();
    const bool isDone = runWithProgress(
        this, QStringLiteral("Каталог копируется…"), [=](const std::atomic_bool& cancelled) {
            // Beside a long plain text the other one would only take room.
            constexpr int mostInHtml = 50000;
            if (rows.size() <= mostInHtml)
                texts->html = catalogue.html(rows, cancelled);
            texts->plain = catalogue.plain(rows, cancelled);
        });
    if (!isDone)
        return;
    auto* copied = new QMimeData;
    copied->setText(texts->plain);
    if (!texts->html.isEmpty())
        copied->setHtml(texts->html);
    QApplication::clipboard()->setMimeData(copied);
    statusBar()->showMessage(
        QStringLiteral("В буфер обмена скопировано строк: %1").arg(rows.size()), noticeMs);
}

void MainWindow::find(bool backwards)
{
    const QString text = m_search->text();
    const int from = std::max(0, m_objects->currentIndex().row());
    const int row = text.isEmpty() ? -1 : m_objectsModel->find(text, from, backwards);
    if (row < 0) {
        statusBar()->showMessage(QStringLiteral("Не найдено: %1").arg(text), noticeMs);
        return;
    }
    chooseObject(row);
}

void MainWindow::editFormSettings()
{
    FormSettingsDialog dialog(m_settings, this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    m_settings = dialog.settings();
    m_flow->setSettings(m_settings);
    m_catalogueModel->setTitles(m_settings.titleList());
    FormTable table = m_document.table();
    table.name = m_settings.tableName;
    table.catalogueName = m_settings.catalogueName;
    table.columns = m_settings.columns;
    if (table.objects.isEmpty())
        m_document.reset(table, {});
    else
        m_document.replaceTable(table, QStringLiteral("таблицы программы"));
}

void MainWindow::showHelp()
{
    if (!m_guide) {
        const QString file = GuideWindow::findGuide();
        if (file.isEmpty()) {
            QMessageBox::information(
                this, QStringLiteral("Руководство"), QStringLiteral("Файл руководства не найден."));
            return;
        }
        m_guide = std::make_unique<GuideWindow>(file);
    }
    m_guide->show();
    m_guide->raise();
    m_guide->activateWindow();
}

void MainWindow::showAbout()
{
    QMessageBox::about(this, QStringLiteral("О программе"),
        QStringLiteral("<p><b>Каталоги координат</b> %1</p>"
                       "<p>Импорт объектов из MIF и DXF, правка обозначений, план, экспорт и "
                       "печать.</p><p>Модуль импорта: %2</p>")
            .arg(QApplication::applicationVersion().toHtmlEscaped(),
                QDir::toNativeSeparators(m_host.fileName()).toHtmlEscaped()));
}
