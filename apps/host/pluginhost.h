#pragma once

#include "formsettings.h"
#include "import/importoptions.h"

#include <QObject>
#include <QPluginLoader>
#include <QStringList>

/// What an operation of the plug-in gave.
struct ImportAnswer {
    QString result; ///< XML; null when the user cancelled
    QString fileName; ///< the object file that the dialog had at its end
    ImportOptions options; ///< the choices that the dialog had at its end
    QStringList messages;
    bool isStarted = false; ///< the user had the dialog read the file
};

/// Loads the import plug-in and runs its operations.
class PluginHost : public QObject {
    Q_OBJECT

public:
    explicit PluginHost(QObject* parent = nullptr);
    ~PluginHost() override;

    /// Where the plug-in is looked for: beside the program, then in Qt's plug-in paths.
    static QStringList candidates();
    /// Loads the plug-in from a file; from the first candidate that is one, for an empty name.
    /// False when there is none, with errorString() telling why.
    bool load(const QString& fileName);
    QString errorString() const { return m_error; }
    QString fileName() const { return m_loader.fileName(); }

    QStringList operations() const;
    /// The operation for files of this kind, by the suffix; empty when the plug-in has none.
    QString operationFor(const QString& fileName) const;
    /// Runs an operation: its dialog opens with the file filled in, unless the name is empty.
    ImportAnswer run(
        const QString& operation, const QString& fileName, const FormSettings& settings);

signals:
    /// What the plug-in reports while it runs.
    void message(const QString& text);

private:
    static void takeMessage(const QString& text);

    QPluginLoader m_loader;
    ImportGeometryInterface* m_plugin = nullptr;
    QString m_error;
    QStringList m_messages;
};
