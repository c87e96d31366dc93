#pragma once

#include "pluginhost.h"
#include "prepare/foreignfile.h"
#include "survey/report.h"

#include <QObject>

class Document;
class QWidget;

/// The way of a drawing into the form: the plug-in's dialog, the check of what it left out, and a
/// mended copy where one helps.
class ImportFlow : public QObject {
    Q_OBJECT

public:
    /// All must outlive the flow; `window` is what progress is shown over.
    ImportFlow(Document& document, PluginHost& host, QWidget& window);

    void setSettings(const FormSettings& settings) { m_settings = settings; }
    /// Runs the operation with the file filled in, unless the name is empty.
    void import(const QString& operation, const QString& fileName);
    /// Checks a file as it would be imported with the usual choices.
    void check(const QString& fileName);
    /// Asks which layer of a file of another format to take, writes it as a pair beside the file
    /// and opens that.
    void importForeign(const QString& fileName);
    /// Writes a mended copy of a file and opens it in its place.
    void mend(const QString& fileName, bool visibleOnly);

signals:
    void imported(const QString& fileName);
    void reported(const QString& fileName, const QString& text);
    void checked(const Report& report);
    void mended(const QString& fileName, const QString& copyName, const QStringList& changes);

private:
    bool takeResult(const ImportAnswer& answer);
    /// The layers with objects; none after a message, or when the user has cancelled.
    QVector<prep::ForeignLayer> layersOf(const QString& fileName);
    void tellTrouble(const QString& fileName, const QString& trouble);
    void check(const QString& operation, const ImportOptions& options);

    Document& m_document;
    PluginHost& m_host;
    QWidget& m_window;
    FormSettings m_settings;
    QString m_running; ///< the file of the import that runs
    QString m_lastFile; ///< the file of the last import, and the step that it is
    int m_lastStep = -1;
};
