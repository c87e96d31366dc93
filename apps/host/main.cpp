#include "host.h"
#include "hostoptions.h"
#include "mainwindow.h"
#include "plaintext.h"

#include <QApplication>
#include <QIcon>
#include <QLibraryInfo>
#include <QSettings>
#include <QTranslator>

namespace {

int runWindow(const HostOptions& options)
{
    PluginHost host;
    const bool hasPlugin = host.load(options.pluginPath);
    MainWindow window(host);
    window.show();
    if (!hasPlugin) {
        warn(&window, QStringLiteral("Модуль импорта не загружен"),
            QStringLiteral(
                "%1\n\nФормы открываются и без него; модуль указывает параметр --plugin.")
                .arg(host.errorString()));
    }
    if (options.files.isEmpty())
        window.restoreSession();
    else
        window.openFiles(options.files);
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv)
{
    const bool unattended = isUnattended(argc, argv);
    if (unattended)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QCoreApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QCoreApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("importgeometry"));
    QApplication::setApplicationName(QStringLiteral("importgeometry-host"));
    QApplication::setApplicationVersion(QStringLiteral(PROJECT_VERSION));
    QApplication::setApplicationDisplayName(QStringLiteral("Каталоги координат"));
    QIcon icon(QStringLiteral(":/icons/importgeometry-128.png"));
    icon.addFile(QStringLiteral(":/icons/importgeometry-32.png"));
    QApplication::setWindowIcon(icon);

    QTranslator translator;
    if (translator.load(
            QStringLiteral("qtbase_ru"), QLibraryInfo::location(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&translator);

    const HostOptions options = readOptions(app);
    if (!options.settingsDir.isEmpty())
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, options.settingsDir);
    return unattended || options.isScripted ? runHost(options, unattended) : runWindow(options);
}
