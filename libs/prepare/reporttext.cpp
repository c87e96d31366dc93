#include "prepare/reporttext.h"

#include <QJsonArray>

namespace prep {

namespace {

QString nameOf(Effect effect)
{
    switch (effect) {
    case Effect::Mended:
        return QStringLiteral("исправлено");
    case Effect::LeftOut:
        return QStringLiteral("пропущено");
    case Effect::Lost:
        break;
    }
    return QStringLiteral("не перенесено");
}

/// "LINE: 12, сохранено: 10, изменено: 2", without what there is none of.
QString tallyLine(const std::string& kind, const KindTally& tally)
{
    QString line = QStringLiteral("%1: %2")
                       .arg(QString::fromStdString(kind))
                       .arg(tally.kept + tally.changed + tally.leftOut + tally.lost);
    const auto add = [&line](const char* name, qint64 count) {
        if (count > 0)
            line += QStringLiteral(", %1: %2").arg(QString::fromUtf8(name)).arg(count);
    };
    add("сохранено", tally.kept);
    add("изменено", tally.changed);
    add("пропущено", tally.leftOut);
    add("не перенесено", tally.lost);
    return line;
}

QString encodingLine(const PrepareReport& report)
{
    QString line = QStringLiteral("кодировка: ") + QString::fromLatin1(report.encoding);
    if (report.encoding != report.sourceEncoding)
        line += QStringLiteral(", была ") + QString::fromLatin1(report.sourceEncoding);
    if (!report.declaredEncoding.isEmpty())
        line += QStringLiteral(", в заголовке указана ") + report.declaredEncoding;
    return line;
}

} // namespace

QStringList noteLines(const PrepareReport& report)
{
    QStringList lines;
    for (const auto& [note, count] : report.notes())
        lines.append(
            QStringLiteral("%1: %2: %3").arg(nameOf(effectOf(note)), noteText(note)).arg(count));
    return lines;
}

QStringList reportLines(const PrepareReport& report, const QString& target)
{
    if (!report.failure.isEmpty())
        return { report.failure };
    QStringList lines{ QStringLiteral("записано в %1").arg(target), encodingLine(report) };
    if (report.contours + report.points + report.labels > 0) {
        lines.append(QStringLiteral("контуров: %1, точек: %2, надписей: %3")
                         .arg(report.contours)
                         .arg(report.points)
                         .arg(report.labels));
    }
    for (const auto& [kind, tally] : report.kinds())
        lines.append(tallyLine(kind, tally));
    for (auto block = report.blocks.begin(); block != report.blocks.end(); ++block) {
        lines.append(QStringLiteral("блок «%1»: вставок: %2, %3")
                         .arg(block.key())
                         .arg(block->inserts)
                         .arg(block->asPoint ? QStringLiteral("записаны точками")
                                             : QStringLiteral("разбиты на части")));
    }
    if (report.otherBlocks > 0)
        lines.append(QStringLiteral("других блоков: %1").arg(report.otherBlocks));
    return lines + noteLines(report);
}

QJsonObject reportJson(const PrepareReport& report, const QString& fileName, const QString& target)
{
    QJsonObject json{ { QStringLiteral("file"), fileName } };
    if (!report.failure.isEmpty()) {
        json.insert(QStringLiteral("failure"), report.failure);
        return json;
    }
    json.insert(QStringLiteral("output"), target);
    json.insert(QStringLiteral("encoding"), QString::fromLatin1(report.encoding));
    json.insert(QStringLiteral("sourceEncoding"), QString::fromLatin1(report.sourceEncoding));
    json.insert(QStringLiteral("declaredEncoding"), report.declaredEncoding);
    json.insert(QStringLiteral("contours"), report.contours);
    json.insert(QStringLiteral("points"), report.points);
    json.insert(QStringLiteral("labels"), report.labels);
    QJsonObject tallies;
    for (const auto& [kind, tally] : report.kinds()) {
        tallies.insert(QString::fromStdString(kind),
            QJsonObject{ { QStringLiteral("kept"), tally.kept },
                { QStringLiteral("changed"), tally.changed },
                { QStringLiteral("leftOut"), tally.leftOut },
                { QStringLiteral("lost"), tally.lost } });
    }
    json.insert(QStringLiteral("kinds"), tallies);
    QJsonArray blocks;
    for (auto block = report.blocks.begin(); block != report.blocks.end(); ++block) {
        blocks.append(QJsonObject{ { QStringLiteral("name"), block.key() },
            { QStringLiteral("inserts"), block->inserts },
            { QStringLiteral("as"),
                block->asPoint ? QStringLiteral("points") : QStringLiteral("parts") } });
    }
    json.insert(QStringLiteral("blocks"), blocks);
    if (report.otherBlocks > 0)
        json.insert(QStringLiteral("otherBlocks"), report.otherBlocks);
    QJsonArray notes;
    for (const auto& [note, count] : report.notes()) {
        notes.append(QJsonObject{ { QStringLiteral("id"), noteId(note) },
            { QStringLiteral("text"), noteText(note) }, { QStringLiteral("count"), count },
            { QStringLiteral("lost"), effectOf(note) == Effect::Lost } });
    }
    json.insert(QStringLiteral("notes"), notes);
    return json;
}

} // namespace prep
