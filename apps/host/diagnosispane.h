#pragma once

#include "survey/report.h"

#include <QWidget>

class QPushButton;
class QTextBrowser;

/// Says what is the matter with a file that was opened, where, and what to do about it.
class DiagnosisPane : public QWidget {
    Q_OBJECT

public:
    explicit DiagnosisPane(QWidget* parent = nullptr);

    /// Shows what a check found out.
    void show(const Report& report);
    /// Says what the preparation of a copy changed, above what is shown from now on.
    void showChanges(const QString& fileName, const QString& copyName, const QStringList& changes);
    void clear();

    /// Whether something is the matter.
    bool hasCauses() const { return m_hasCauses; }
    QString plainText() const;

signals:
    /// The user wants a mended copy of the file.
    void mendRequested(const QString& fileName, bool visibleOnly);

private:
    QTextBrowser* m_browser;
    QPushButton* m_mend;
    QString m_changes; ///< in HTML
    QString m_fileName;
    bool m_visibleOnly = false;
    bool m_hasCauses = false;
};

/// What to do about a cause, for somebody who has the window before them.
QString windowRemedy(const FoundCause& found);
