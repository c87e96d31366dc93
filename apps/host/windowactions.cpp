#include "mainwindow.h"

#include "diagnosispane.h"
#include "messagespane.h"
#include "planwidget.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QDockWidget>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QStyle>
#include <QTableView>
#include <QToolBar>

QAction* MainWindow::addTo(QMenu& menu, const char* name, const QString& text,
    const QKeySequence& keys, const std::function<void()>& action)
{
    QAction* added = menu.addAction(text);
    added->setObjectName(QLatin1String(name));
    added->setShortcut(keys);
    connect(added, &QAction::triggered, this, action);
    return added;
}

void MainWindow::buildActions()
{
    auto* bar = addToolBar(QStringLiteral("Панель инструментов"));
    bar->setObjectName(QStringLiteral("toolBar"));
    bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    buildFileMenu();
    buildEditMenu();
    buildViewMenu();
    buildHelpMenu();

    // What is at hand without a menu; the operations of the plug-in stand first.
    const auto addButton = [this, bar](const char* name, QStyle::StandardPixmap icon) {
        auto* action = findChild<QAction*>(QLatin1String(name));
        action->setIcon(style()->standardIcon(icon));
        bar->addAction(action);
    };
    for (int i = 0; i < m_host.operations().size(); ++i)
        addButton(qPrintable(QStringLiteral("operation%1").arg(i)), QStyle::SP_DialogOpenButton);
    addButton("save", QStyle::SP_DialogSaveButton);
    bar->addSeparator();
    addButton("undo", QStyle::SP_ArrowBack);
    addButton("redo", QStyle::SP_ArrowForward);
    bar->addSeparator();
    bar->addAction(findChild<QAction*>(QStringLiteral("fit")));
    bar->addAction(findChild<QAction*>(QStringLiteral("print")));
}

void MainWindow::buildFileMenu()
{
    QMenu& menu = *menuBar()->addMenu(QStringLiteral("&Файл"));
    addTo(menu, "new", QStringLiteral("&Новая форма"), QKeySequence::New, [this] {
        if (!mayReplace())
            return;
        FormTable empty;
        empty.name = m_settings.tableName;
        empty.catalogueName = m_settings.catalogueName;
        empty.columns = m_settings.columns;
        m_document.reset(empty, {});
    });
    addTo(menu, "open", QStringLiteral("&Открыть форму…"), QKeySequence::Open,
        [this] { chooseForm(); });
    m_recentMenu = menu.addMenu(QStringLiteral("Не&давние файлы"));
    menu.addSeparator();
    const QStringList operations = m_host.operations();
    for (int i = 0; i < operations.size(); ++i) {
        const QString& operation = operations.at(i);
        addTo(menu, qPrintable(QStringLiteral("operation%1").arg(i)),
            operation + QStringLiteral("…"), QKeySequence(int(Qt::CTRL) + int(Qt::Key_1) + i),
            [this, operation] { chooseFiles(operation); });
    }
    addTo(menu, "foreign", QStringLiteral("Из &другого формата…"), QKeySequence(),
        [this] { chooseForeign(); });
    addTo(menu, "check", QStringLiteral("П&роверить файл…"), QKeySequence(),
        [this] { chooseFileToCheck(); });
    menu.addSeparator();
    addTo(menu, "save", QStringLiteral("&Сохранить"), QKeySequence::Save, [this] { save(); });
    addTo(menu, "saveAs", QStringLiteral("Сохранить &как…"), QKeySequence::SaveAs,
        [this] { saveAs(); });
    buildExportMenu(*menu.addMenu(QStringLiteral("&Экспорт")));
    addTo(menu, "print", QStringLiteral("&Печать…"), QKeySequence::Print, [this] { print(); });
    menu.addSeparator();
    addTo(menu, "quit", QStringLiteral("В&ыход"), QKeySequence::Quit, [this] { close(); });
}

void MainWindow::buildExportMenu(QMenu& menu)
{
    const auto add = [this, &menu](const char* name, const QString& text, FormFile form,
                         const char* suffix, bool chosenOnly = false) {
        addTo(menu, name, text, QKeySequence(), [this, text, form, suffix, chosenOnly] {
            chooseExport(form, QString(text).remove(QLatin1Char('&')).remove(QChar(0x2026)),
                QLatin1String(suffix), chosenOnly);
        });
    };
    add("exportCsv", QStringLiteral("Таблица &CSV…"), FormFile::Csv, "csv");
    add("exportGeoJson", QStringLiteral("&GeoJSON…"), FormFile::GeoJson, "geojson");
    add("exportMif", QStringLiteral("&MIF/MID…"), FormFile::Mif, "mif");
    menu.addSeparator();
    add("exportSvg", QStringLiteral("План &SVG…"), FormFile::Svg, "svg");
    add("exportPng", QStringLiteral("План P&NG…"), FormFile::Png, "png");
    menu.addSeparator();
    add("exportPdf", QStringLiteral("План и каталог &PDF…"), FormFile::Pdf, "pdf");
    add("exportChosenPdf", QStringLiteral("План и каталог &выбранных объектов PDF…"), FormFile::Pdf,
        "pdf", true);
}

void MainWindow::buildEditMenu()
{
    QMenu& menu = *menuBar()->addMenu(QStringLiteral("&Правка"));
    QUndoStack& stack = m_document.undoStack();
    QAction* undo = stack.createUndoAction(this, QStringLiteral("&Отменить:"));
    undo->setObjectName(QStringLiteral("undo"));
    undo->setShortcut(QKeySequence::Undo);
    undo->setIconText(QStringLiteral("Отменить"));
    QAction* redo = stack.createRedoAction(this, QStringLiteral("&Повторить:"));
    redo->setObjectName(QStringLiteral("redo"));
    redo->setShortcut(QKeySequence::Redo);
    redo->setIconText(QStringLiteral("Повторить"));
    menu.addAction(undo);
    menu.addAction(redo);
    menu.addSeparator();
    addTo(menu, "copy", QStringLiteral("&Копировать каталог"), QKeySequence::Copy,
        [this] { copyCatalogue(); });
    menu.addSeparator();
    addTo(menu, "find", QStringLiteral("&Найти обозначение"), QKeySequence::Find, [this] {
        m_search->setFocus(Qt::ShortcutFocusReason);
        m_search->selectAll();
    });
    addTo(menu, "findNext", QStringLiteral("Найти &следующее"), QKeySequence::FindNext,
        [this] { find(false); });
    addTo(menu, "findPrevious", QStringLiteral("Найти &предыдущее"), QKeySequence::FindPrevious,
        [this] { find(true); });
    menu.addSeparator();
    addTo(menu, "formSettings", QStringLiteral("&Таблицы программы…"), QKeySequence::Preferences,
        [this] { editFormSettings(); });
}

void MainWindow::buildViewMenu()
{
    QMenu& menu = *menuBar()->addMenu(QStringLiteral("&Вид"));
    addTo(menu, "fit", QStringLiteral("&Весь план"), QKeySequence(int(Qt::CTRL) + int(Qt::Key_0)),
        [this] { m_plan->fit(); });
    addTo(menu, "fitChosen", QStringLiteral("В&ыбранный объект"),
        QKeySequence(int(Qt::CTRL) + int(Qt::Key_9)), [this] { m_plan->fitSelection(); });
    addTo(menu, "zoomIn", QStringLiteral("&Крупнее"), QKeySequence::ZoomIn,
        [this] { m_plan->zoomIn(); });
    addTo(menu, "zoomOut", QStringLiteral("&Мельче"), QKeySequence::ZoomOut,
        [this] { m_plan->zoomOut(); });
    menu.addSeparator();
    for (QDockWidget* dock : { m_diagnosisDock, m_messagesDock }) {
        QAction* toggle = dock->toggleViewAction();
        menu.addAction(toggle);
        // Behind the other one it would not be seen.
        connect(toggle, &QAction::triggered, dock, [dock](bool isShown) {
            if (isShown)
                dock->raise();
        });
    }
    menu.addSeparator();
    addTo(menu, "nextPart", QStringLiteral("&Следующая часть окна"), QKeySequence(Qt::Key_F6),
        [this] { goToPart(1); });
    addTo(menu, "previousPart", QStringLiteral("&Предыдущая часть окна"),
        QKeySequence(int(Qt::SHIFT) + int(Qt::Key_F6)), [this] { goToPart(-1); });
}

void MainWindow::buildHelpMenu()
{
    QMenu& menu = *menuBar()->addMenu(QStringLiteral("&Справка"));
    addTo(menu, "help", QStringLiteral("&Руководство"), QKeySequence::HelpContents,
        [this] { showHelp(); });
    addTo(menu, "about", QStringLiteral("&О программе"), QKeySequence(), [this] { showAbout(); });
}

void MainWindow::goToPart(int step)
{
    // One of two panes in one place cannot be reached by the tab key.
    QVector<QWidget*> parts{ m_objects, m_catalogue, m_plan };
    for (const QDockWidget* dock : { m_diagnosisDock, m_messagesDock }) {
        if (dock->toggleViewAction()->isChecked())
            parts.append(dock->widget());
    }
    const QWidget* const focus = focusWidget();
    int current = step > 0 ? -1 : 0;
    for (int i = 0; i < parts.size(); ++i) {
        if (focus && (parts.at(i) == focus || parts.at(i)->isAncestorOf(focus)))
            current = i;
    }
    QWidget* const next = parts.at((current + step + parts.size()) % parts.size());
    if (auto* dock = qobject_cast<QDockWidget*>(next->parentWidget()))
        dock->raise();
    next->setFocus(Qt::ShortcutFocusReason);
}

void MainWindow::updateRecentMenu()
{
    m_recentMenu->clear();
    m_recentMenu->setEnabled(!m_recent.isEmpty());
    for (const QString& fileName : qAsConst(m_recent)) {
        // An ampersand would mark a letter.
        QString text = QDir::toNativeSeparators(fileName);
        text.replace(QLatin1Char('&'), QLatin1String("&&"));
        QAction* action = m_recentMenu->addAction(text);
        connect(action, &QAction::triggered, this, [this, fileName] { openFiles({ fileName }); });
    }
}
