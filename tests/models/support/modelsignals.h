#pragma once

#include <QAbstractItemModel>
#include <QSignalSpy>

/// Counts what a model tells its views.
class ModelSignals {
public:
    explicit ModelSignals(const QAbstractItemModel& model)
        : aboutToReset(&model, &QAbstractItemModel::modelAboutToBeReset)
        , reset(&model, &QAbstractItemModel::modelReset)
        , changed(&model, &QAbstractItemModel::dataChanged)
    {
        const auto countOther = [this] { ++m_others; };
        QObject::connect(&model, &QAbstractItemModel::headerDataChanged, &m_context, countOther);
        QObject::connect(&model, &QAbstractItemModel::layoutChanged, &m_context, countOther);
        QObject::connect(&model, &QAbstractItemModel::columnsInserted, &m_context, countOther);
        QObject::connect(&model, &QAbstractItemModel::rowsInserted, &m_context, countOther);
        QObject::connect(&model, &QAbstractItemModel::rowsRemoved, &m_context, countOther);
    }

    /// The number of signals so far.
    int count() const { return aboutToReset.count() + reset.count() + changed.count() + m_others; }

    /// Whether the dataChanged of the given number has this range and exactly this list of roles.
    bool isChange(int number, const QModelIndex& topLeft, const QModelIndex& bottomRight,
        const QVector<int>& roles) const
    {
        const QList<QVariant> arguments = changed.value(number);
        return arguments.size() == 3 && arguments.at(0).toModelIndex() == topLeft
            && arguments.at(1).toModelIndex() == bottomRight && topLeft.isValid()
            && bottomRight.isValid() && arguments.at(2).value<QVector<int>>() == roles;
    }

    QSignalSpy aboutToReset;
    QSignalSpy reset;
    QSignalSpy changed;

private:
    QObject m_context;
    int m_others = 0;
};
