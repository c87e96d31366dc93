#include "messagespane.h"

#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
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
    header()->setStretchLastSection(true);
}

void MessagesPane::add(const QString& fileName, const QString& text)
{
    while (topLevelItemCount() >= mostMessages)
        delete takeTopLevelItem(0);
    auto* item = new QTreeWidgetItem(this,
        { QTime::currentTime().toString(QStringLiteral("HH:mm:ss")), QFileInfo(fileName).fileName(),
            text });
    item->setToolTip(1, QDir::toNativeSeparators(fileName));
    item->setToolTip(2, text);
    resizeColumnToContents(0);
    resizeColumnToContents(1);
    scrollToItem(item);
}
