#include "messagespane.h"

#include "plaintext.h"

#include <QClipboard>
#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QTime>

namespace {

/// Older messages go: whoever imports all day does not read them any more.
constexpr int mostMessages = 1000;

} // namespace

MessagesPane::MessagesPane(QWidget* parent)
    : QTreeWidget(parent)
{
    setObjectName(QStringLiteral("messages"));
    setAccessibleName(QStringLiteral("Сообщения импорта"));
    setHeaderLabels(
        { QStringLiteral("Время"), QStringLiteral("Файл"), QStringLiteral("Сообщение") });
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setTabKeyNavigation(false);
    setSelectionMode(QAbstractItemView::ExtendedSelection);
    header()->setStretchLastSection(true);
}

void MessagesPane::add(const QString& fileName, const QString& text)
{
    while (topLevelItemCount() >= mostMessages)
        delete takeTopLevelItem(0);
    auto* item = new QTreeWidgetItem(this,
        { QTime::currentTime().toString(QStringLiteral("HH:mm:ss")), QFileInfo(fileName).fileName(),
            text });
    item->setToolTip(1, plainToolTip(QDir::toNativeSeparators(fileName)));
    item->setToolTip(2, plainToolTip(text));
    resizeColumnToContents(0);
    resizeColumnToContents(1);
    scrollToItem(item);
}

bool MessagesPane::event(QEvent* event)
{
    // The window would take it for its catalogue.
    if (event->type() == QEvent::ShortcutOverride
        && static_cast<QKeyEvent*>(event)->matches(QKeySequence::Copy))
        event->accept();
    return QTreeWidget::event(event);
}

void MessagesPane::keyPressEvent(QKeyEvent* event)
{
    if (!event->matches(QKeySequence::Copy)) {
        QTreeWidget::keyPressEvent(event);
        return;
    }
    QStringList lines;
    for (int row = 0; row < topLevelItemCount(); ++row) {
        const QTreeWidgetItem& item = *topLevelItem(row);
        if (item.isSelected())
            lines.append(
                QStringList{ item.text(0), item.text(1), item.text(2) }.join(QLatin1Char('\t')));
    }
    QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}
