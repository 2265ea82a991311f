#include <tul-util-gui/filedialog/remotefiledialogbase.h>

#include <support/literal.h>
#include <support/testcase.h>

#include <QtTest>
#include <QtWidgets>

#include <memory>

namespace
{

using Names = QStringList;

QStringList texts(const QAbstractItemModel *model, const QModelIndex &parent = {})
{
    QStringList result;
    for (int i = 0; i < model->rowCount(parent); ++i)
        result.append(model->index(i, 0, parent).data().toString());
    return result;
}

/// Performs steps on a file dialog of either kind, and writes down what can be seen of it.
template<class Dialog> class Script : public QObject
{
public:
    explicit Script(const QString &root)
        : m_root(root)
        , m_dialog(std::make_unique<Dialog>(nullptr, QString(), root))
    {
        const auto noting = [this](const char *what) {
            return [this, what](const QString &value) { note(what, value); };
        };
        connect(dialog(), &Dialog::currentChanged, this, noting("currentChanged"));
        connect(dialog(), &Dialog::directoryEntered, this, noting("directoryEntered"));
        connect(dialog(), &Dialog::fileSelected, this, noting("fileSelected"));
        connect(dialog(), &Dialog::filterSelected, this, noting("filterSelected"));
        connect(dialog(), &Dialog::filesSelected, this, [this](const QStringList &files) {
            note("filesSelected", files.join(QLatin1Char('|')));
        });
        connect(dialog(), &QDialog::finished, this,
                [this](int result) { note("finished", QString::number(result)); });
        connect(&m_timer, &QTimer::timeout, this, &Script::answerModal);
        m_timer.start(1);
        dialog()->setOption(QFileDialog::DontUseNativeDialog);
        dialog()->setViewMode(QFileDialog::Detail);
        dialog()->show();
        // The toolkit's button is not up to date from the beginning.
        dialog()->setFileMode(QFileDialog::AnyFile);
        settle();
    }

    /// What happened and what is seen after a step.
    QStringList run(const QString &step)
    {
        m_trace.clear();
        perform(step.section(QLatin1Char(' '), 0, 0),
                step.section(QLatin1Char(' '), 1).replace("ROOT"_s, m_root));
        settle();
        return m_trace + state();
    }

private:
    Dialog *dialog() const { return m_dialog.get(); }
    template<class W> W *child(const QByteArray &name) const
    {
        return dialog()->template findChild<W *>(QString::fromLatin1(name));
    }
    QLineEdit *edit() const { return child<QLineEdit>("fileNameEdit"); }
    QAbstractItemView *view() const { return child<QTreeView>("treeView"); }

    void note(const char *what, const QString &value)
    {
        m_trace.append("%1(%2)"_s.arg(QLatin1String(what), brief(value)));
    }

    /// Paths without what differs between runs, and texts in which the two differ on purpose.
    QString brief(QString text) const
    {
        text.replace(m_root, "ROOT"_s);
        text.replace(QFileInfo(m_root).path(), "UP"_s);
        text.replace("My Computer"_s, "Computer"_s);
        return text.replace("Are sure you"_s, "Are you sure you"_s);
    }

    void answerModal()
    {
        if (auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget())) {
            for (const QAction *const action : menu->actions())
                note("menu",
                     "%1 %2 %3"_s.arg(action->text())
                         .arg(action->isEnabled())
                         .arg(action->isChecked()));
            menu->close();
        }
        auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || m_answers.isEmpty())
            return;
        QStringList buttons{box->windowTitle(), box->text(), QString::number(box->icon())};
        for (QAbstractButton *const button : box->buttons())
            buttons.append(button->text() + (button == box->defaultButton() ? "*"_s : ""_s));
        note("box", buttons.join(QLatin1Char('|')));
        const QString answer = m_answers.takeFirst();
        for (QAbstractButton *const button : box->buttons()) {
            if (button->text().remove(QLatin1Char('&')) == answer)
                return button->click();
        }
    }

    Names rows() const { return texts(view()->model(), view()->rootIndex()); }

    QModelIndex row(const QString &name) const
    {
        return view()->model()->index(rows().indexOf(name), 0, view()->rootIndex());
    }

    QSet<QString> shownRows() const
    {
        const Names names = rows();
        return {names.cbegin(), names.cend()};
    }

    QSet<QString> expectedRows() const
    {
        const QString filter = dialog()->selectedNameFilter();
        if (filter == "Directories"_s && dialog()->filter() & QDir::Files
            && dialog()->nameFilters() != Names{"All Files (*)"_s})
            return shownRows(); // the name filters are still there, but not seen
        const bool named = filter.contains(QLatin1Char('('));
        const QString patterns = named ? filter.section(QLatin1Char('('), -1).chopped(1) : filter;
        const Names names
            = QDir(dialog()->directory().path())
                  .entryList(filter.contains(QLatin1Char('*')) ? patterns.split(QLatin1Char(' '))
                                                               : Names(),
                             dialog()->filter());
        return {names.cbegin(), names.cend()};
    }

    /// Waits until the shown directory is listed.
    void settle() const
    {
        if (dialog()->directory().path().startsWith(m_root))
            QTRY_COMPARE(shownRows(), expectedRows());
        QTRY_COMPARE(view()->viewport()->cursor().shape(), Qt::ArrowCursor);
        QCoreApplication::processEvents();
    }

    void click(const QString &name, Qt::KeyboardModifiers modifiers = {})
    {
        QVERIFY2(row(name).isValid(), qPrintable(name));
        const QPoint at = view()->visualRect(row(name)).center();
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, modifiers, at);
    }

    void perform(const QString &verb, const QString &arg)
    {
        using Text = const QString &;
        Dialog *const d = dialog();
        const QHash<QString, std::function<void(Text)>> verbs{
            {"mode"_s, [d](Text a) { d->setFileMode(QFileDialog::FileMode(a.toInt())); }},
            {"save"_s, [d](Text) { d->setAcceptMode(QFileDialog::AcceptSave); }},
            {"open"_s, [d](Text) { d->setAcceptMode(QFileDialog::AcceptOpen); }},
            {"option"_s, [d](Text a) { d->setOption(QFileDialog::Option(a.toInt())); }},
            {"names"_s, [d](Text a) { d->setNameFilter(a); }},
            {"suffix"_s, [d](Text a) { d->setDefaultSuffix(a); }},
            {"entries"_s, [d](Text a) { d->setFilter(QDir::Filters(a.toInt())); }},
            {"dir"_s, [d](Text a) { d->setDirectory(a); }},
            {"select"_s, [d](Text a) { d->selectFile(a); }},
            {"history"_s, [d](Text a) { d->setHistory(a.split(QLatin1Char('|'))); }},
            {"places"_s,
             [d](Text a) {
                 d->setSidebarUrls({QUrl::fromLocalFile(a), QUrl("file:"_s)});
             }},
            {"text"_s, [this](Text a) { edit()->setText(a); }},
            {"type"_s, [this](Text a) { type(a); }},
            {"key"_s, [this](Text a) { key(a); }},
            {"complete"_s, [this](Text a) { complete(a); }},
            {"lookin"_s, [this](Text a) { lookIn(a); }},
            {"edit"_s, [this](Text a) { editName(a); }},
            {"press"_s, [this](Text a) { child<QToolButton>(a.toLatin1())->click(); }},
            {"accept"_s,
             [this](Text) { child<QDialogButtonBox>("buttonBox")->buttons().at(0)->click(); }},
            {"action"_s, [this](Text a) { child<QAction>(a.toLatin1())->trigger(); }},
            {"menu"_s, [this](Text a) { openMenu(a); }},
            {"click"_s, [this](Text a) { click(a); }},
            {"ctrl"_s, [this](Text a) { click(a, Qt::ControlModifier); }},
            {"shift"_s, [this](Text a) { click(a, Qt::ShiftModifier); }},
            {"double"_s, [this](Text a) { doubleClick(a); }},
            {"side"_s, [this](Text a) { side(a.toInt()); }},
            {"filter"_s, [this](Text a) { pickFilter(a == "Up"_s ? Qt::Key_Up : Qt::Key_Down); }},
            {"answer"_s, [this](Text a) { m_answers.append(a); }}};
        QVERIFY2(verbs.contains(verb), qPrintable(verb));
        verbs.value(verb)(arg);
    }

    void doubleClick(const QString &name)
    {
        click(name);
        const QPoint at = view()->visualRect(row(name)).center();
        QTest::mouseDClick(view()->viewport(), Qt::LeftButton, {}, at);
    }

    /// That of a row, or of the empty space.
    void openMenu(const QString &name)
    {
        Q_EMIT view()->customContextMenuRequested(name.isEmpty()
                                                      ? QPoint(5, view()->viewport()->height() - 3)
                                                      : view()->visualRect(row(name)).center());
    }

    void type(const QString &text)
    {
        dialog()->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(dialog()));
        edit()->setFocus();
        edit()->selectAll();
        QTest::keyClicks(edit(), text);
        edit()->completer()->popup()->hide();
    }

    /// A key for the edit, or, after "view", for the view.
    void key(const QString &arg)
    {
        QWidget *const target = arg.startsWith("view "_s) ? static_cast<QWidget *>(view()) : edit();
        dialog()->activateWindow();
        target->setFocus();
        const int code = QKeySequence(arg.section(QLatin1Char(' '), -1))[0];
        QTest::keyClick(target, Qt::Key(code & ~Qt::KeyboardModifierMask),
                        Qt::KeyboardModifiers(code & Qt::KeyboardModifierMask));
    }

    /// The completions of a text, of which there are going to be as many as the number says.
    void complete(const QString &arg)
    {
        type(arg.section(QLatin1Char(' '), 1));
        QCompleter *const completer = edit()->completer();
        const auto found = [&] {
            completer->setCompletionPrefix(edit()->text());
            return completer->completionCount();
        };
        QTRY_COMPARE(found(), arg.section(QLatin1Char(' '), 0, 0).toInt());
        Names paths;
        for (int i = 0; i < completer->completionCount(); ++i)
            paths.append(completer->pathFromIndex(completer->completionModel()->index(i, 0)));
        paths.sort(); // the toolkit does not sort what is not shown
        note("completions", paths.join(QLatin1Char('|')));
    }

    /// What the look-in box offers, but for the separator; then goes to an entry.
    void lookIn(const QString &entry)
    {
        auto *const box = child<QComboBox>("lookInCombo");
        box->showPopup();
        Names entries;
        for (int i = 0; i < box->count(); ++i) {
            if (!box->itemText(i).isEmpty())
                entries.append(
                    box->itemText(i)
                    + (box->model()->index(i, 0).flags() & Qt::ItemIsEnabled ? ""_s : "-"_s));
        }
        note("entries", entries.join(QLatin1Char('|')));
        const int chosen = box->findText(entry);
        box->view()->setCurrentIndex(box->model()->index(chosen, 0));
        QTest::keyClick(box->view(), chosen < 0 ? Qt::Key_Escape : Qt::Key_Return);
    }

    void editName(const QString &name)
    {
        auto *const editor = view()->viewport()->template findChild<QLineEdit *>();
        QVERIFY(editor);
        note("editor", editor->text() + QLatin1Char('|') + editor->selectedText());
        editor->setText(name);
        QTest::keyClick(editor, Qt::Key_Return);
    }

    void side(int place)
    {
        auto *const places = child<QListView>("sidebar");
        const QRect rect = places->visualRect(places->model()->index(place, 0));
        QTest::mouseClick(places->viewport(), Qt::LeftButton, {}, rect.center());
    }

    void pickFilter(Qt::Key key) { QTest::keyClick(child<QComboBox>("fileTypeCombo"), key); }

    QStringList state() const
    {
        QStringList lines{"directory "_s + dialog()->directory().path(),
                          "files "_s + dialog()->selectedFiles().join(QLatin1Char('|')),
                          "history "_s + dialog()->history().join(QLatin1Char('|')),
                          "filter %1 "_s.arg(int(dialog()->filter()), 0, 16)
                              + dialog()->selectedNameFilter(),
                          "text "_s + edit()->text(),
                          "look in "_s + child<QComboBox>("lookInCombo")->currentText(),
                          "title %1 %2"_s.arg(dialog()->windowTitle()).arg(dialog()->isVisible()),
                          "label "_s + child<QLabel>("fileNameLabel")->text(),
                          "current "_s + view()->currentIndex().data().toString()};
        for (const QAbstractButton *const button :
             dialog()->template findChildren<QAbstractButton *>(
                 QRegularExpression("^$|(Back|Forward|Parent|New)"_s)))
            lines.append("%1 %2 %3 %4"_s.arg(button->objectName(), button->text())
                             .arg(button->isEnabled())
                             .arg(button->isDown()));
        Names selected;
        for (const QModelIndex &index : view()->selectionModel()->selectedRows()) {
            if (index.parent()
                == view()->rootIndex()) // the toolkit selects rows that are not shown
                selected.append(index.data().toString());
        }
        const auto *const types = child<QComboBox>("fileTypeCombo");
        const Names filters = texts(types->model());
        lines += {"selected "_s + selected.join(QLatin1Char('|')),
                  "types %1 %2"_s.arg(types->isEnabled()).arg(filters.join(QLatin1Char('|')))};
        // Without their order: each of the models sorts when it comes to it.
        Names names = dialog()->directory().path().startsWith(m_root) ? rows() : Names();
        names.sort();
        lines += names;
        for (QString &line : lines)
            line = brief(line);
        return lines;
    }

    const QString m_root;
    QStringList m_trace;
    QStringList m_answers;
    QTimer m_timer;
    const std::unique_ptr<Dialog> m_dialog;
};

/// Runs steps on a dialog of its own, in a folder and with settings of its own.
template<class Dialog> QVector<QStringList> traces(const QStringList &steps)
{
    const QTemporaryDir temporary;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, temporary.path());
    const QDir root(temporary.filePath("root"_s));
    for (const char *const directory : {"sub/deep", "sub2", "empty"})
        root.mkpath(QLatin1String(directory));
    for (const char *const name : {"a.txt", "ab.txt", "b.png", "c d.txt", "noext", ".hidden",
                                   "q\"u.txt", "~root", "sub/inner.txt", "sub/other.txt"}) {
        QFile file(root.filePath(QLatin1String(name)));
        file.open(QIODevice::WriteOnly);
    }
    Script<Dialog> script(root.path());
    QVector<QStringList> result;
    for (const QString &step : steps)
        result.append(script.run(step));
    return result;
}

} // namespace

// The toolkit's own dialog and ours do the same steps, and are to show the same all the way. A step
// that begins with "!" is known to end differently, for the reason at its row, and has to.
class TestFileDialogParity : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void behavesAsTheDialogOfTheToolkit_data();
    void behavesAsTheDialogOfTheToolkit();
};

void TestFileDialogParity::behavesAsTheDialogOfTheToolkit_data()
{
    QTest::addColumn<QString>("steps");
    const auto row = [](const char *name, const char *steps) {
        QTest::newRow(name) << QString::fromUtf8(steps);
    };
    row("typed names", "type a;type a.txt;type nonsense;text a.txt;key Return");
    row("existing file",
        "mode 1;type missing;answer OK;key Return;type sub;type "
        "nodir/x;answer OK;key Return;type a.txt;key Return");
    row("several names where one will do", "type \"a.txt\" \"ab.txt\";key Return");
    row("a file elsewhere", "mode 1;type sub;type sub/inner.txt;key Return");
    row("several files",
        "mode 3;click a.txt;ctrl b.png;ctrl sub;ctrl b.png;shift c d.txt;press "
        "backButton;type \"a.txt\" \"b.png;type \"a.txt\"\"b.png\";key Return");
    row("a directory among files", "mode 3;type \"a.txt\" \"sub\";type c d.txt;key Return");
    row("entering",
        "double sub;click inner.txt;press backButton;press forwardButton;press "
        "toParentButton;press toParentButton;press backButton;dir ROOT;press "
        "backButton;press forwardButton;dir ROOT/none;dir ROOT/a.txt");
    row("keys in the view", "key view A;key view Alt+Left;key view Backspace;key view Escape");
    row("up to the drives", "dir /;press toParentButton;press backButton;dir ROOT");
    row("return on a directory", "mode 1;click sub;accept;click deep;key view Return");
    row("directories",
        "mode 2;click a.txt;click sub;type x;type a.txt;key Return;type "
        "nodir/x;answer OK;key Return;type sub;key Return");
    row("the shown directory", "mode 2;key Return");
    row("several directories", "mode 2;type \"sub\" \"sub2\";key Return");
    row("directories only", "mode 4;click sub;key view Return");
    row("dots", "type ./a.txt;type sub/../a.txt;type .;type ROOT");
    row("saving",
        "save;type new;type sub;key Return;type inner.txt;answer No;key Return;answer "
        "Yes;key Return");
    row("saving several names", "save;type \"a.txt\" \"ab.txt\";answer Yes;key Return");
    row("saving unasked", "save;option 4;type a.txt;key Return");
    row("only for a while directories only", "option 1;mode 2");
    row("titles and buttons", "save;mode 2;open;save;mode 4;open;text sub;text nosuch");
    row("suffix",
        "save;suffix .txt;type new;type a;type noext;type dots.;type a.b;answer "
        "Yes;type ab;key Return");
    row("suffix and rows", "suffix txt;click noext;key view Return");
    row("name filters",
        "names Text (*.txt);;Images (*.png *.jpg);;All (*);filter Down;filter "
        "Down;filter Up;filter Up;names *.png *.txt;names (*.png);names "
        "*.png;*.txt;names Foo (x) (*.png);names A (*.txt)\nB (*.png);names A  (*.txt   *.png)");
    row("entry filter", "entries 24578;mode 1"); // QDir::Files | QDir::NoDotAndDotDot
    row("names follow the filter",
        "save;names Text (*.txt);;Images (*.png);;All (*);text "
        "new.txt;filter Down;filter Down;text noext;filter Up");
    row("options", "mode 2;option 1;option 32;option 2;option 8;menu sub;menu");
    row("selecting by call",
        "key view Home;select a.txt;select sub;select "
        "ROOT/sub/inner.txt;select ROOT/sub;select rel/zz;select;select /");
    row("a name like that of a host", "mode 1;type \\x;mode 2;text \\x");
    row("a name that is too long",
        QByteArray("type " + QByteArray(300, 'x') + ";key Return").constData());
    row("homes",
        "type ~root;type ~root/none;type ~/none;type ~nosuchuser/x;type ~nosuchuser;type x~root");
    row("completing", "complete 2 a;complete 3 sub/;complete 2 ROOT/s;complete 0 zz");
    row("completing directories", "mode 4;complete 2 s;complete 0 a");
    row("look-in",
        "history ROOT/sub|ROOT/sub2;lookin none;dir ROOT/sub;lookin ROOT;lookin "
        "ROOT/sub2;press backButton");
    row("places", "places ROOT/sub;side 0;side 0;side 1;side 0;press backButton");
    row("places of directories",
        "mode 4;history ROOT/sub2;places ROOT/sub;click sub2;side 0;dir ROOT;text sub;lookin "
        "ROOT/sub2;key Return");
    row("recent places", "history ROOT/sub|ROOT/sub2|ROOT/sub;lookin none");
    row("home", "key view Ctrl+Shift+H");
    row("renaming", "click a.txt;action qt_rename_action;edit z.txt");
    row("renaming a directory", "mode 2;click sub;action qt_rename_action;edit other");
    row("deleting some",
        "mode 3;click a.txt;ctrl ab.txt;answer No;answer No;action qt_delete_action");
    row("deleting",
        "click a.txt;answer Yes;action qt_delete_action;answer No;action qt_delete_action;click "
        "sub;answer Yes;key view Delete");
    row("new folder", "action qt_new_folder_action");
    row("hidden files and the menu",
        "action qt_show_hidden_action;menu;action "
        "qt_show_hidden_action;menu noext;menu");
    // A quote is no reason why a file that is there could not be chosen.
    row("by design: quote in a name", "!type q\"u.txt;!key Return");
    // A variable stands for its value in a path that is typed.
    row("by design: variables", "!type $HOME");
    // What is missing among several names is told.
    row("by design: missing among several", "mode 3;!type \"a.txt\" \"zz\";!answer OK;!key Return");
    // A path is told without dots.
    row("by design: dot dot", "double sub;type ..;!key Return");
    // A row that the line edit names is selected wherever the dialog goes.
    row("by design: a name goes along", "double sub;click inner.txt;dir ROOT;!dir ROOT/sub/");
    // A hidden file that is named can be opened, and the button shows it.
    row("by design: hidden file", "mode 1;!type .hidden");
    // A directory does not get the suffix, and what was selected elsewhere is not chosen here.
    row("by design: suffix of a directory", "suffix txt;!type empty;!key Return");
    // The name of a directory that is entered is not a name in it.
    row("by design: entered name", "text sub;!double sub");
    // The name filters come back when files are chosen again.
    row("by design: filters come back", "names T (*.txt);mode 2;!mode 0");
    // A filter of patterns alone is shown as it is.
    row("by design: only patterns", "option 64;!names *.png");
    // A directory that does not exist is not part of a file's name.
    row("by design: missing directory", "key view Home;!select /nonexistent/zz");
}

void TestFileDialogParity::behavesAsTheDialogOfTheToolkit()
{
    QFETCH(QString, steps);
    QStringList list = steps.split(QRegularExpression(";(?!;|\\*)(?<!;;)"_s));
    QVector<bool> differs;
    for (QString &step : list) {
        differs.append(step.startsWith(QLatin1Char('!')));
        step.remove("!"_s);
    }
    const auto theirs = traces<QFileDialog>(list);
    const auto ours = traces<RemoteFileDialogBase>(list);
    for (int i = 0; i < list.size(); ++i) {
        if (!differs.at(i))
            QVERIFY2(ours.at(i) == theirs.at(i),
                     qPrintable(list.at(i) + "\n--- theirs\n"_s + theirs.at(i).join("\n"_s)
                                + "\n--- ours\n"_s + ours.at(i).join("\n"_s)));
        else if (list.at(i) != "answer OK"_s)
            QVERIFY2(ours.at(i) != theirs.at(i), qPrintable(list.at(i)));
    }
}

QTEST_MAIN(TestFileDialogParity)
#include "tst_filedialogparity.moc"
