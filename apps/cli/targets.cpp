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

/// The place below `folder` for the result of a file of this subfolder (see InputFile).
QString placeIn(const QString& folder, const QString& subfolder)
{
    return subfolder.isEmpty() || subfolder == QLatin1String(".")
        ? folder
        : QDir(folder).filePath(subfolder);
}

} // namespace

QStringList targetsIn(const QString& folder, const QVector<ResultInFolder>& results)
{
    const auto target = [&folder](const ResultInFolder& result, const QString& name) {
        return QDir(placeIn(folder, result.subfolder))
            .filePath(name + QLatin1Char('.') + result.suffix);
    };
    QStringList targets;
    QStringList longTargets;
    QHash<QString, int> uses;
    QHash<QString, int> longUses;
    for (const ResultInFolder& result : results) {
        const QFileInfo file(result.fileName);
        targets.append(target(result, file.completeBaseName()));
        longTargets.append(target(result, file.fileName()));
        ++uses[targets.constLast()];
        ++longUses[longTargets.constLast()];
    }
    for (int i = 0; i < targets.size(); ++i) {
        const QString& longTarget = longTargets.at(i);
        if (uses.value(targets.at(i)) > 1 && longUses.value(longTarget) == 1)
            targets[i] = longTarget;
    }
    return targets;
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
                const bool isOneFile = QFileInfo(file) == QFileInfo(claim.fileName);
                throw Failure{ WrongUsage,
                    QStringLiteral("файлы %1 и %2 дали бы один результат %3%4")
                        .arg(file, claim.fileName, target,
                            isOneFile
                                ? QString()
                                : QStringLiteral("; запишите их в разные папки (--out-dir)")) };
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
