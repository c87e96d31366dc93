#pragma once

#include <QWidget>

#include <functional>

class QLabel;
class QLineEdit;
class QTextBrowser;
class QToolBar;

/// Shows the user's guide: a page in Markdown with its pictures, and the pages that it leads to.
class GuideWindow : public QWidget {
    Q_OBJECT

public:
    /// Where the guide is: among the installed pages, or in the tree that the program was built in.
    /// Empty when there is none.
    static QString findGuide();

    explicit GuideWindow(const QString& fileName);

private:
    void addButton(QToolBar& bar, const QString& text, const QKeySequence& keys,
        const std::function<void()>& action);
    void find(bool backwards);

    QTextBrowser* m_browser;
    QLineEdit* m_search;
    QLabel* m_found;
};
