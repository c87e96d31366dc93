#pragma once

#include <QFont>
#include <QHash>
#include <QStyledItemDelegate>

class QStyle;

/// Qt's standard delegate for items that show nothing but text, with the size of each text
/// measured once.
///
/// A list view asks for the size of every item whenever any item may have changed; with more than
/// a hundred thousand objects measuring the texts again would freeze the dialog at each edit.
class SizeCachingDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// The size that Qt's delegate gives, from memory where the text has been measured before.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void forgetOtherLooks(const QStyleOptionViewItem& option) const;

    mutable QHash<QString, QSize> m_sizes; ///< by text, for the font and style below
    mutable QFont m_font;
    mutable const QStyle* m_style = nullptr; ///< only compared
};
