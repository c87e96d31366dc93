#include "targets.h"

#include "console.h"

#include <QFileInfo>
#include <QHash>
#include <QSet>

namespace {

/// The files that an import may read, by their canonical paths.
QSet<QString> sourcesOf(const QVector<ImportTask>& tasks)
{
    QSet<QString> sources;
    for (const ImportTask& task : tasks) {
        for (const QString& file : filesOf(*task.format, task.options))
            sources.insert(QFileInfo(file).canonicalFilePath());
    }
    sources.remove(QString());
    return sources;
}

} // namespace

void checkTargets(const QVector<ImportTask>& tasks, const QStringList& targets)
{
    const QSet<QString> sources = sourcesOf(tasks);
    QHash<QString, QString> fileOfTarget;
    for (int i = 0; i < targets.size(); ++i) {
        const QString& target = targets.at(i);
        QString& file = fileOfTarget[target];
        if (!file.isEmpty()) {
            throw Failure{ WrongUsage,
                QStringLiteral("файлы %1 и %2 дали бы один результат %3")
                    .arg(file, tasks.at(i).fileName(), target) };
        }
        file = tasks.at(i).fileName();
        if (sources.contains(QFileInfo(target).canonicalFilePath())) {
            throw Failure{ WrongUsage,
                QStringLiteral("%1: результат заменил бы исходный файл").arg(target) };
        }
    }
}
