#pragma once

#include "formsettings.h"

#include <QDialog>

class QLineEdit;
class QSpinBox;

/// Lets the user change the names and columns of the program's tables.
class FormSettingsDialog : public QDialog {
    Q_OBJECT

public:
    explicit FormSettingsDialog(const FormSettings& settings, QWidget* parent = nullptr);

    FormSettings settings() const;
    void accept() override;

private:
    QLineEdit* m_context;
    QLineEdit* m_table;
    QLineEdit* m_catalogue;
    QLineEdit* m_titles;
    QSpinBox* m_point;
    QSpinBox* m_x;
    QSpinBox* m_y;
    QSpinBox* m_object;
};
