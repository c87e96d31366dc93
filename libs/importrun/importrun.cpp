#include "importrun/importrun.h"

#include "import/mapimport.h"
#include "status.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <utility>

#include <sys/stat.h>

namespace {

/// So many objects are passed on at a time.
constexpr int mostWaiting = 256;

/// Keeps what an import tells, and passes its objects on.
class Recorder : public ImportObserver {
public:
    Recorder(ImportRun& run, const ObjectTaker& take)
        : m_run(run)
        , m_take(take)
    {
    }

    void passStarted(ImportPass pass, const QString&) override { m_pass = pass; }
    void entityRead(QLatin1String kind) override
    {
        (m_pass == ImportPass::Points ? m_run.pointsRead : m_run.objectsRead).add(kind);
    }
    void objectBuilt(QLatin1String kind, bool closed, bool complete) override
    {
        m_run.shapes.append(closed ? Shape::Area : Shape::Line);
        if (complete)
            m_run.objectsRead.add(kind);
        if (m_take && m_run.objects.size() >= mostWaiting)
            setAside();
    }
    void objectsNamed(int count) override
    {
        m_named = count;
        passOn();
    }
    void failed(const ImportFailure& failure) override
    {
        m_run.messages.append({ failure.text(), m_pass, failure });
    }
    /// Takes what no reader told.
    void addMessage(const QString& text) { m_run.messages.append({ text, m_pass, {} }); }

    ImportPass pass() const { return m_pass; }

    /// Passes on what is left, and collects the objects again. To be called when the import is
    /// over.
    void finish()
    {
        if (m_take) {
            setAside();
            dropUnnamed();
            passOn();
            for (const QVector<DefPolygon>& objects : m_aside)
                m_run.objects += objects;
        }
        // An import that was broken off has not told of its last object, or has told of more.
        m_run.shapes.reserve(m_run.objects.size());
        while (m_run.shapes.size() < m_run.objects.size())
            m_run.shapes.append(Shape::Line);
        m_run.shapes.resize(m_run.objects.size());
    }

private:
    void setAside()
    {
        // Vertices may still be named: whatever fails, none of the objects is dropped.
        m_aside.emplace_back();
        m_aside.back().swap(m_run.objects);
    }

    /// The import has given up those that memory did not suffice to name.
    void dropUnnamed()
    {
        int named = m_named;
        for (QVector<DefPolygon>& objects : m_aside) {
            if (objects.size() > named)
                objects.resize(named);
            named -= objects.size();
        }
    }

    /// Passes on what was set aside, as far as all of it is named.
    void passOn()
    {
        for (; m_passedOn < m_aside.size(); ++m_passedOn) {
            const QVector<DefPolygon>& objects = m_aside[m_passedOn];
            if (m_named - m_taken < objects.size())
                return;
            m_taken += objects.size();
            m_take(objects);
        }
    }

    ImportRun& m_run;
    const ObjectTaker& m_take;
    std::vector<QVector<DefPolygon>> m_aside; ///< a few hundred objects at a time
    size_t m_passedOn = 0; ///< so many of them
    int m_taken = 0; ///< so many objects
    int m_named = 0; ///< so many have all their names
    ImportPass m_pass = ImportPass::Points;
};

Recorder* messageSink = nullptr;

void takeMessage(const QString& message)
{
    messageSink->addMessage(message);
}

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

void KindCounts::add(QLatin1String kind)
{
    for (auto& [name, count] : m_counts) {
        if (name == kind) {
            ++count;
            return;
        }
    }
    m_counts.emplace_back(kind, 1);
}

qint64 KindCounts::of(const std::string& kind) const
{
    const QLatin1String wanted(kind.data(), static_cast<int>(kind.size()));
    for (const auto& [name, count] : m_counts) {
        if (name == wanted)
            return count;
    }
    return 0;
}

bool ImportRun::stopped(bool forPoints) const
{
    return std::any_of(messages.cbegin(), messages.cend(), [&](const ImportMessage& message) {
        const bool isMissing =
            message.failure && message.failure->kind == FailureKind::FileNotOpened;
        return (message.pass == ImportPass::Points) == forPoints && !isMissing;
    });
}

ImportRun runImport(const Format& format, const ImportOptions& options, const ObjectTaker& take)
{
    ImportRun run;
    Recorder recorder(run, take);
    for (const QString& file : filesOf(format, options)) {
        const QString trouble = pipeOrDeviceTrouble(file);
        if (!trouble.isEmpty()) {
            recorder.addMessage(trouble);
            return run;
        }
    }
    messageSink = &recorder;
    setStatusFunc(takeMessage);
    guarded([&] {
        const auto importer = format.makeImporter();
        importer->setOptions(options);
        importer->map = &run.objects;
        importer->observer = &recorder;
        importer->importMap();
    });
    guarded([&recorder] { recorder.finish(); });
    setStatusFunc(nullptr);
    // Nothing came of what a point pass read that failed.
    if (recorder.pass() == ImportPass::Points)
        run.pointsRead = {};
    return run;
}

QString pipeOrDeviceTrouble(const QString& fileName)
{
    const char* const kind = pipeOrDevice(fileName);
    if (!kind)
        return {};
    return QStringLiteral("Ошибка открытия файла %1: это %2")
        .arg(QDir::toNativeSeparators(fileName), QString::fromUtf8(kind));
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
