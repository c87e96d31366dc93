#include "diagnosispane.h"

#include <QComboBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QPushButton>
#include <QTextBrowser>

namespace {

constexpr int mostFindings = 20;

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
    , m_files(new QComboBox)
    , m_browser(new QTextBrowser)
    , m_mend(new QPushButton(QStringLiteral("&Исправить копию и открыть")))
{
    m_files->setObjectName(QStringLiteral("diagnosisFiles"));
    m_files->setAccessibleName(QStringLiteral("Проверенные файлы"));
    m_files->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_files->hide();
    m_browser->setObjectName(QStringLiteral("diagnosisText"));
    m_browser->setAccessibleName(QStringLiteral("Диагностика файла"));
    m_browser->setTabChangesFocus(true);
    m_browser->setHtml(QStringLiteral("<p>Здесь будет сказано, что не так с открытым файлом.</p>"));
    setFocusProxy(m_browser);
    m_mend->setObjectName(QStringLiteral("mendButton"));
    m_mend->setToolTip(QStringLiteral("Записать рядом с файлом копию, которая читается целиком, и "
                                      "открыть её"));
    m_mend->setEnabled(false);
    auto* layout = new QGridLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_files, 0, 0, Qt::AlignLeft);
    layout->addWidget(m_browser, 1, 0);
    layout->addWidget(m_mend, 1, 1, Qt::AlignTop);
    connect(m_files, QOverload<int>::of(&QComboBox::activated), this, &DiagnosisPane::showFinding);
    connect(m_mend, &QPushButton::clicked, this, [this] {
        const Finding& finding = m_findings.at(m_files->currentIndex());
        emit mendRequested(finding.fileName, finding.visibleOnly);
    });
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
    m_changedCopy = copyName;
    m_browser->setHtml(m_changes);
    m_mend->setEnabled(false);
    startBatch();
}

DiagnosisPane::Finding DiagnosisPane::findingOf(const Report& report) const
{
    Finding finding;
    finding.fileName = report.fileName;
    finding.causes = report.messages.size();
    QString& html = finding.html;
    html = report.fileName == m_changedCopy ? m_changes : QString();
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
            ++finding.causes;
            // Other columns, not another file, put the axes right.
            finding.isMendable =
                finding.isMendable || (isMendedByCopy(found.cause) && found.cause != Cause::Axes);
            finding.visibleOnly = finding.visibleOnly || found.cause == Cause::HiddenLayers;
        }
    }
    html += QLatin1String("</ul>");
    if (finding.causes == 0)
        html += QStringLiteral("<p>Файл прочитан целиком, замечаний к нему нет.</p>");
    const QString objects = objectFindings(report);
    if (!objects.isEmpty())
        html += QStringLiteral("<p>В объектах: %1. Они отмечены красным.</p>").arg(objects);
    finding.isMendable = finding.isMendable && !report.unreadable;
    return finding;
}

void DiagnosisPane::show(const Report& report)
{
    const Finding finding = findingOf(report);
    for (int row = m_findings.size() - 1; row >= 0; --row) {
        if (m_findings.at(row).fileName == finding.fileName || row >= mostFindings - 1) {
            m_findings.removeAt(row);
            m_files->removeItem(row);
        }
    }
    m_findings.prepend(finding);
    m_files->insertItem(0,
        QStringLiteral("%1: замечаний %2")
            .arg(QFileInfo(finding.fileName).fileName())
            .arg(finding.causes));
    m_files->setVisible(m_findings.size() > 1);
    showFinding(finding.causes > 0 || !m_isLossShown ? 0 : m_files->currentIndex());
    m_isLossShown = m_isLossShown || finding.causes > 0;
}

void DiagnosisPane::showFinding(int row)
{
    m_files->setCurrentIndex(row);
    m_browser->setHtml(m_findings.at(row).html);
    m_mend->setEnabled(m_findings.at(row).isMendable);
}

bool DiagnosisPane::hasCauses() const
{
    return m_files->currentIndex() >= 0 && m_findings.at(m_files->currentIndex()).causes > 0;
}
