#include "sizecachingdelegate.h"

#include <QStyle>
#include <QWidget>

QSize SizeCachingDelegate::sizeHint(
    const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    // More texts than any one file holds are left over from files no longer shown.
    constexpr int mostTexts = 1000000;
    QStyle* const style = option.widget ? option.widget->style() : nullptr;
    if (option.font != m_font || style != m_style || m_sizes.size() > mostTexts) {
        m_sizes.clear();
        m_font = option.font;
        m_style = style;
    }

    const QString text = index.data().toString();
    const auto known = m_sizes.constFind(text);
    if (known != m_sizes.constEnd())
        return *known;
    const QSize size = QStyledItemDelegate::sizeHint(option, index);
    m_sizes.insert(text, size);
    return size;
}
