#include "reporttext.h"

#include "console.h"
#include "survey/preparecalls.h"
#include "survey/report.h"

namespace {

QString quoted(const QString& text)
{
    return QStringLiteral("«%1»").arg(text);
}

QString placeText(const QString& fileName, int line)
{
    return line > 0 ? QStringLiteral("%1:%2: ").arg(fileName).arg(line)
                    : fileName + QStringLiteral(": ");
}

class ReportText {
public:
    explicit ReportText(const Report& report)
        : m_report(report)
    {
    }

    QString text()
    {
        add(QStringLiteral("прочитано объектов: %1, вершин: %2")
                .arg(m_report.objectCount)
                .arg(m_report.vertexCount));
        for (const FileSurvey& survey : m_report.surveys)
            addContents(survey);
        for (const ReportMessage& message : m_report.messages)
            addAt(message.fileName, message.line, QStringLiteral("сообщение: ") + message.text);
        for (const FileSurvey& survey : m_report.surveys)
            addCauses(survey);
        for (const PointConflict& conflict : m_report.conflicts)
            addConflict(conflict);
        for (const DuplicateDef& duplicate : m_report.duplicates)
            addDuplicate(duplicate);
        for (const IncompleteObject& object : m_report.incomplete)
            addIncomplete(object);
        add(m_report.findingCount() == 0
                ? QStringLiteral("замечаний нет")
                : QStringLiteral("замечаний: %1").arg(m_report.findingCount()));
        return m_text;
    }

private:
    /// More than these say no more to a reader; the JSON has them all.
    static constexpr int maxListed = 10;

    void addAt(const QString& fileName, int line, const QString& text)
    {
        m_text += printable(placeText(fileName, line) + text) + QLatin1Char('\n');
    }

    void add(const QString& text) { addAt(m_report.fileName, 0, text); }

    void addContents(const FileSurvey& survey)
    {
        for (const auto& [name, kind] : survey.kinds) {
            addAt(survey.fileName, 0,
                QStringLiteral("%1: %2, прочитано: %3, пропущено: %4")
                    .arg(QString::fromStdString(name))
                    .arg(kind.count)
                    .arg(kind.read)
                    .arg(kind.count - kind.read));
        }
        QString encoding = survey.likelyEncoding.isEmpty()
            ? QStringLiteral("кодировка: только символы ASCII")
            : QStringLiteral("кодировка: похоже на ") + QString::fromLatin1(survey.likelyEncoding);
        encoding += QStringLiteral(", выбрана ") + QString::fromLatin1(m_report.chosenEncoding);
        if (!survey.declaredEncoding.isEmpty())
            encoding += QStringLiteral(", в заголовке указана ") + survey.declaredEncoding;
        addAt(survey.fileName, 0, encoding);
    }

    void addCauses(const FileSurvey& survey)
    {
        for (const FoundCause& found : survey.causes) {
            addAt(found.fileName, found.line, QStringLiteral("причина: ") + causeText(found));
            addAt(found.fileName, found.line, QStringLiteral("что делать: ") + remedyText(found));
            const QString call = prepareCall(found, survey.fileName);
            if (!call.isEmpty())
                addAt(found.fileName, found.line, QStringLiteral("исправит копию: ") + call);
        }
    }

    QString objectText(int object) const
    {
        return QStringLiteral("объект %1 %2").arg(object + 1).arg(quoted(m_report.defs.at(object)));
    }

    template <typename Items, typename ToText>
    static QString list(const Items& items, ToText toText)
    {
        QStringList texts;
        for (int i = 0; i < items.size() && i < maxListed; ++i)
            texts.append(toText(items.at(i)));
        if (items.size() > maxListed)
            texts.append(QStringLiteral("и ещё %1").arg(items.size() - maxListed));
        return texts.join(QLatin1String(", "));
    }

    void addConflict(const PointConflict& conflict)
    {
        const QString places = list(conflict.places, [](const QPointF& place) {
            return QStringLiteral("(%1; %2)").arg(place.x(), 0, 'f', 2).arg(place.y(), 0, 'f', 2);
        });
        add(QStringLiteral("%1: точка %2 стоит в разных местах: %3")
                .arg(objectText(conflict.object), quoted(conflict.def), places));
    }

    void addDuplicate(const DuplicateDef& duplicate)
    {
        const QString objects =
            list(duplicate.objects, [](int object) { return QString::number(object + 1); });
        add(QStringLiteral("обозначение %1 повторяется у объектов %2")
                .arg(quoted(duplicate.def), objects));
    }

    void addIncomplete(const IncompleteObject& object)
    {
        if (object.contour < 0) {
            add(objectText(object.object) + QStringLiteral(": нет ни одного контура"));
            return;
        }
        add(QStringLiteral("%1: в контуре %2 вершин: %3, а нужно не меньше %4")
                .arg(objectText(object.object))
                .arg(object.contour + 1)
                .arg(object.vertices)
                .arg(object.needed));
    }

    const Report& m_report;
    QString m_text;
};

} // namespace

QString reportText(const Report& report)
{
    return ReportText(report).text();
}
