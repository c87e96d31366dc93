#include "pluginhost.h"

#include "dialoglink.h"
#include "import/formats.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLibrary>

namespace {

/// Whose message function the plug-in has; the function itself cannot know.
PluginHost* receiver = nullptr;

} // namespace

PluginHost::PluginHost(QObject* parent)
    : QObject(parent)
{
    receiver = this;
}

PluginHost::~PluginHost()
{
    if (receiver == this)
        receiver = nullptr;
}

void PluginHost::takeMessage(const QString& text)
{
    if (!receiver)
        return;
    receiver->m_messages.append(text);
    emit receiver->message(text);
}

QStringList PluginHost::candidates()
{
    const QString program = QCoreApplication::applicationDirPath();
    QStringList folders{ program, program + QStringLiteral("/../lib"),
        program + QStringLiteral("/importgeometry"),
        program + QStringLiteral("/../lib/importgeometry") };
    for (const QString& path : QCoreApplication::libraryPaths())
        folders.append(path + QStringLiteral("/importgeometry"));
    QStringList files;
    for (const QString& folder : qAsConst(folders)) {
        const QStringList names{ QStringLiteral("libimportgeometry.*"),
            QStringLiteral("importgeometry.*") };
        for (const QFileInfo& info : QDir(folder).entryInfoList(names, QDir::Files, QDir::Name)) {
            if (QLibrary::isLibrary(info.fileName()))
                files.append(info.canonicalFilePath());
        }
    }
    return files;
}

bool PluginHost::load(const QString& fileName)
{
    const QStringList files = fileName.isEmpty() ? candidates() : QStringList{ fileName };
    m_error = QStringLiteral("модуля нет ни рядом с программой, ни среди модулей Qt");
    for (const QString& file : files) {
        m_loader.setFileName(QDir::cleanPath(file));
        m_plugin = qobject_cast<ImportGeometryInterface*>(m_loader.instance());
        if (m_plugin)
            return true;
        m_error = m_loader.isLoaded() ? QStringLiteral("%1 - другой модуль").arg(file)
                                      : m_loader.errorString();
    }
    return false;
}

QStringList PluginHost::operations() const
{
    return m_plugin ? m_plugin->operations() : QStringList();
}

QString PluginHost::operationFor(const QString& fileName) const
{
    const Format* const format = formatOfFile(fileName);
    return format && operations().contains(format->operation) ? format->operation : QString();
}

ImportAnswer PluginHost::run(
    const QString& operation, const QString& fileName, const FormSettings& settings)
{
    ImportAnswer answer;
    if (!m_plugin)
        return answer;
    m_messages.clear();
    answer.fileName = fileName;
    DialogLink link(operation, answer);
    answer.result = m_plugin->operation(operation, settings.contextName, settings.tableName,
        settings.catalogueName, settings.columns, takeMessage);
    answer.messages = m_messages;
    return answer;
}
