#include <tul-util-gui/widgets/qqueuedmessagebox.h>

#include <QApplication>
#include <QBasicTimer>
#include <QDialogButtonBox>
#include <QEvent>
#include <QPushButton>
#include <QVector>

#include <functional>
#include <utility>

namespace
{

// Those that wait or are on the screen, in the order of the calls. The queue of posted events alone
// would start the second one inside the first one's modal loop, on top of it.
QVector<QQueuedMessageBox *> &queue()
{
    static QVector<QQueuedMessageBox *> boxes;
    return boxes;
}

/// Tells when a box has been closed but its exec() does not return, because a slot that was called
/// from there runs an event loop of its own. Such a loop may wait for the next box.
class HangingBox : public QObject
{
public:
    HangingBox(QMessageBox *box, std::function<void()> tell)
        : m_tell(std::move(tell))
    {
        box->installEventFilter(this);
    }

    bool eventFilter(QObject * /*watched*/, QEvent *event) override
    {
        if (event->type() == QEvent::Hide && !event->spontaneous())
            m_timer.start(10, this);
        return false;
    }

protected:
    void timerEvent(QTimerEvent * /*event*/) override
    {
        // The first one may still come from the box's own loop, on its last round.
        if (++m_rounds < 2)
            return;
        m_timer.stop();
        m_tell();
    }

private:
    const std::function<void()> m_tell;
    QBasicTimer m_timer;
    int m_rounds = 0; // of event loops since the box was closed
};

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
    if (!isItsTurn())
        return; // it comes when another one has left
    const QPointer<QQueuedMessageBox> self(this);
    showBox();
    if (self)
        deleteLater();
}

/// Boxes wait for those before them. But a modal dialog above these, which opened later, keeps the
/// user from closing them; a box that belongs to it comes at once.
bool QQueuedMessageBox::isItsTurn() const
{
    if (m_shown)
        return false;
    if (queue().value(0) == this)
        return true;
    const QWidget *const modal = QApplication::activeModalWidget();
    const QWidget *each = m_box ? m_box->parentWidget() : nullptr;
    while (each && each != modal)
        each = each->parentWidget();
    return each;
}

/// Nobody is told anything when the box or this object goes while the box is up.
void QQueuedMessageBox::showBox()
{
    const QPointer<QQueuedMessageBox> self(this);
    m_shown = true;
    int result = -1;
    if (m_box) {
        HangingBox watch(m_box, [self] {
            if (self)
                self->leaveQueue();
        });
        result = m_box->exec();
    }
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
    if (!queue().removeOne(this))
        return;
    for (QQueuedMessageBox *const waiting : qAsConst(queue())) {
        if (!waiting->m_shown)
            waiting->enqueue(0);
    }
}
