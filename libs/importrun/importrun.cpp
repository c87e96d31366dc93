#include "importrun/importrun.h"

#include "import/mapimport.h"
#include "status.h"

#include <QDir>
#include <QFile>

#include <sys/stat.h>

namespace {

QStringList* messageSink = nullptr;

void takeMessage(const QString& message)
{
    messageSink->append(message);
}

/// Keeps what an import reports.
class MessageCollector : public ImportObserver {
public:
    explicit MessageCollector(QStringList& messages)
        : m_messages(messages)
    {
    }
    void failed(const ImportFailure& failure) override { m_messages.append(failure.text()); }

private:
    QStringList& m_messages;
};

/// What stands under a name in the place of a file that can be read again; null when nothing does.
const char* pipeOrDevice(const QString& fileName)
{
    struct stat status { };
    if (stat(QFile::encodeName(fileName).constData(), &status) != 0)
        return nullptr;
    switch (status.st_mode & S_IFMT) {
    case S_IFIFO:
        return "именованный канал; данные из канала подают на стандартный ввод";
    case S_IFSOCK:
        return "сокет";
    case S_IFCHR:
    case S_IFBLK:
        return "устройство";
    default:
        return nullptr;
    }
}

} // namespace

ImportRun runImport(const Format& format, const ImportOptions& options)
{
    ImportRun run;
    for (const QString& file : filesOf(format, options)) {
        if (const char* const kind = pipeOrDevice(file)) {
            run.messages.append(QStringLiteral("Ошибка открытия файла %1: это %2")
                                    .arg(QDir::toNativeSeparators(file), QString::fromUtf8(kind)));
            return run;
        }
    }
    MessageCollector collector(run.messages);
    messageSink = &run.messages;
    setStatusFunc(takeMessage);
    guarded([&] {
        const auto importer = format.makeImporter();
        importer->setOptions(options);
        importer->map = &run.objects;
        importer->observer = &collector;
        importer->importMap();
    });
    setStatusFunc(nullptr);
    return run;
}

QStringList filesOf(const Format& format, const ImportOptions& options)
{
    QStringList files;
    for (const QString& name : { options.pointFileName, options.objectFileName }) {
        if (!name.isEmpty())
            files << name << format.companionFile(name);
    }
    files.removeAll(QString());
    return files;
}
