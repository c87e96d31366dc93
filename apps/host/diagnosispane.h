#pragma once

#include "survey/report.h"

#include <QVector>
#include <QWidget>

class QComboBox;
class QPushButton;
class QTextBrowser;

/// Says what is the matter with a file that was opened, where, and what to do about it.
class DiagnosisPane : public QWidget {
    Q_OBJECT

public:
    explicit DiagnosisPane(QWidget* parent = nullptr);

    /// Several files are opened one after the other from now on: of their checks, one that found
    /// something stays in sight.
    void startBatch() { m_isLossShown = false; }
    /// Shows what a check found out, and keeps what earlier ones did.
    void show(const Report& report);
    /// Says what the preparation of a copy changed, from now on above what is the matter with it.
    void showChanges(const QString& fileName, const QString& copyName, const QStringList& changes);

    /// Whether something is the matter with the file that is shown.
    bool hasCauses() const;

signals:
    /// The user wants a mended copy of the file.
    void mendRequested(const QString& fileName, bool visibleOnly);

private:
    /// What was found out about a file.
    struct Finding {
        QString fileName;
        QString html;
        int causes = 0;
        bool isMendable = false;
        bool visibleOnly = false; ///< how a copy is made
    };

    Finding findingOf(const Report& report) const;
    void showFinding(int row);

    QComboBox* m_files; ///< of the findings, the last one first
    QTextBrowser* m_browser;
    QPushButton* m_mend;
    QVector<Finding> m_findings; ///< in the order of the files
    QString m_changes; ///< of a copy that was made, in HTML
    QString m_changedCopy; ///< its name
    bool m_isLossShown = false; ///< of a file of the batch
};

/// What to do about a cause, for somebody who has the window before them.
QString windowRemedy(const FoundCause& found);
