#include <tul-util-gui/widgets/qqueuedmessagebox.h>

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVector>

namespace
{

// Those that wait, in the order of the calls; the first one may be on the screen. The queue of
// posted events alone would start the second one inside the first one's modal loop, on top of it.
QVector<QQueuedMessageBox *> &queue()
{
    static QVector<QQueuedMessageBox *> boxes;
    return boxes;
}

void addButtons(QMessageBox &box, QMessageBox::StandardButtons buttons,
                QMessageBox::StandardButton defaultButton)
{
    const auto *const buttonBox = box.findChild<QDialogButtonBox *>();
    for (unsigned bit = QMessageBox::FirstButton; bit <= QMessageBox::LastButton; bit *= 2) {
        const auto standard = static_cast<QMessageBox::StandardButton>(bit);
        if (!buttons.testFlag(standard))
            continue;
        QPushButton *const button = box.addButton(standard);
        if (!button || box.defaultButton())
            continue;
        const bool wanted = defaultButton == QMessageBox::NoButton
            ? buttonBox && buttonBox->buttonRole(button) == QDialogButtonBox::AcceptRole
            : defaultButton == standard;
        if (wanted)
            box.setDefaultButton(button);
    }
}

// By signature, because that is how hosts name the receivers.
void connectAnswer(const QObject *sender, const char *signal, const QObject *receiver,
                   const char *member)
{
    if (receiver && member)
        QObject::connect(sender, signal, receiver, member); // clazy:exclude=old-style-connect
}

} // namespace

QQueuedMessageBox::QQueuedMessageBox(QMessageBox *box, QObject *parent)
    : QQueuedRunnable(parent)
    , m_box(box)
{
    // It may be called before its turn, and lives on then.
    setAutoDelete(false);
    queue().append(this);
}

QQueuedMessageBox::~QQueuedMessageBox()
{
    leaveQueue();
    if (m_box)
        m_box->deleteLater();
}

void QQueuedMessageBox::critical(QWidget *parent, const QString &title, const QString &text,
                                 QMessageBox::StandardButtons buttons,
                                 QMessageBox::StandardButton defaultButton, QObject *receiver,
                                 const char *member)
{
    showNewMessageBox(parent, QMessageBox::Critical, title, text, buttons, defaultButton, receiver,
                      member, nullptr, nullptr);
}

void QQueuedMessageBox::information(QWidget *parent, const QString &title, const QString &text,
                                    QMessageBox::StandardButtons buttons,
                                    QMessageBox::StandardButton defaultButton, QObject *receiver,
                                    const char *member)
{
    showNewMessageBox(parent, QMessageBox::Information, title, text, buttons, defaultButton,
                      receiver, member, nullptr, nullptr);
}

void QQueuedMessageBox::warning(QWidget *parent, const QString &title, const QString &text,
                                QMessageBox::StandardButtons buttons,
                                QMessageBox::StandardButton defaultButton, QObject *receiver,
                                const char *member)
{
    showNewMessageBox(parent, QMessageBox::Warning, title, text, buttons, defaultButton, receiver,
                      member, nullptr, nullptr);
}

void QQueuedMessageBox::question(QWidget *parent, const QString &title, const QString &text,
                                 QMessageBox::StandardButtons buttons,
                                 QMessageBox::StandardButton defaultButton, QObject *yesReceiver,
                                 const char *yesMember, QObject *noReceiver, const char *noMember)
{
    showNewMessageBox(parent, QMessageBox::Question, title, text, buttons, defaultButton,
                      yesReceiver, yesMember, noReceiver, noMember);
}

void QQueuedMessageBox::showNewMessageBox(QWidget *parent, QMessageBox::Icon icon,
                                          const QString &title, const QString &text,
                                          QMessageBox::StandardButtons buttons,
                                          QMessageBox::StandardButton defaultButton,
                                          QObject *receiver, const char *member,
                                          QObject *noReceiver, const char *noMember)
{
    // For receivers in other threads.
    qRegisterMetaType<QMessageBox::StandardButton>("QMessageBox::StandardButton");

    auto *const box = new QMessageBox(icon, title, text, QMessageBox::NoButton, parent,
                                      Qt::Dialog | Qt::MSWindowsFixedSizeDialogHint);
    addButtons(*box, buttons, defaultButton);
    auto *const queued = new QQueuedMessageBox(box, parent);
    if (icon == QMessageBox::Question) {
        connectAnswer(queued, SIGNAL(yes()), receiver, member);
        connectAnswer(queued, SIGNAL(no()), noReceiver, noMember);
    } else {
        connectAnswer(queued, SIGNAL(finished(QMessageBox::StandardButton)), receiver, member);
    }
    queued->enqueue(0);
}

void QQueuedMessageBox::run()
{
    if (queue().value(0) != this)
        return; // its turn comes when those before it have left
    const QPointer<QQueuedMessageBox> self(this);
    showBox();
    if (self)
        deleteLater();
}

/// Nobody is told anything when the box or this object goes while the box is up.
void QQueuedMessageBox::showBox()
{
    const QPointer<QQueuedMessageBox> self(this);
    const int result = m_box ? m_box->exec() : -1;
    if (!self)
        return;
    // Before the answer, so that a slot which starts an event loop gets the next box there.
    leaveQueue();
    if (!m_box)
        return;
    QAbstractButton *const clicked = m_box->clickedButton();
    const auto role = m_box->buttonRole(clicked);
    Q_EMIT finished(result == -1 ? QMessageBox::NoButton : m_box->standardButton(clicked));
    if (!self)
        return;
    if (role == QMessageBox::YesRole)
        Q_EMIT yes();
    else if (role == QMessageBox::NoRole)
        Q_EMIT no();
}

void QQueuedMessageBox::leaveQueue()
{
    const bool wasFirst = queue().value(0) == this;
    queue().removeAll(this);
    if (wasFirst && !queue().isEmpty())
        queue().first()->enqueue(0);
}
