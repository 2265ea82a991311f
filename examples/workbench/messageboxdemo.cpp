#include <workbench/messageboxdemo.h>

#include <tul-util-gui/widgets/qqueuedmessagebox.h>

MessageBoxDemo::MessageBoxDemo(QWidget *parent)
    : QObject(parent)
    , m_parent(parent)
{
}

void MessageBoxDemo::ask(Kind kind)
{
    const QString title = tr("QQueuedMessageBox");
    const char *const answer = SLOT(takeAnswer(QMessageBox::StandardButton));
    switch (kind) {
    case Critical:
        QQueuedMessageBox::critical(m_parent, title, tr("The program cannot be loaded."),
                                    QMessageBox::Retry | QMessageBox::Abort, QMessageBox::Retry,
                                    this, answer);
        break;
    case Information:
        QQueuedMessageBox::information(m_parent, title, tr("The program has ended."),
                                       QMessageBox::Ok, QMessageBox::NoButton, this, answer);
        break;
    case Warning:
        QQueuedMessageBox::warning(m_parent, title, tr("The source file is newer."),
                                   QMessageBox::Ok | QMessageBox::Cancel, QMessageBox::Cancel, this,
                                   answer);
        break;
    case Question:
        QQueuedMessageBox::question(m_parent, title, tr("Is the program to be restarted?"),
                                    QMessageBox::Yes | QMessageBox::No, QMessageBox::No, this,
                                    SLOT(takeYes()), this, SLOT(takeNo()));
        break;
    }
    Q_EMIT told(tr("QQueuedMessageBox: the call has returned"));
}

void MessageBoxDemo::takeAnswer(QMessageBox::StandardButton button)
{
    Q_EMIT told(tr("QQueuedMessageBox: finished with button %1").arg(button));
}

void MessageBoxDemo::takeYes()
{
    Q_EMIT told(tr("QQueuedMessageBox: yes"));
}

void MessageBoxDemo::takeNo()
{
    Q_EMIT told(tr("QQueuedMessageBox: no"));
}
