#include "importrun/importrun.h"

#include "import/mapimport.h"
#include "status.h"

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

} // namespace

ImportRun runImport(const Format& format, const ImportOptions& options)
{
    ImportRun run;
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
