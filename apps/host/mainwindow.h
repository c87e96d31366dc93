#pragma once

#include "document.h"
#include "formexport.h"
#include "formsettings.h"
#include "pluginhost.h"

#include <QMainWindow>

#include <memory>

class CatalogueModel;
class DiagnosisPane;
class GuideWindow;
class ImportFlow;
class MessagesPane;
class ObjectsModel;
class PlanWidget;
class QDockWidget;
class QLabel;
class QLineEdit;
class QTableView;

/// The window of the program: the objects of the form, the catalogue of the chosen one and the plan
/// beside one another, with what the plug-in reported and what is the matter with a file below.
class MainWindow : public QMainWindow {
    Q_OBJECT

public:
    /// `host` must outlive the window; its plug-in may be missing.
    explicit MainWindow(PluginHost& host);
    ~MainWindow() override;

    /// Opens drawings and forms one after the other, when control is back in the event loop.
    void openFiles(const QStringList& fileNames);
    /// Shows the form that was open last.
    void restoreSession();
    /// Writes the form, or a sheet of it, without asking anything. False, after a message, when
    /// that failed.
    bool exportTo(FormFile form, const QString& fileName, bool chosenOnly = false);

    Document& document() { return m_document; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // mainwindow.cpp
    void buildViews();
    void buildDocks();
    void connectViews();
    void chooseObject(int object);
    void showObject();
    void showVertex();
    void updateTitle();
    void updateObjectLabel();
    QVector<int> chosenObjects() const;
    bool mayReplace();
    void loadSettings();
    void saveSettings();

    // windowactions.cpp
    void buildActions();
    void buildFileMenu();
    void buildExportMenu(QMenu& menu);
    void buildEditMenu();
    void buildViewMenu();
    void buildHelpMenu();
    QAction* addTo(QMenu& menu, const char* name, const QString& text, const QKeySequence& keys,
        const std::function<void()>& action);
    /// Moves the focus so many parts of the window on.
    void goToPart(int step);
    void updateRecentMenu();
    void addRecent(const QString& fileName);

    // windowfiles.cpp
    void openNext();
    void chooseFiles(const QString& operation);
    void chooseForm();
    void chooseForeign();
    void chooseFileToCheck();
    bool openForm(const QString& fileName);
    bool save();
    bool saveAs();
    void chooseExport(FormFile form, const QString& filter, const QString& suffix, bool chosenOnly);
    void print();
    void copyCatalogue();
    void find(bool backwards);
    void editFormSettings();
    void showHelp();
    void showAbout();

    PluginHost& m_host;
    Document m_document;
    ImportFlow* m_flow;
    FormSettings m_settings;
    QStringList m_queue; ///< files to open
    bool m_isOpening = false;
    QStringList m_recent;
    QString m_lastFolder;

    ObjectsModel* m_objectsModel;
    CatalogueModel* m_catalogueModel;
    QTableView* m_objects;
    QTableView* m_catalogue;
    PlanWidget* m_plan;
    QLineEdit* m_search;
    QLabel* m_objectLabel;
    QLabel* m_coordinates;
    QLabel* m_counts;
    MessagesPane* m_messages;
    DiagnosisPane* m_diagnosis;
    QDockWidget* m_messagesDock = nullptr;
    QDockWidget* m_diagnosisDock = nullptr;
    QMenu* m_recentMenu = nullptr;
    std::unique_ptr<GuideWindow> m_guide; ///< once it was asked for
};
