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
    const QHash<char, QString> buttons{{'a', QStringLiteral("addPushButton")},
                                       {'r', QStringLiteral("removePushButton")},
                                       {'c', QStringLiteral("clearPushButton")}};
    const QHash<char, Qt::Key> keys{
        {'-', Qt::Key_Backspace}, {'!', Qt::Key_Return}, {'?', Qt::Key_Escape}, {'>', Qt::Key_Tab}};
    auto *const view = dialog.findChild<QListView *>(QStringLiteral("listView"));
    auto *const editor = view->viewport()->findChild<QLineEdit *>();
    if (buttons.contains(action))
        dialog.findChild<QPushButton *>(buttons.value(action))->click();
    else if (keys.contains(action))
        QTest::keyClick(editor, keys.value(action)); // Backspace once for all: it is selected
    else if (action == '+')
        QTest::keyClicks(editor, QStringLiteral("x"));
    else if (action == 'D')
        QTest::keyClick(editor ? static_cast<QWidget *>(editor) : view, Qt::Key_Delete);
    else if (action == 'E')
        view->edit(view->currentIndex());
    else if (action == '^') // somewhere else
        dialog.findChild<QDialogButtonBox *>(QStringLiteral("buttonBox"))->setFocus();
    else
        view->setCurrentIndex(view->model()->index(action - '0', 0));
}

} // namespace

class TestStringListEditDialog : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void editingLeavesTheExpectedList_data();
    void editingLeavesTheExpectedList();
};

void TestStringListEditDialog::editingLeavesTheExpectedList_data()
{
    QTest::addColumn<QString>("row"); // lists have commas; "-" is one without any entry
    const auto add = [](const char *name, const char *before, const char *acts, const char *after) {
        QTest::newRow(name) << QString::asprintf("%s %s %s", before, acts, after);
    };
    add("added", "p", "a+!", "p,x");
    add("added twice without typing", "p", "aa", "p,");
    add("refused while another is typed", "-", "a+a!", "x");
    add("added and left", "p", "a^", "p");
    add("added and cancelled", "p", "a?", "p");
    add("refused after an empty entry", "p,", "0a", "p,");
    add("emptied", "p,q", "0E-!", "q");
    add("emptied before another empty one", "p,,q", "0E-!", ",q");
    add("emptied and on to the next", "p,q,r", "0E->", "q,r");
    add("emptied and left", "p,q", "0E-^", "q");
    add("emptied and another chosen", "p,q,r", "0E-2", "q,r");
    add("emptied and another added", "p,q", "0E-a", "q,");
    add("changed and another chosen", "p,,r", "0E+1", "x,,r");
    add("given as empty and cancelled", "p,", "1E?", "p,");
    add("removed one by one", "p,q,r", "0rr", "r");
    add("removed while edited", "p,,q", "0E-r", ",q");
    add("deleted by key", "p,q", "1D", "p");
    add("delete in the editor", "p,q", "0E+D", "p,q");
    add("cleared", "p,q", "0c", "-");
    add("cleared while edited, then added", "p,q", "0E+ca+!", "x");
}

void TestStringListEditDialog::editingLeavesTheExpectedList()
{
    QFETCH(const QString, row);
    const auto part = [&](int index) { return row.section(QLatin1Char(' '), index, index); };
    const auto list = [](const QString &text) {
        return text == QLatin1String("-") ? QStringList() : text.split(QLatin1Char(','));
    };
    StringListEditDialog dialog(list(part(0)));
    dialog.show();
    dialog.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    const auto *const view = dialog.findChild<QListView *>(QStringLiteral("listView"));
    for (const QChar action : part(1)) {
        act(dialog, action.toLatin1());
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // closed editors
        const auto *const remove = dialog.findChild<QWidget *>(QStringLiteral("removePushButton"));
        const auto *const clear = dialog.findChild<QWidget *>(QStringLiteral("clearPushButton"));
        QCOMPARE(remove->isEnabled(), view->selectionModel()->hasSelection());
        QCOMPARE(clear->isEnabled(), !dialog.stringList().isEmpty());
    }
    QCOMPARE(dialog.stringList(), list(part(2)));
}

QTEST_MAIN(TestStringListEditDialog)

#include "tst_stringlisteditdialog.moc"
