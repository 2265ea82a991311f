#include <support/testcase.h>
#include <tul-util-gui/widgets/qqueuedmessagebox.h>

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <functional>
#include <memory>

namespace
{

/// Sits before the screen and acts once on each box that comes up.
class User
{
public:
    explicit User(std::function<void(QMessageBox &)> action)
        : act(std::move(action))
    {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { look(); });
        m_timer.start(0);
    }

    std::function<void(QMessageBox &)> act;
    QStringList seen; // the texts
    int mostAtOnce = 0;

private:
    void look()
    {
        int visible = 0;
        for (const QWidget *const widget : QApplication::topLevelWidgets())
            visible += widget->isVisible() && qobject_cast<const QMessageBox *>(widget);
        mostAtOnce = std::max(mostAtOnce, visible);
        auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || box == m_last)
            return;
        m_last = box;
        seen += box->text();
        act(*box);
    }

    QPointer<QMessageBox> m_last;
    QTimer m_timer;
};

void clickFirst(QMessageBox &box)
{
    box.buttons().constFirst()->click();
}

} // namespace

class Receiver : public QObject
{
    Q_OBJECT

public:
    QStringList heard;
    std::function<void()> then = [] {}; // done on each answer

    void ask(QWidget *parent, const QString &text)
    {
        QQueuedMessageBox::information(parent, {}, text, QMessageBox::Ok, QMessageBox::NoButton,
                                       this, SLOT(done(QMessageBox::StandardButton)));
    }

public Q_SLOTS:
    void done(QMessageBox::StandardButton button) { hear(QString::number(button, 16)); }
    void yes() { hear(QStringLiteral("yes")); }
    void no() { hear(QStringLiteral("no")); }

private:
    void hear(const QString &what)
    {
        heard += what;
        const auto now = then;
        now();
    }
};

class TestQQueuedMessageBox : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void answerIsReportedAsTheKindOfBoxAsks();
    void boxesComeOneAfterTheOtherInTheOrderOfTheCalls();
    void whoeverGoesWheneverNobodyElseSuffers();
    void receiverInAnotherThreadHearsTheAnswerThere();
};

void TestQQueuedMessageBox::answerIsReportedAsTheKindOfBoxAsks()
{
    using Box = QMessageBox;
    struct Case {
        Box::Icon icon;
        Box::StandardButtons buttons;
        Box::StandardButton wantedDefault, expectedDefault;
        int answer; // a button, 0 for Escape, -1 for closing it from the program
        const char *heard;
    };
    const auto none = Box::NoButton;
    for (const Case &row :
         {Case{Box::Information, Box::Ok, none, Box::Ok, Box::Ok, "400"},
          Case{Box::Warning, Box::Cancel | Box::Open, none, Box::Open, 0, "400000"},
          Case{Box::Critical, Box::Ok | Box::Retry, Box::Retry, Box::Retry, -1, "0"},
          Case{Box::Critical, Box::RestoreDefaults, none, none, Box::RestoreDefaults, "8000000"},
          Case{Box::Warning, none, none, none, 0, "400"},
          Case{Box::Question, Box::Yes | Box::No, none, none, Box::No, "no"},
          Case{Box::Question, Box::Yes | Box::No, Box::No, Box::No, Box::Yes, "yes"},
          Case{Box::Question, Box::Yes | Box::No, none, none, 0, "no"},
          Case{Box::Question, Box::Yes | Box::Cancel, Box::Ok, none, 0, ""},
          Case{Box::Question, Box::YesToAll | Box::No, none, none, Box::YesToAll, "yes"},
          Case{Box::Question, Box::Ok | Box::Yes, none, Box::Ok, Box::Ok, ""}}) {
        Receiver receiver;
        QWidget parent;
        User user([&](Box &box) {
            QCOMPARE(box.icon(), row.icon);
            QCOMPARE(box.windowTitle(), QStringLiteral("Title"));
            QCOMPARE(box.parentWidget(), &parent);
            QVERIFY(box.windowFlags().testFlag(Qt::MSWindowsFixedSizeDialogHint));
            QVERIFY(row.buttons == none || box.standardButtons() == row.buttons);
            if (row.buttons != none)
                QCOMPARE(box.defaultButton(), box.button(row.expectedDefault));
            if (row.answer == 0)
                QTest::keyClick(&box, Qt::Key_Escape);
            else if (row.answer == -1)
                box.reject();
            else
                box.button(static_cast<Box::StandardButton>(row.answer))->click();
        });
        const auto show = row.icon == Box::Information ? &QQueuedMessageBox::information
            : row.icon == Box::Warning                 ? &QQueuedMessageBox::warning
                                                       : &QQueuedMessageBox::critical;
        const QString text = QStringLiteral("Text");
        const QString title = QStringLiteral("Title");
        for (const bool named : {true, false}) {
            const auto member = [named](const char *slot) { return named ? slot : nullptr; };
            if (row.icon == Box::Question)
                QQueuedMessageBox::question(&parent, title, text, row.buttons, row.wantedDefault,
                                            &receiver, member(SLOT(yes())), &receiver,
                                            member(SLOT(no())));
            else
                show(&parent, title, text, row.buttons, row.wantedDefault, &receiver,
                     member(SLOT(done(QMessageBox::StandardButton))));
        }
        QVERIFY(user.seen.isEmpty());
        QTRY_COMPARE(user.seen.size(), 2);
        QTRY_VERIFY(parent.children().isEmpty());
        QCOMPARE(receiver.heard.join(QLatin1Char(' ')), QString::fromLatin1(row.heard));
    }
}

void TestQQueuedMessageBox::boxesComeOneAfterTheOtherInTheOrderOfTheCalls()
{
    Receiver receiver;
    QWidget parent;
    User user([&](QMessageBox &box) {
        if (box.text() == QLatin1String("A")) {
            receiver.ask(nullptr, QStringLiteral("C"));
            QCoreApplication::sendPostedEvents(); // they all ask for their turn before A closes
        }
        clickFirst(box);
    });
    receiver.then = [&] {
        if (receiver.heard.size() > 1)
            return;
        receiver.ask(&parent, QStringLiteral("D"));
        QTRY_COMPARE(receiver.heard.size(), 4); // a slot may wait for the next boxes
    };
    receiver.ask(&parent, QStringLiteral("A"));
    receiver.ask(nullptr, QStringLiteral("B"));
    QTRY_COMPARE(user.seen, QStringLiteral("A B C D").split(QLatin1Char(' ')));
    QCOMPARE(user.mostAtOnce, 1);
}

void TestQQueuedMessageBox::whoeverGoesWheneverNobodyElseSuffers()
{
    enum Victim { Parent, TheReceiver, Box, Runnable, Application };
    enum Moment { Before, During, Answering };
    for (const Victim victim : {Parent, TheReceiver, Box, Runnable, Application}) {
        for (const Moment moment : {Before, During, Answering}) {
            QPointer<QWidget> parent = new QWidget;
            QPointer<Receiver> receiver = new Receiver;
            Receiver other;
            int answers = 0;
            const auto strike = [&] {
                if (victim == Box)
                    delete parent->findChild<QMessageBox *>();
                else if (victim == Runnable)
                    delete parent->findChild<QQueuedMessageBox *>();
                if (victim == Parent || victim == Application)
                    delete parent;
                if (victim == TheReceiver || victim == Application)
                    delete receiver;
            };
            User user([&](QMessageBox &box) {
                const QPointer<QMessageBox> up(&box);
                if (box.text() == QStringLiteral("victim") && moment == During)
                    strike();
                if (up)
                    clickFirst(*up);
            });
            receiver->then = [&] {
                ++answers;
                if (moment == Answering)
                    strike();
            };
            // The question makes a second signal follow the one that strikes.
            QQueuedMessageBox::question(parent, {}, QStringLiteral("victim"), QMessageBox::Yes,
                                        QMessageBox::NoButton, receiver, SLOT(yes()), nullptr,
                                        nullptr);
            connect(parent->findChild<QQueuedMessageBox *>(), &QQueuedMessageBox::finished,
                    receiver, &Receiver::done);
            if (victim == Application)
                receiver->ask(parent, QStringLiteral("goes as well"));
            other.ask(nullptr, QStringLiteral("next"));
            if (moment == Before)
                strike();

            QTRY_COMPARE(other.heard.size(), 1);
            const bool comes = moment != Before || victim == TheReceiver;
            QCOMPARE(user.seen.size(), comes ? 2 : 1);
            QCOMPARE(user.mostAtOnce, 1);
            // A box that goes while it answers has its answer given already.
            QCOMPARE(answers, moment != Answering ? 0 : victim == Box ? 2 : 1);
            QTRY_VERIFY(!parent || parent->children().isEmpty());
            delete parent;
            delete receiver;
        }
    }
}

void TestQQueuedMessageBox::receiverInAnotherThreadHearsTheAnswerThere()
{
    QThread thread;
    Receiver receiver;
    QAtomicPointer<QThread> heardIn;
    receiver.then = [&] { heardIn.storeRelease(QThread::currentThread()); };
    receiver.moveToThread(&thread);
    thread.start();
    const User user(clickFirst);
    receiver.ask(nullptr, {});
    QTRY_COMPARE(heardIn.loadAcquire(), &thread);
    thread.quit();
    thread.wait();
}

QTEST_MAIN(TestQQueuedMessageBox)

#include "tst_qqueuedmessagebox.moc"
