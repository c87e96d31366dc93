#include "diagnosispane.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QPushButton>
#include <QTextBrowser>

#include <algorithm>

namespace {

QString placeText(const QString& fileName, int line)
{
    const QString name = QFileInfo(fileName).fileName();
    return line > 0 ? QStringLiteral("%1, строка %2").arg(name).arg(line) : name;
}

QString item(const QString& what, const QString& place, const QString& remedy)
{
    QString html = QStringLiteral("<li><p><b>%1</b>").arg(what.toHtmlEscaped());
    if (!place.isEmpty())
        html += QStringLiteral("<br/>Где: %1").arg(place.toHtmlEscaped());
    if (!remedy.isEmpty())
        html += QStringLiteral("<br/>Что делать: %1").arg(remedy.toHtmlEscaped());
    return html + QLatin1String("</p></li>");
}

QString objectFindings(const Report& report)
{
    QStringList parts;
    const auto add = [&parts](const QString& text, qint64 count) {
        if (count > 0)
            parts.append(text.arg(count));
    };
    add(QStringLiteral("точек с одним обозначением в разных местах: %1"), report.conflicts.total);
    add(QStringLiteral("повторяющихся обозначений объектов: %1"), report.duplicates.total);
    add(QStringLiteral("неполных контуров: %1"), report.incomplete.total);
    return parts.join(QStringLiteral("; "));
}

} // namespace

QString windowRemedy(const FoundCause& found)
{
    switch (found.cause) {
    case Cause::NotText:
        return QStringLiteral("Двоичный DXF станет текстовым в исправленной копии; DWG сохраните в "
                              "программе черчения как текстовый (ASCII) DXF.");
    case Cause::UnsortedTexts:
        return QStringLiteral("Отключите в диалоге поиск обозначений точек, укажите файл точек или "
                              "откройте исправленную копию.");
    case Cause::HiddenLayers:
        return QStringLiteral("В исправленной копии их нет.");
    case Cause::MidOtherCase:
        return QStringLiteral("Переименуйте его так, как указано в сообщении, или откройте "
                              "исправленную копию.");
    case Cause::MidMissing:
        return QStringLiteral("Положите файл MID рядом или отключите в диалоге поиск обозначений "
                              "точек и объектов.");
    case Cause::MidTooShort:
        return QStringLiteral("Выгрузите пару файлов заново; в исправленной копии вместо "
                              "недостающих строк стоят пустые.");
    case Cause::BadObject:
        return QStringLiteral("Исправьте объект в этом месте или выгрузите файл заново; в "
                              "исправленной копии этого объекта нет.");
    case Cause::NoObjects:
        return QStringLiteral("Если это файл точек, укажите его в диалоге как файл точек; кривые и "
                              "надписи есть в исправленной копии.");
    case Cause::Axes:
        return QStringLiteral("Поменяйте местами столбцы координат: «Правка», «Таблицы "
                              "программы», и откройте файл снова.");
    case Cause::Encoding:
        return QStringLiteral("Откройте файл снова и выберите в диалоге кодировку %1.")
            .arg(found.detail);
    default:
        return isMendedByCopy(found.cause)
            ? QStringLiteral("Откройте исправленную копию: её пишет кнопка справа.")
            : remedyText(found);
    }
}

DiagnosisPane::DiagnosisPane(QWidget* parent)
    : QWidget(parent)
    , m_browser(new QTextBrowser)
    , m_mend(new QPushButton(QStringLiteral("&Исправить копию и открыть")))
{
    m_browser->setObjectName(QStringLiteral("diagnosisText"));
    m_browser->setAccessibleName(QStringLiteral("Диагностика файла"));
    m_browser->setTabChangesFocus(true);
    m_mend->setObjectName(QStringLiteral("mendButton"));
    m_mend->setToolTip(QStringLiteral("Записать рядом с файлом копию, которая читается целиком, и "
                                      "открыть её"));
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_browser);
    layout->addWidget(m_mend, 0, Qt::AlignTop);
    connect(m_mend, &QPushButton::clicked, this,
        [this] { emit mendRequested(m_fileName, m_visibleOnly); });
    clear();
}

void DiagnosisPane::clear()
{
    m_browser->setHtml(QStringLiteral("<p>Здесь будет сказано, что не так с открытым файлом.</p>"));
    m_mend->setEnabled(false);
    m_hasCauses = false;
    m_changes.clear();
}

void DiagnosisPane::showChanges(
    const QString& fileName, const QString& copyName, const QStringList& changes)
{
    m_changes = QStringLiteral("<p><b>Файл «%1» исправлен, копия записана в «%2».</b></p><ul>")
                    .arg(QFileInfo(fileName).fileName().toHtmlEscaped(),
                        QFileInfo(copyName).fileName().toHtmlEscaped());
    for (const QString& line : changes)
        m_changes += QStringLiteral("<li>%1</li>").arg(line.toHtmlEscaped());
    m_changes += QLatin1String("</ul>");
    m_browser->setHtml(m_changes);
    m_mend->setEnabled(false);
}

void DiagnosisPane::show(const Report& report)
{
    m_fileName = report.fileName;
    m_hasCauses = !report.messages.isEmpty();
    m_visibleOnly = false;
    bool isMendable = false;
    QString html = m_changes;
    m_changes.clear();
    html += QStringLiteral("<p>Файл «%1»: объектов %2, вершин %3.</p><ul>")
                .arg(QFileInfo(report.fileName).fileName().toHtmlEscaped())
                .arg(report.objectCount)
                .arg(report.vertexCount);
    for (const ReportMessage& message : report.messages)
        html += item(message.text, placeText(message.fileName, message.line), {});
    for (const FileSurvey& survey : report.surveys) {
        for (const FoundCause& found : survey.causes) {
            html +=
                item(causeText(found), placeText(found.fileName, found.line), windowRemedy(found));
            m_hasCauses = true;
            // Other columns, not another file, put the axes right.
            isMendable = isMendable || (isMendedByCopy(found.cause) && found.cause != Cause::Axes);
            m_visibleOnly = m_visibleOnly || found.cause == Cause::HiddenLayers;
        }
    }
    html += QLatin1String("</ul>");
    if (!m_hasCauses)
        html += QStringLiteral("<p>Файл прочитан целиком, замечаний к нему нет.</p>");
    const QString objects = objectFindings(report);
    if (!objects.isEmpty())
        html += QStringLiteral("<p>В объектах: %1. Они отмечены красным.</p>").arg(objects);
    m_browser->setHtml(html);
    m_mend->setEnabled(isMendable && !report.unreadable);
}

QString DiagnosisPane::plainText() const
{
    return m_browser->toPlainText();
}
