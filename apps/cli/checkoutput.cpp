#include "checkoutput.h"

#include "survey/causes.h"

#include <QJsonArray>

namespace {

/// The text of a report as an element of an array.
QByteArray asElement(const QJsonObject& report)
{
    QByteArray text = "    " + jsonText(QJsonDocument(report), QJsonDocument::Indented).trimmed();
    return text.replace("\n", "\n    ");
}

/// The findings about objects, as they are named beside the causes.
constexpr struct {
    const char* id;
    const char* text;
} objectFindings[] = {
    { "messages", "сообщения импорта" },
    { "conflicts", "точки одного объекта с одним обозначением в разных местах" },
    { "duplicates", "повторяющиеся обозначения объектов" },
    { "incomplete", "контуры с недостатком вершин" },
};

} // namespace

CheckOutput::CheckOutput(CheckForm form, int total)
    : m_form(form)
    , m_total(total)
    , m_out(standardOutput)
{
}

void CheckOutput::write(const QByteArray& bytes)
{
    m_out.write(bytes);
}

void CheckOutput::add(const QJsonObject& report, const QString& text)
{
    switch (m_form) {
    case CheckForm::Text:
        write(text.toLocal8Bit());
        break;
    case CheckForm::Json:
        write(m_added == 0 ? "[\n" : ",\n");
        write(asElement(report));
        break;
    case CheckForm::JsonLines:
        write(jsonText(QJsonDocument(report), QJsonDocument::Compact) + '\n');
        break;
    case CheckForm::Summary:
        count(report);
        break;
    }
    ++m_added;
    if (m_form != CheckForm::Summary)
        m_out.flushAll();
}

void CheckOutput::count(const QJsonObject& report)
{
    m_found += report.value(QLatin1String("findings")).toDouble() > 0 ? 1 : 0;
    QMap<QString, qint64> causes;
    for (const auto& cause : report.value(QLatin1String("causes")).toArray())
        ++causes[cause.toObject().value(QLatin1String("id")).toString()];
    for (auto cause = causes.cbegin(); cause != causes.cend(); ++cause)
        m_causes[cause.key()].add(cause.value());
    const QJsonObject unlisted = report.value(QLatin1String("unlisted")).toObject();
    for (const auto& row : objectFindings) {
        const QLatin1String id(row.id);
        m_objectFindings[id].add(
            report.value(id).toArray().size() + static_cast<qint64>(unlisted.value(id).toDouble()));
    }
}

QString CheckOutput::summary() const
{
    QString text = QStringLiteral("файлов: %1, с замечаниями: %2\n").arg(m_total).arg(m_found);
    const auto add = [&text](const QString& title, const Tally& tally) {
        if (tally.files > 0)
            text += QStringLiteral("%1: файлов: %2, замечаний: %3\n")
                        .arg(title)
                        .arg(tally.files)
                        .arg(tally.findings);
    };
    for (auto row = m_causes.cbegin(); row != m_causes.cend(); ++row)
        add(row.key(), row.value());
    for (const auto& row : objectFindings)
        add(QString::fromUtf8(row.text), m_objectFindings.value(QLatin1String(row.id)));
    return text;
}

void CheckOutput::finish()
{
    if (m_form == CheckForm::Json)
        write(m_added == 0 ? "[\n]\n" : "\n]\n");
    if (m_form == CheckForm::Summary)
        write(summary().toLocal8Bit());
    m_out.commit();
}
