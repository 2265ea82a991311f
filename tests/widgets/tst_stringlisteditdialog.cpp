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

template<class Widget> Widget *find(const StringListEditDialog &dialog, const char *name)
{
    return dialog.findChild<Widget *>(QString::fromLatin1(name));
}

/// Does one thing to a shown dialog. Letters in lower case press its buttons; a digit makes that
/// row current, E opens its editor, and the signs are for what is done there.
void act(const StringListEditDialog &dialog, char action)
{
    const QHash<char, const char *> buttons{
        {'a', "addPushButton"}, {'r', "removePushButton"}, {'c', "clearPushButton"}};
    const QHash<char, Qt::Key> keys{
        {'-', Qt::Key_Backspace}, {'!', Qt::Key_Return}, {'?', Qt::Key_Escape}, {'>', Qt::Key_Tab}};
    auto *const view = find<QListView>(dialog, "listView");
    auto *const editor = view->viewport()->findChild<QLineEdit *>();
    if (buttons.contains(action))
        find<QPushButton>(dialog, buttons.value(action))->click();
    else if (keys.contains(action))
        QTest::keyClick(editor, keys.value(action)); // Backspace once for all: it is selected
    else if (action == '+')
        QTest::keyClicks(editor, QStringLiteral("x"));
    else if (action == 'D')
        QTest::keyClick(editor ? static_cast<QWidget *>(editor) : view, Qt::Key_Delete);
    else if (action == 'E')
        view->edit(view->currentIndex());
    else if (action == '^') // somewhere else
        find<QDialogButtonBox>(dialog, "buttonBox")->setFocus();
    else
        view->setCurrentIndex(view->model()->index(action - '0', 0));
}

} // namespace

class TestStringListEditDialog : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void formHasItsNamesAndTexts();
    void editingLeavesTheExpectedList_data();
    void editingLeavesTheExpectedList();
};

void TestStringListEditDialog::formHasItsNamesAndTexts()
{
    StringListEditDialog dialog({QStringLiteral("a")});
    QStringList found;
    for (const QObject *const child : dialog.findChildren<QObject *>()) {
        if (!child->objectName().startsWith(QLatin1String("qt_")) && !child->objectName().isEmpty())
            found += QLatin1String(child->metaObject()->className()) + QLatin1Char(' ')
                + child->objectName() + child->property("text").toString();
    }
    found.sort();
    QCOMPARE(found.join(QLatin1Char('\n')),
             QStringLiteral("QDialogButtonBox buttonBox\nQHBoxLayout horizontalLayout\n"
                            "QPushButton addPushButton&Add...\nQPushButton clearPushButton&Clear\n"
                            "QPushButton removePushButton&Remove\nQVBoxLayout verticalLayout\n"
                            "QVBoxLayout verticalLayout_2\nUi::StringListView listView"));
    find<QDialogButtonBox>(dialog, "buttonBox")->button(QDialogButtonBox::Ok)->click();
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
}

void TestStringListEditDialog::editingLeavesTheExpectedList_data()
{
    QTest::addColumn<QString>("before"); // entries separated by commas; "-" for no entry at all
    QTest::addColumn<QString>("actions");
    QTest::addColumn<QString>("after");
    const auto add
        = [](const char *name, const char *before, const char *actions, const char *after) {
              QTest::newRow(name) << QString::fromLatin1(before) << QString::fromLatin1(actions)
                                  << QString::fromLatin1(after);
          };
    add("added", "p", "a+!", "p,x");
    add("two added", "-", "a+!a+!", "x,x");
    add("added twice without typing", "p", "aa", "p,");
    add("refused while another is typed", "-", "a+a!", "x");
    add("added and confirmed", "p", "a!", "p");
    add("added and left", "p", "a^", "p");
    add("added and cancelled", "p", "a?", "p");
    add("added, typed and cancelled", "p", "a+?", "p");
    add("refused after an empty entry", "p,", "0a", "p,");
    add("emptied", "p,q", "0E-!", "q");
    add("emptied before another empty one", "p,,q", "0E-!", ",q");
    add("emptied and on to the next", "p,q,r", "0E->", "q,r");
    add("emptied and left", "p,q", "0E-^", "q");
    add("emptied and another chosen", "p,q,r", "0E-2", "q,r");
    add("emptied and another added", "p,q", "0E-a", "q,");
    add("emptied, but cancelled", "p,q", "0E-?", "p,q");
    add("changed and another chosen", "p,,r", "0E+1", "x,,r");
    add("given as empty and cancelled", "p,", "1E?", "p,");
    add("removed one by one", "p,q,r", "0rr", "r");
    add("removed, none chosen", "p,q", "r", "p,q");
    add("removed while edited", "p,,q", "0E-r", ",q");
    add("deleted by key", "p,q", "1D", "p");
    add("delete in the editor", "p,q", "0E+D", "p,q");
    add("cleared", "p,q", "0c", "-");
    add("cleared while edited, then added", "p,q", "0E+ca+!", "x");
}

void TestStringListEditDialog::editingLeavesTheExpectedList()
{
    QFETCH(const QString, before);
    QFETCH(const QString, actions);
    QFETCH(const QString, after);
    const auto list = [](const QString &text) {
        return text == QLatin1String("-") ? QStringList() : text.split(QLatin1Char(','));
    };
    StringListEditDialog dialog(list(before));
    dialog.show();
    dialog.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    const auto *const view = find<QListView>(dialog, "listView");
    for (const QChar action : actions) {
        act(dialog, action.toLatin1());
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // closed editors
        QCOMPARE(find<QPushButton>(dialog, "removePushButton")->isEnabled(),
                 view->selectionModel()->hasSelection());
        QCOMPARE(find<QPushButton>(dialog, "clearPushButton")->isEnabled(),
                 !dialog.stringList().isEmpty());
    }
    QCOMPARE(dialog.stringList(), list(after));
}

QTEST_MAIN(TestStringListEditDialog)

#include "tst_stringlisteditdialog.moc"
