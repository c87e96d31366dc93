#include "sizecachingdelegate.h"

#include <QStyle>
#include <QWidget>

#include <new>

QSize SizeCachingDelegate::sizeHint(
    const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QString text = index.data().toString();
    forgetOtherLooks(option);
    const auto known = m_sizes.constFind(text);
    if (known != m_sizes.constEnd())
        return *known;

    const QSize size = QStyledItemDelegate::sizeHint(option, index);
    try {
        m_sizes.insert(text, size);
    } catch (const std::bad_alloc&) {
        // The sizes can be measured again; painting must go on.
        m_sizes.clear();
    }
    return size;
}

void SizeCachingDelegate::forgetOtherLooks(const QStyleOptionViewItem& option) const
{
    // Texts of objects that are gone must not pile up for ever.
    constexpr int mostTexts = 1000000;
    const QStyle* const style = option.widget ? option.widget->style() : nullptr;
    if (option.font == m_font && style == m_style && m_sizes.size() <= mostTexts)
        return;
    m_sizes.clear();
    m_font = option.font;
    m_style = style;
}
