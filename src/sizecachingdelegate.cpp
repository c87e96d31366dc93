#include "sizecachingdelegate.h"

#include <QApplication>

#include <new>

namespace {

/// So many rows at the start of each run are measured in any case. It takes half a millisecond.
constexpr int measuredRows = 100;
/// So many texts that are new to their rows are measured before other rows are asked for them.
constexpr int measuredTexts = 1000;

/// Whether an option asks for sizes as another one does, but for the state of the view: what that
/// means is up to the style.
bool asksAlike(const QStyleOptionViewItem& a, const QStyleOptionViewItem& b)
{
    const bool isWrapped = a.features.testFlag(QStyleOptionViewItem::WrapText);
    return a.features == b.features && (!isWrapped || a.rect.size() == b.rect.size())
        && a.direction == b.direction && a.decorationSize == b.decorationSize
        && a.decorationPosition == b.decorationPosition && a.displayAlignment == b.displayAlignment
        && a.textElideMode == b.textElideMode && a.widget == b.widget && a.font == b.font;
}

const QStyle* styleOf(const QStyleOptionViewItem& option)
{
    return option.widget ? option.widget->style() : QApplication::style();
}

/// The sizes of no text, an empty, a narrow and a wide one: whatever a style puts around or takes
/// for least, most or the end of a line, one of them shows it.
QVector<QSize> sampleSizes(const QStyleOptionViewItem& option, const QModelIndex& index)
{
    static const QStringList samples = { QString(), QStringLiteral(""), QStringLiteral("1"),
        QStringLiteral("Щ"), QStringLiteral("Щ1 ").repeated(100) };
    QStyleOptionViewItem item = option;
    item.index = index;
    QVector<QSize> sizes;
    for (const QString& sample : samples) {
        item.text = sample;
        item.features.setFlag(QStyleOptionViewItem::HasDisplay, !sample.isNull());
        sizes.append(styleOf(option)->sizeFromContents(
            QStyle::CT_ItemViewItem, &item, QSize(), option.widget));
    }
    return sizes;
}

} // namespace

QSize SizeCachingDelegate::sizeHint(
    const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    if (!index.isValid())
        return QStyledItemDelegate::sizeHint(option, index);
    const bool goesOn = index.row() == m_row + 1 && index.row() < m_items.size()
        && option.state == m_option.state && asksAlike(option, m_option);
    try {
        if (!goesOn)
            startRun(option, index);
        m_row = index.row();
        ++m_runLength;
        return rowSize(option, index);
    } catch (const std::bad_alloc&) {
        // The sizes can be measured again; painting must go on.
        forget();
        return QStyledItemDelegate::sizeHint(option, index);
    }
}

void SizeCachingDelegate::startRun(
    const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QVector<QSize> samples = sampleSizes(option, index);
    if (samples != m_samples || styleOf(option) != m_style || !asksAlike(option, m_option))
        forget();
    m_items.resize(index.model()->rowCount());
    forgetTexts();
    m_newTexts = 0;
    m_runLength = 0;
    m_option = option;
    m_style = styleOf(option);
    m_samples = samples;
}

QSize SizeCachingDelegate::rowSize(
    const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const QString text = index.data().toString();
    const Item& known = m_items.at(index.row());
    const bool isKnown =
        known.size.isValid() && known.text == text && known.text.isNull() == text.isNull();
    const bool isTrusted = m_runLength > measuredRows;
    if (isKnown && isTrusted)
        return known.size;

    QSize size = isTrusted ? sizeFromOtherRow(text) : QSize();
    if (!size.isValid())
        size = QStyledItemDelegate::sizeHint(option, index);
    if (isKnown && size != known.size)
        forget();
    m_items[index.row()] = Item{ text, size };
    return size;
}

QSize SizeCachingDelegate::sizeFromOtherRow(const QString& text) const
{
    // A table of all texts pays only where many rows have changed, as after sorting.
    ++m_newTexts;
    if (text.isNull() || m_newTexts < measuredTexts)
        return QSize();
    if (m_newTexts == measuredTexts)
        indexTexts();
    if (m_byText.empty())
        return QSize();
    return m_byText[slotOf(text)].size;
}

void SizeCachingDelegate::indexTexts() const
{
    m_before = m_items;
    size_t size = 1;
    while (3 * size < 4 * static_cast<size_t>(m_before.size()))
        size *= 2;
    m_byText.assign(size, TextSize());
    for (const Item& item : qAsConst(m_before)) {
        if (item.size.isValid() && !item.text.isNull())
            m_byText[slotOf(item.text)] = { item.text.constData(), item.size };
    }
}

size_t SizeCachingDelegate::slotOf(const QString& text) const
{
    // Rows that changed places kept their texts: where those are says more quickly what they are
    // than their characters do.
    const QChar* const data = text.constData();
    const size_t mask = m_byText.size() - 1;
    size_t slot = (reinterpret_cast<quintptr>(data) * 0x9E3779B1U >> 16) & mask;
    while (m_byText[slot].data && m_byText[slot].data != data)
        slot = (slot + 1) & mask;
    return slot;
}

void SizeCachingDelegate::forgetTexts() const
{
    m_byText.clear();
    m_before.clear();
}

void SizeCachingDelegate::forget() const
{
    m_items.fill(Item());
    forgetTexts();
}
