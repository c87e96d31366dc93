#include "mainwindow.h"

#include "background.h"
#include "cataloguemodel.h"
#include "diagnosispane.h"
#include "export/measures.h"
#include "guidewindow.h"
#include "importflow.h"
#include "messagespane.h"
#include "objectsmodel.h"
#include "plaintext.h"
#include "planwidget.h"

#include <QCloseEvent>
#include <QDockWidget>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QMimeData>
#include <QSettings>
#include <QSplitter>
#include <QStatusBar>
#include <QTableView>
#include <QVBoxLayout>

namespace {

const QString windowGroup = QStringLiteral("window/");
constexpr int mostRecent = 10;

QTableView* makeTable(QAbstractItemModel& model, const char* name, const QString& title)
{
    auto* view = new QTableView;
    view->setObjectName(QLatin1String(name));
    view->setAccessibleName(title);
    view->setModel(&model);
    view->setTabKeyNavigation(false);
    view->setSelectionBehavior(QAbstractItemView::SelectRows);
    view->setWordWrap(false);
    view->horizontalHeader()->setStretchLastSection(true);
    view->horizontalHeader()->setHighlightSections(false);
    view->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    view->verticalHeader()->setDefaultSectionSize(view->fontMetrics().height() + 6);
    return view;
}

} // namespace

MainWindow::MainWindow(PluginHost& host)
    : m_host(host)
    , m_flow(new ImportFlow(m_document, host, *this))
{
    m_flow->setParent(this);
    setObjectName(QStringLiteral("mainWindow"));
    setAcceptDrops(true);
    resize(1100, 720);
    buildViews();
    buildDocks();
    buildActions();
    connectViews();
    loadSettings();
    updateTitle();
}

MainWindow::~MainWindow()
{
    finishBackgroundWork();
    disconnect(&m_document, nullptr, this, nullptr);
    disconnect(&m_document.undoStack(), nullptr, this, nullptr);
    // The views and their models ask the document to the last; it is gone before the children of a
    // window go by themselves.
    delete takeCentralWidget();
    delete m_catalogueModel;
    delete m_objectsModel;
}

void MainWindow::buildViews()
{
    m_objectsModel = new ObjectsModel(m_document, this);
    m_catalogueModel = new CatalogueModel(m_document, this);
    m_objects = makeTable(*m_objectsModel, "objects", QStringLiteral("Объекты"));
    m_catalogue =
        makeTable(*m_catalogueModel, "catalogue", QStringLiteral("Каталог координат объекта"));
    m_catalogue->setSelectionBehavior(QAbstractItemView::SelectItems);
    // Only what is in sight is measured: a catalogue may have any number of rows.
    m_catalogue->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_catalogue->horizontalHeader()->setResizeContentsPrecision(0);
    m_objects->horizontalHeader()->setStretchLastSection(false);
    m_objects->horizontalHeader()->setSectionResizeMode(
        ObjectsModel::Designation, QHeaderView::Stretch);
    m_objects->horizontalHeader()->setSectionResizeMode(
        ObjectsModel::Points, QHeaderView::ResizeToContents);
    m_objects->horizontalHeader()->setResizeContentsPrecision(0);
    m_plan = new PlanWidget(m_document);
    m_plan->setObjectName(QStringLiteral("plan"));
    m_search = new QLineEdit;
    m_search->setObjectName(QStringLiteral("search"));
    m_search->setPlaceholderText(QStringLiteral("Найти обозначение"));
    m_search->setAccessibleName(QStringLiteral("Найти объект по обозначению"));
    m_search->setClearButtonEnabled(true);
    // A file that is dropped on it is for the window.
    m_search->setAcceptDrops(false);
    m_objectLabel = plainLabel();
    m_objectLabel->setObjectName(QStringLiteral("objectLabel"));
    m_objectLabel->setWordWrap(true);

    const auto makeColumn = [](std::initializer_list<QWidget*> widgets) {
        auto* column = new QWidget;
        auto* layout = new QVBoxLayout(column);
        layout->setContentsMargins(0, 0, 0, 0);
        for (QWidget* widget : widgets)
            layout->addWidget(widget);
        return column;
    };
    auto* splitter = new QSplitter;
    splitter->setObjectName(QStringLiteral("splitter"));
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(makeColumn({ m_search, m_objects }));
    splitter->addWidget(makeColumn({ m_objectLabel, m_catalogue }));
    splitter->addWidget(m_plan);
    splitter->setStretchFactor(2, 1);
    splitter->setSizes({ 230, 340, 530 });
    setCentralWidget(splitter);

    m_counts = new QLabel;
    m_coordinates = new QLabel;
    m_coordinates->setObjectName(QStringLiteral("coordinates"));
    statusBar()->addWidget(m_counts, 1);
    statusBar()->addPermanentWidget(m_coordinates);
}

void MainWindow::buildDocks()
{
    m_messages = new MessagesPane;
    m_diagnosis = new DiagnosisPane;
    const auto addDock = [this](const char* name, const QString& title, QWidget* content) {
        auto* dock = new QDockWidget(title, this);
        dock->setObjectName(QLatin1String(name));
        dock->setWidget(content);
        addDockWidget(Qt::BottomDockWidgetArea, dock);
        return dock;
    };
    m_diagnosisDock = addDock("diagnosisDock", QStringLiteral("Диагностика"), m_diagnosis);
    m_messagesDock = addDock("messagesDock", QStringLiteral("Сообщения"), m_messages);
    tabifyDockWidget(m_diagnosisDock, m_messagesDock);
    m_diagnosisDock->raise();
    resizeDocks({ m_diagnosisDock }, { 230 }, Qt::Vertical);
}

void MainWindow::connectViews()
{
    connect(m_objects->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
        &MainWindow::showObject);
    connect(m_objects->selectionModel(), &QItemSelectionModel::selectionChanged, this,
        [this] { m_plan->select(chosenObjects()); });
    connect(m_catalogue->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
        &MainWindow::showVertex);
    connect(m_plan, &PlanWidget::objectPicked, this, &MainWindow::chooseObject);
    connect(m_plan, &PlanWidget::vertexPicked, this, [this](int contour, int vertex) {
        const int row = m_catalogueModel->rowOf({ contour, vertex });
        const QModelIndex index = m_catalogueModel->index(row, m_document.table().columns.nColNum);
        m_catalogue->setCurrentIndex(index);
        m_catalogue->scrollTo(index);
    });
    connect(m_plan, &PlanWidget::cursorMoved, m_coordinates, &QLabel::setText);
    connect(&m_document, &Document::tableReplaced, this, [this] {
        chooseObject(m_document.objects().isEmpty() ? -1 : 0);
        m_counts->setText(QStringLiteral("Объектов: %1, вершин: %2")
                              .arg(m_document.objects().size())
                              .arg(m_document.table().vertexCount()));
    });
    connect(&m_document, &Document::objectRenamed, this, &MainWindow::chooseObject);
    connect(
        &m_document, &Document::pointRenamed, this, [this](int object, int contour, int vertex) {
            // What an undo changed must be seen.
            chooseObject(object);
            m_catalogue->setCurrentIndex(m_catalogueModel->index(
                m_catalogueModel->rowOf({ contour, vertex }), m_document.table().columns.nColNum));
        });
    connect(&m_document, &Document::fileNameChanged, this, &MainWindow::updateTitle);
    connect(&m_document.undoStack(), &QUndoStack::cleanChanged, this, &MainWindow::updateTitle);
    connect(m_search, &QLineEdit::returnPressed, this, [this] { find(false); });

    connect(m_flow, &ImportFlow::reported, this, [this](const QString& file, const QString& text) {
        m_messages->add(file, text);
        m_messagesDock->show();
        m_messagesDock->raise();
    });
    connect(m_flow, &ImportFlow::imported, this, &MainWindow::addRecent);
    connect(m_flow, &ImportFlow::mended, m_diagnosis, &DiagnosisPane::showChanges);
    connect(m_flow, &ImportFlow::checked, this, [this](const Report& report) {
        m_diagnosis->show(report);
        if (m_diagnosis->hasCauses())
            m_diagnosisDock->show();
        m_diagnosisDock->raise();
    });
    connect(m_diagnosis, &DiagnosisPane::mendRequested, m_flow, &ImportFlow::mend);
}

void MainWindow::chooseObject(int object)
{
    if (object < 0) {
        m_objects->clearSelection();
        m_objects->setCurrentIndex({});
        showObject();
        return;
    }
    const QModelIndex index = m_objectsModel->index(object, ObjectsModel::Designation);
    if (m_objects->currentIndex().row() != object || !m_objects->selectionModel()->hasSelection())
        m_objects->setCurrentIndex(index);
    m_objects->scrollTo(index);
    showObject();
}

QVector<int> MainWindow::chosenObjects() const
{
    QVector<int> rows;
    const int current = m_objects->currentIndex().row();
    for (const QItemSelectionRange& range : m_objects->selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row) {
            if (row != current)
                rows.append(row);
        }
    }
    if (m_objects->selectionModel()->isRowSelected(current, QModelIndex()))
        rows.append(current);
    return rows;
}

void MainWindow::showObject()
{
    const QModelIndex current = m_objects->currentIndex();
    m_catalogueModel->setObject(current.isValid() ? current.row() : -1);
    updateObjectLabel();
}

void MainWindow::showVertex()
{
    const CatalogueModel::Place place =
        m_catalogueModel->placeOf(m_catalogue->currentIndex().row());
    m_plan->selectVertex(place.contour, place.vertex);
}

void MainWindow::updateObjectLabel()
{
    const int object = m_catalogueModel->object();
    if (object < 0) {
        m_objectLabel->setText(QStringLiteral("Объект не выбран"));
        return;
    }
    const DefPolygon& polygon = m_document.objects().at(object);
    const ObjectShape shape(polygon, isArea(polygon), false);
    const auto number = [](double value) { return QLocale().toString(value, 'f', 2); };
    const QString measures = shape.isArea
        ? QStringLiteral("площадь %1 кв. м, периметр %2 м")
              .arg(number(shape.area), number(shape.perimeter))
        : QStringLiteral("длина %1 м").arg(number(shape.perimeter));
    m_objectLabel->setText(QStringLiteral("%1: %2").arg(polygon.def.left(100), measures));
}

void MainWindow::updateTitle()
{
    const QString name = m_document.fileName().isEmpty()
        ? QStringLiteral("новая форма")
        : QFileInfo(m_document.fileName()).fileName();
    setWindowTitle(QStringLiteral("%1[*]").arg(name));
    setWindowModified(!m_document.undoStack().isClean());
    setWindowFilePath(m_document.fileName());
    updateObjectLabel();
}

bool MainWindow::mayReplace()
{
    if (m_document.undoStack().isClean())
        return true;
    const auto answer = QMessageBox::question(this, QStringLiteral("Форма изменена"),
        QStringLiteral("Сохранить изменения формы?"),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save)
        return save();
    return answer == QMessageBox::Discard;
}

void MainWindow::loadSettings()
{
    const QSettings store;
    m_settings.load(store);
    m_flow->setSettings(m_settings);
    m_catalogueModel->setTitles(m_settings.titleList());
    FormTable empty;
    empty.name = m_settings.tableName;
    empty.catalogueName = m_settings.catalogueName;
    empty.columns = m_settings.columns;
    m_document.reset(empty, {});
    restoreGeometry(store.value(windowGroup + QStringLiteral("geometry")).toByteArray());
    restoreState(store.value(windowGroup + QStringLiteral("state")).toByteArray());
    auto* splitter = findChild<QSplitter*>(QStringLiteral("splitter"));
    splitter->restoreState(store.value(windowGroup + QStringLiteral("splitter")).toByteArray());
    m_recent = store.value(QStringLiteral("recent")).toStringList().mid(0, mostRecent);
    m_lastFolder = store.value(QStringLiteral("lastFolder")).toString();
    updateRecentMenu();
}

void MainWindow::saveSettings()
{
    QSettings store;
    m_settings.save(store);
    store.setValue(windowGroup + QStringLiteral("geometry"), saveGeometry());
    store.setValue(windowGroup + QStringLiteral("state"), saveState());
    store.setValue(windowGroup + QStringLiteral("splitter"),
        findChild<QSplitter*>(QStringLiteral("splitter"))->saveState());
    store.setValue(QStringLiteral("recent"), m_recent);
    store.setValue(QStringLiteral("lastFolder"), m_lastFolder);
    store.setValue(QStringLiteral("session/file"), m_document.fileName());
    store.setValue(QStringLiteral("session/object"), m_catalogueModel->object());
}

void MainWindow::restoreSession()
{
    const QSettings store;
    const QString fileName = store.value(QStringLiteral("session/file")).toString();
    if (fileName.isEmpty() || !QFileInfo(fileName).isFile() || !openForm(fileName))
        return;
    const int object = store.value(QStringLiteral("session/object")).toInt();
    if (object >= 0 && object < m_document.objects().size())
        chooseObject(object);
}

void MainWindow::addRecent(const QString& fileName)
{
    const QString path = QFileInfo(fileName).absoluteFilePath();
    m_recent.removeAll(path);
    m_recent.prepend(path);
    m_recent = m_recent.mid(0, mostRecent);
    m_lastFolder = QFileInfo(path).absolutePath();
    updateRecentMenu();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!mayReplace()) {
        event->ignore();
        return;
    }
    saveSettings();
    event->accept();
}

void MainWindow::dragEnterEvent(QDragEnterEvent* event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void MainWindow::dropEvent(QDropEvent* event)
{
    QStringList files;
    for (const QUrl& url : event->mimeData()->urls()) {
        if (url.isLocalFile())
            files.append(url.toLocalFile());
    }
    event->acceptProposedAction();
    openFiles(files);
}
