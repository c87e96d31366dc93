#include "reporttext.h"

#include "console.h"
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
    ReportText(const Report& report, bool inColours)
        : m_report(report)
        , m_inColours(inColours)
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
            addAt(
                message.fileName, message.line, QStringLiteral("сообщение: ") + message.text, red);
        for (const FileSurvey& survey : m_report.surveys)
            addCauses(survey);
        addAll(m_report.conflicts, &ReportText::addConflict, "точек в разных местах");
        addAll(m_report.duplicates, &ReportText::addDuplicate, "повторяющихся обозначений");
        addAll(m_report.incomplete, &ReportText::addIncomplete, "неполных контуров");
        add(m_report.findingCount() == 0
                ? QStringLiteral("замечаний нет")
                : QStringLiteral("замечаний: %1").arg(m_report.findingCount()));
        return m_text;
    }

private:
    // The numbers of colours on a terminal.
    static constexpr int red = 31;
    static constexpr int green = 32;
    static constexpr int yellow = 33;

    template <typename Finding>
    void addAll(const Findings<Finding>& findings, void (ReportText::*addOne)(const Finding&),
        const char* what)
    {
        for (const Finding& finding : findings.listed)
            (this->*addOne)(finding);
        if (findings.unlisted() > 0) {
            add(QStringLiteral("и ещё %1: %2 (все показывает --all)")
                    .arg(QString::fromUtf8(what))
                    .arg(findings.unlisted()));
        }
    }

    void addAt(const QString& fileName, int line, const QString& text, int colour = 0)
    {
        const QString shown = printable(text);
        m_text += printable(placeText(fileName, line))
            + (colour > 0 ? coloured(shown, colour) : shown) + QLatin1Char('\n');
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
            addAt(
                found.fileName, found.line, QStringLiteral("причина: ") + causeText(found), yellow);
            addAt(found.fileName, found.line, QStringLiteral("что делать: ") + remedyText(found),
                green);
        }
    }

    static QString objectText(const ObjectName& object)
    {
        return QStringLiteral("объект %1 %2").arg(object.object + 1).arg(quoted(object.def));
    }

    template <typename Item, typename ToText>
    static QString list(const Findings<Item>& items, ToText toText)
    {
        QStringList texts;
        for (const Item& item : items.listed)
            texts.append(toText(item));
        if (items.unlisted() > 0)
            texts.append(QStringLiteral("и ещё %1").arg(items.unlisted()));
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

    /// `text` in the colour of this number, which terminals know.
    QString coloured(const QString& text, int colour) const
    {
        return m_inColours ? QStringLiteral("\033[%1m%2\033[0m").arg(colour).arg(text) : text;
    }

    const Report& m_report;
    const bool m_inColours;
    QString m_text;
};

} // namespace

QString reportText(const Report& report, bool inColours)
{
    return ReportText(report, inColours).text();
}
