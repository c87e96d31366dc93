#pragma once

#include <QObject>

class QDialog;
struct ImportAnswer;

/// Fills the file into the plug-in's dialog as soon as it runs, and reads its choices when it ends.
///
/// The dialog is known by the names of its widgets; where one has none of these, nothing is filled
/// in and the choices are the usual ones.
class DialogLink : public QObject {
    Q_OBJECT

public:
    /// `answer.fileName` is the file to fill in; `answer` must live until the dialog has ended.
    DialogLink(QString operation, ImportAnswer& answer);

private:
    void fillIn();
    void readChoices(const QDialog& dialog);

    const QString m_operation;
    ImportAnswer& m_answer;
};
