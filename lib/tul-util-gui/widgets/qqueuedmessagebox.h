#pragma once

#include <tul-util-gui/tul_util_gui_export.h>
#include <tul-util/qqueuedrunnable.h>

#include <QMessageBox>
#include <QPointer>

/// A standard message box that is shown later, from the event loop, and that reports the answer by
/// signal.
///
/// For code that must not block: a slot in the middle of an update, a handler of a socket or model
/// signal. Such code calls one of the static functions, which return at once, and names an object
/// and a slot for the answer. The boxes are modal and come one after the other in the order of the
/// calls: each waits until the one before it has been closed. The slot may ask for the next one.
/// Only a box whose parent is in a modal dialog that stands above a shown one comes at once.
///
/// The answer comes when control is back at the box, and before the next box. But when a slot that
/// was called while the box was up runs an event loop of its own, the next box does not wait for
/// that loop to end, and the answer may follow later.
///
/// *Ownership*: `parent`, which may be null, owns what waits or is shown; what is left is deleted
/// after the answer. When the parent goes first, its boxes go too, shown or not, and nothing is
/// reported. A receiver that goes is not called.
///
/// *Threads*: the static functions are called on the GUI thread, and boxes are shown there. A
/// receiver may live in another thread; it then hears the answer in its own.
///
/// *Errors*: without a receiver or without a member nothing is connected, with a member of the
/// wrong signature the toolkit warns; the box is shown all the same. Without any button the toolkit
/// adds OK.
///
/// *By design*: without a wanted default button the first one of the accept role is the default.
/// That is OK, Save or Open, but not Yes. A question never reports through finished(), the others
/// never through yes() and no().
class TUL_UTIL_GUI_EXPORT QQueuedMessageBox : public QQueuedRunnable
{
    Q_OBJECT

public:
    ~QQueuedMessageBox() override;

    /// Queues a box with an icon; `member`, a SLOT() or SIGNAL(), is called with the
    /// QMessageBox::StandardButton that closed the box, NoButton when it was closed otherwise.
    static void critical(QWidget *parent, const QString &title, const QString &text,
                         QMessageBox::StandardButtons buttons,
                         QMessageBox::StandardButton defaultButton, QObject *receiver,
                         const char *member);
    static void information(QWidget *parent, const QString &title, const QString &text,
                            QMessageBox::StandardButtons buttons,
                            QMessageBox::StandardButton defaultButton, QObject *receiver,
                            const char *member);
    static void warning(QWidget *parent, const QString &title, const QString &text,
                        QMessageBox::StandardButtons buttons,
                        QMessageBox::StandardButton defaultButton, QObject *receiver,
                        const char *member);

    /// Queues a question. A button of the yes role calls the one member, a button of the no role
    /// the other, without arguments; any other button calls neither. Escape and the close button
    /// of the window count as the button that the toolkit takes for them: No in a box of Yes and
    /// No.
    static void question(QWidget *parent, const QString &title, const QString &text,
                         QMessageBox::StandardButtons buttons,
                         QMessageBox::StandardButton defaultButton, QObject *yesReceiver,
                         const char *yesMember, QObject *noReceiver, const char *noMember);

Q_SIGNALS:
    /// Emitted when the box has been closed, with the button that did it, or NoButton.
    void finished(QMessageBox::StandardButton button);
    /// Emitted after finished() when the button has the yes role.
    void yes();
    /// Emitted after finished() when the button has the no role.
    void no();

private:
    QQueuedMessageBox(QMessageBox *box, QObject *parent);

    static void showNewMessageBox(QWidget *parent, QMessageBox::Icon icon, const QString &title,
                                  const QString &text, QMessageBox::StandardButtons buttons,
                                  QMessageBox::StandardButton defaultButton, QObject *receiver,
                                  const char *member, QObject *noReceiver, const char *noMember);
    void run() override;
    bool isItsTurn() const;
    void showBox();
    void leaveQueue();

    const QPointer<QMessageBox> m_box; // owned, but its parent may be faster
    bool m_shown = false; // it has had its turn
};
