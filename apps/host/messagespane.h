#pragma once

#include <QTreeWidget>

/// Keeps what the plug-in reported, with time and file. The chosen lines can be copied.
class MessagesPane : public QTreeWidget {
    Q_OBJECT

public:
    explicit MessagesPane(QWidget* parent = nullptr);

    void add(const QString& fileName, const QString& text);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
