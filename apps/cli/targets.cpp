#include "targets.h"

#include "console.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>

namespace {

/// The files that may be read, by their canonical paths.
QSet<QString> sourcesOf(const QVector<TargetClaim>& claims)
{
    QSet<QString> sources;
    for (const TargetClaim& claim : claims) {
        for (const QString& file : claim.sources)
            sources.insert(QFileInfo(file).canonicalFilePath());
    }
    sources.remove(QString());
    return sources;
}

} // namespace

QString placeIn(const QString& folder, const QString& subfolder)
{
    return subfolder.isEmpty() || subfolder == QLatin1String(".")
        ? folder
        : QDir(folder).filePath(subfolder);
}

void makeFoldersOf(const QStringList& targets)
{
    for (const QString& target : targets)
        QDir().mkpath(QFileInfo(target).path());
}

void checkTargets(const QVector<TargetClaim>& claims)
{
    const QSet<QString> sources = sourcesOf(claims);
    QHash<QString, QString> fileOfTarget;
    for (const TargetClaim& claim : claims) {
        for (const QString& target : claim.targets) {
            QString& file = fileOfTarget[QDir::cleanPath(QFileInfo(target).absoluteFilePath())];
            if (!file.isEmpty()) {
                throw Failure{ WrongUsage,
                    QStringLiteral("файлы %1 и %2 дали бы один результат %3")
                        .arg(file, claim.fileName, target) };
            }
            file = claim.fileName;
            if (sources.contains(QFileInfo(target).canonicalFilePath())) {
                throw Failure{ WrongUsage,
                    QStringLiteral("%1: результат заменил бы исходный файл").arg(target) };
            }
        }
    }
}

void checkTargets(const QVector<ImportTask>& tasks, const QStringList& targets)
{
    QVector<TargetClaim> claims;
    for (const ImportTask& task : tasks)
        claims.append({ task.fileName(), filesOf(*task.format, task.options), {} });
    for (int i = 0; i < targets.size(); ++i)
        claims[i].targets.append(targets.at(i));
    checkTargets(claims);
}
