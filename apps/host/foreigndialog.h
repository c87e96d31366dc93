#pragma once

#include "prepare/foreignfile.h"

#include <QDialog>

class QComboBox;

/// Says what becomes of a file of another format, and lets the user choose the layer to take and
/// the column that names its objects.
class ForeignDialog : public QDialog {
    Q_OBJECT

public:
    /// There must be a layer.
    ForeignDialog(const QString& fileName, const QVector<prep::ForeignLayer>& layers,
        QWidget* parent = nullptr);

    QString layer() const;
    /// Empty where no column holds designations.
    QString column() const;

private:
    void showColumns();

    const QVector<prep::ForeignLayer> m_layers;
    QComboBox* m_layer;
    QComboBox* m_column;
};
