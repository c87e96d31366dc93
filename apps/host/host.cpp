#include "host.h"

#include "dialogdriver.h"
#include "hostoptions.h"
#include "pluginhost.h"
#include "wholefile.h"

#include <QDir>
#include <QPluginLoader>

#include <cstdio>

namespace {

enum ExitCode { Done = 0, Failed = 1, NoResult = 2 };

void showMessage(const QString& message)
{
    say(QStringLiteral("Сообщение: %1").arg(message));
}

void listOperations(const ImportGeometryInterface& plugin)
{
    say(QStringLiteral("Операции:"));
    for (const QString& name : plugin.operations())
        say(QStringLiteral("  %1").arg(name));
}

bool saveResult(const QString& result, const QString& fileName)
{
    WholeFile file(fileName);
    const QByteArray bytes = result.toUtf8();
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && commitWhole(file)) {
        say(QStringLiteral("Результат записан: %1").arg(QDir::toNativeSeparators(fileName)));
        return true;
    }
    say(QStringLiteral("Ошибка записи файла %1: %2")
            .arg(QDir::toNativeSeparators(fileName), file.errorString()));
    return false;
}

int runOperation(ImportGeometryInterface& plugin, const HostOptions& options, bool unattended)
{
    say(QStringLiteral("Операция: %1").arg(options.operation));
    const DialogDriver driver(options, unattended);
    const QString result = plugin.operation(options.operation, options.contextName,
        options.tableName, options.catalogueTableName, options.info, showMessage);
    if (result.isNull()) {
        say(QStringLiteral("Результата нет."));
        return NoResult;
    }
    if (!options.outputFile.isEmpty())
        return saveResult(result, options.outputFile) ? Done : Failed;
    say(QStringLiteral("Результат:"));
    say(result);
    return Done;
}

} // namespace

void say(const QString& line)
{
    std::fputs(qUtf8Printable(line), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

int runHost(const HostOptions& options, bool unattended)
{
    const QString file =
        options.pluginPath.isEmpty() ? PluginHost::candidates().value(0) : options.pluginPath;
    QPluginLoader loader(QDir::cleanPath(file));
    auto* plugin = qobject_cast<ImportGeometryInterface*>(loader.instance());
    if (!plugin) {
        say(QStringLiteral("Модуль импорта не загружен: %1").arg(loader.errorString()));
        return Failed;
    }
    say(QStringLiteral("Модуль импорта: %1").arg(QDir::toNativeSeparators(loader.fileName())));
    listOperations(*plugin);
    if (options.operation.isEmpty())
        return Done;
    return runOperation(*plugin, options, unattended);
}
