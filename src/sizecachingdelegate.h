#pragma once

#include <QSize>
#include <QStyleOptionViewItem>
#include <QStyledItemDelegate>
#include <QVector>

#include <vector>

class QStyle;

/// Qt's standard delegate for items that show nothing but text, with the size of each text
/// measured once.
///
/// A list view asks for the sizes of all items, one row after the other, whenever any item may
/// have changed; with more than a hundred thousand objects measuring the texts again would freeze
/// the dialog at each edit. What the sizes depend on beside the text belongs to the view's style,
/// which can change without a sign (another style sheet, a rule for a state of the view, a metric
/// of a host's own style). So a run through the rows begins with measuring some texts and the first
/// hundred rows: as long as they come out as before, so do all others.
class SizeCachingDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    /// The size that Qt's delegate gives. It comes from memory where the text is known and the row
    /// stands well within a run of rows asked for one after the other.
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    struct Item {
        QString text;
        QSize size; ///< not valid until measured
    };

    /// The size of a text by where its characters are.
    struct TextSize {
        const QChar* data = nullptr; ///< none where the place in the table is free
        QSize size;
    };

    void startRun(const QStyleOptionViewItem& option, const QModelIndex& index) const;
    QSize rowSize(const QStyleOptionViewItem& option, const QModelIndex& index) const;
    QSize sizeFromOtherRow(const QString& text) const;
    void indexTexts() const;
    size_t slotOf(const QString& text) const;
    void forgetTexts() const;
    void forget() const;

    mutable QVector<Item> m_items; ///< by row, as measured last
    mutable QVector<Item> m_before; ///< those of the run before; empty until they pay
    mutable std::vector<TextSize> m_byText; ///< a hash table of them, which keep the texts
    mutable int m_row = -1; ///< the row last asked for
    mutable int m_runLength = 0; ///< the number of rows asked for one after the other
    mutable int m_newTexts = 0; ///< the number of texts in the run that were new to their rows
    mutable QStyleOptionViewItem m_option; ///< with which the run began; its pointers may dangle
    mutable const QStyle* m_style = nullptr; ///< only compared
    mutable QVector<QSize> m_samples; ///< the sizes of the sample texts as the run began
};
