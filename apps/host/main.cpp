#include "host.h"
#include "hostoptions.h"

#include <QApplication>
#include <QLibraryInfo>
#include <QSettings>
#include <QTranslator>

int main(int argc, char** argv)
{
    const bool unattended = isUnattended(argc, argv);
    if (unattended)
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("importgeometry"));
    QApplication::setApplicationName(QStringLiteral("importgeometry-host"));

    QTranslator translator;
    if (translator.load(
            QStringLiteral("qtbase_ru"), QLibraryInfo::location(QLibraryInfo::TranslationsPath)))
        QApplication::installTranslator(&translator);

    const HostOptions options = readOptions(app);
    if (!options.settingsDir.isEmpty())
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, options.settingsDir);
    return runHost(options, unattended);
}
