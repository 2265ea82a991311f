#include <support/literal.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/qqueuedmessagebox.h>

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <functional>
#include <utility>

using Box = QMessageBox;

namespace
{

/// Sits before the screen and acts once on each box that comes up.
struct User : QTimer {
    explicit User(const std::function<void(Box &)> &act)
    {
        callOnTimeout(this, [=] {
            auto *const box = qobject_cast<Box *>(QApplication::activeModalWidget());
            if (!box || std::exchange(last, box) == box)
                return;
            seen += box->text();
            act(*box);
        });
        start(0);
    }

    QString seen; // the texts
    QPointer<Box> last;
};

} // namespace

class Receiver : public QObject
{
    Q_OBJECT

public:
    QString heard;
    std::function<void()> then = [] {}; // done on each answer

    void ask(QWidget *parent, const char *text, Box::Icon icon = Box::Information,
             Box::StandardButtons buttons = Box::Ok, Box::StandardButton wanted = Box::NoButton,
             bool named = true)
    {
        const auto member = [=](const char *slot) { return named ? slot : nullptr; };
        const QVector<decltype(&QQueuedMessageBox::critical)> kinds{
            nullptr, QQueuedMessageBox::information, QQueuedMessageBox::warning,
            QQueuedMessageBox::critical};
        if (icon == Box::Question)
            QQueuedMessageBox::question(parent, {}, QString::fromLatin1(text), buttons, wanted,
                                        this, member(SLOT(yes())), this, member(SLOT(no())));
        else
            kinds[icon](parent, {}, QString::fromLatin1(text), buttons, wanted, this,
                        member(SLOT(done(QMessageBox::StandardButton))));
    }

public Q_SLOTS:
    void done(QMessageBox::StandardButton button) { hear(QString::number(button, 16)); }
    void yes() { hear("yes"_s); }
    void no() { hear("no"_s); }

private:
    void hear(const QString &what)
    {
        heard += what + QLatin1Char(' ');
        const auto now = then; // outlives this
        now();
    }
};

class TestQQueuedMessageBox : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void answerIsReportedAsTheKindOfBoxAsks()
    {
        struct Case {
            Box::Icon icon;
            Box::StandardButtons buttons;
            Box::StandardButton wanted, expected; // as the default
            int answer; // a button, 0 for Escape, -1 for closing it from the program
            const char *heard; // null for no member
        };
        const auto none = Box::NoButton;
        for (const Case &row :
             {Case{Box::Information, Box::Ok, none, Box::Ok, Box::Ok, "400 "},
              Case{Box::Information, Box::Ok, none, Box::Ok, Box::Ok, nullptr},
              Case{Box::Warning, Box::Cancel | Box::Open, none, Box::Open, 0, "400000 "},
              Case{Box::Critical, Box::Ok | Box::Retry, Box::Retry, Box::Retry, -1, "0 "},
              Case{Box::Critical, Box::RestoreDefaults, none, none, Box::RestoreDefaults,
                   "8000000 "},
              Case{Box::Warning, none, none, none, 0, "400 "},
              Case{Box::Question, Box::Yes | Box::No, Box::No, Box::No, Box::Yes, "yes "},
              Case{Box::Question, Box::Yes | Box::No, none, none, 0, "no "},
              Case{Box::Question, Box::Yes, none, none, Box::Yes, nullptr},
              Case{Box::Question, Box::Yes | Box::Cancel, Box::Ok, none, 0, ""},
              Case{Box::Question, Box::YesToAll | Box::No, none, none, Box::YesToAll, "yes "},
              Case{Box::Question, Box::Ok | Box::Yes, none, Box::Ok, Box::Ok, ""}}) {
            Receiver receiver;
            QWidget parent;
            User user([&](Box &box) {
                QCOMPARE(box.icon(), row.icon);
                QVERIFY(row.buttons == none || box.standardButtons() == row.buttons);
                QVERIFY(row.buttons == none || box.defaultButton() == box.button(row.expected));
                if (row.answer == -1)
                    box.reject();
                else if (row.answer == 0)
                    QTest::keyClick(&box, Qt::Key_Escape);
                else
                    box.button(static_cast<Box::StandardButton>(row.answer))->click();
            });
            receiver.ask(&parent, "A", row.icon, row.buttons, row.wanted, row.heard);
            QVERIFY(user.seen.isEmpty());
            QTRY_COMPARE(user.seen, "A"_s);
            QTRY_VERIFY(parent.children().isEmpty());
            QCOMPARE(receiver.heard, QString::fromLatin1(row.heard));
        }
    }

    void boxesComeOneAfterTheOtherInTheOrderOfTheCalls()
    {
        Receiver receiver;
        QWidget parent;
        const User user([&](Box &box) {
            if (box.text() == QLatin1String("A")) {
                receiver.ask(nullptr, "C");
                QCoreApplication::processEvents(); // they all ask for their turn before A closes
                QCOMPARE(user.seen + receiver.heard, "A"_s);
            }
            box.accept();
        });
        receiver.then = [&] {
            if (user.seen.size() > 1)
                return;
            receiver.ask(&parent, "D");
            QTRY_COMPARE(receiver.heard, "0 0 0 0 "_s); // a slot may wait for the others
        };
        receiver.ask(&parent, "A");
        receiver.ask(nullptr, "B");
        QTRY_COMPARE(user.seen, "ABCD"_s);
    }

    void boxesThatALoopWaitsForComeWhileItRuns()
    {
        // The loop runs inside that of A, which is closed meanwhile or covered by a modal dialog.
        for (const bool covered : {false, true}) {
            Receiver first, second;
            QDialog dialog;
            dialog.setModal(true);
            const User user([&](Box &box) {
                if (box.text() != QLatin1String("A"))
                    return box.accept();
                QTimer::singleShot(0, &box, [&] {
                    second.ask(covered ? &dialog : nullptr, "B");
                    second.ask(covered ? &dialog : nullptr, "C");
                    dialog.setVisible(covered);
                    box.setVisible(covered);
                    QTRY_COMPARE(second.heard, "0 0 "_s);
                    QVERIFY(first.heard.isEmpty());
                    dialog.hide();
                    box.accept();
                });
            });
            first.ask(nullptr, "A");
            QTRY_COMPARE(first.heard, "0 "_s);
            QCOMPARE(user.seen, "ABC"_s);
        }
    }

    void whoeverGoesWheneverNobodyElseSuffers()
    {
        enum Victim { Parent, TheReceiver, TheBox, Runnable, Victims };
        enum Moment { Before, During, Answering, Moments };
        for (int i = 0; i < Victims * Moments; ++i) {
            const int victim = i / Moments, moment = i % Moments;
            QPointer<QWidget> parent = new QWidget;
            QPointer<Receiver> receiver = new Receiver;
            Receiver other;
            int answers = 0;
            const auto strike = [&] {
                delete (victim == TheBox ? parent->findChild<Box *>() : nullptr);
                delete (victim == Runnable ? parent->findChild<QQueuedMessageBox *>() : nullptr);
                delete (victim == Parent ? parent.data() : nullptr);
                delete (victim == TheReceiver ? receiver.data() : nullptr);
            };
            const User user([&](Box &box) {
                const QPointer<Box> up(&box);
                if (box.text() == QLatin1String("V") && moment == During)
                    strike();
                if (up)
                    up->buttons().constFirst()->click();
            });
            receiver->then = [&] {
                if (++answers == 1)
                    strike();
            };
            // The signal of the question follows the one that strikes.
            receiver->ask(parent, "V", Box::Question, Box::Yes);
            connect(parent->findChild<QQueuedMessageBox *>(), &QQueuedMessageBox::finished,
                    receiver, &Receiver::done);
            other.ask(nullptr, "N");
            if (moment == Before)
                strike();

            QTRY_COMPARE(other.heard, "400 "_s);
            QCOMPARE(user.seen,
                     QLatin1String(moment == Before && victim != TheReceiver ? "N" : "VN"));
            // A box that goes while it answers has its answer given already.
            QCOMPARE(answers, moment != Answering ? 0 : victim == TheBox ? 2 : 1);
            QTRY_VERIFY(!parent || parent->children().isEmpty());
            delete parent;
            delete receiver;
        }
    }
};

QTEST_MAIN(TestQQueuedMessageBox)
#include "tst_qqueuedmessagebox.moc"
