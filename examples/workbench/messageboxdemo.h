#pragma once

#include <QMessageBox>
#include <QObject>

/// Shows message boxes of the kinds that there are, and tells what was answered.
class MessageBoxDemo : public QObject
{
    Q_OBJECT

public:
    enum Kind { Critical, Information, Warning, Question };

    explicit MessageBoxDemo(QWidget *parent);

    /// Queues a box and returns before it is shown.
    void ask(Kind kind);

public Q_SLOTS:
    void takeAnswer(QMessageBox::StandardButton button);
    void takeYes();
    void takeNo();

Q_SIGNALS:
    /// Emitted when a box was queued, and when one was answered.
    void told(const QString &text);

private:
    QWidget *m_parent; // of the boxes
};
