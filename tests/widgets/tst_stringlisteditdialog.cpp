#include <support/literal.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/stringlisteditdialog.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListView>
#include <QPushButton>
#include <QTest>

namespace
{

/// Does one thing to a shown dialog. Letters in lower case press its buttons; a digit makes that
/// row current, E opens its editor, and the signs are for what is done there.
void act(const StringListEditDialog &dialog, char action)
{
    const QHash<char, QString> buttons{
        {'a', "addPushButton"_s}, {'r', "removePushButton"_s}, {'c', "clearPushButton"_s}};
    const QHash<char, Qt::Key> keys{
        {'-', Qt::Key_Backspace}, {'!', Qt::Key_Return}, {'?', Qt::Key_Escape}, {'>', Qt::Key_Tab}};
    auto *const view = dialog.findChild<QListView *>("listView"_s);
    auto *const editor = view->viewport()->findChild<QLineEdit *>();
    if (buttons.contains(action))
        dialog.findChild<QPushButton *>(buttons.value(action))->click();
    else if (keys.contains(action))
        QTest::keyClick(editor, keys.value(action)); // Backspace once for all: it is selected
    else if (action == '+')
        QTest::keyClicks(editor, "x"_s);
    else if (action == 'D')
        QTest::keyClick(editor ? static_cast<QWidget *>(editor) : view, Qt::Key_Delete);
    else if (action == 'E')
        view->edit(view->currentIndex());
    else if (action == '^') // somewhere else
        dialog.findChild<QDialogButtonBox *>("buttonBox"_s)->setFocus();
    else
        view->setCurrentIndex(view->model()->index(action - '0', 0));
}

} // namespace

class TestStringListEditDialog : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void editingLeavesTheExpectedList()
    {
        // The list before, what is done, and the list after it, with commas; "-" has no entry.
        for (const char *const row :
             {"p a+! p,x", "p aa p,", "- a+a! x", "p a^ p", "p a? p", "p, 0a p,",
              // Emptied: kept nowhere, wherever the user goes next.
              "p,q 0E-! q", "p,,q 0E-! ,q", "p,q,r 0E-> q,r", "p,q 0E-^ q", "p,q,r 0E-2 q,r",
              "p,q 0E-a q,",
              // Changed, or given as empty: kept.
              "p,,r 0E+1 x,,r", "p, 1E? p,",
              // Removed, one by one, also while edited; Delete in the editor is for the editor.
              "p,q,r 0rr r", "p,,q 0E-r ,q", "p,q 1D p", "p,q 0E+D p,q", "p,q 0c -",
              "p,q 0E+ca+! x"}) {
            const QStringList parts = QString::fromLatin1(row).split(QLatin1Char(' '));
            const auto list = [](const QString &text) {
                return text == QLatin1String("-") ? QStringList() : text.split(QLatin1Char(','));
            };
            StringListEditDialog dialog(list(parts.at(0)));
            dialog.show();
            dialog.activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            const auto *const view = dialog.findChild<QListView *>("listView"_s);
            const auto *const remove = dialog.findChild<QWidget *>("removePushButton"_s);
            const auto *const clear = dialog.findChild<QWidget *>("clearPushButton"_s);
            for (const QChar action : parts.at(1)) {
                act(dialog, action.toLatin1());
                QCoreApplication::processEvents();
                QCoreApplication::sendPostedEvents(nullptr,
                                                   QEvent::DeferredDelete); // closed editors
                QCOMPARE(remove->isEnabled(), view->selectionModel()->hasSelection());
                QCOMPARE(clear->isEnabled(), !dialog.stringList().isEmpty());
            }
            QVERIFY2(dialog.stringList() == list(parts.at(2)), row);
        }
    }
};

QTEST_MAIN(TestStringListEditDialog)
#include "tst_stringlisteditdialog.moc"
