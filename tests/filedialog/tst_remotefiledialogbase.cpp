#include <tul-util-gui/filedialog/dialognavigation_p.h>
#include <tul-util-gui/filedialog/dialogstate_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <support/faultyfolder.h>
#include <support/literal.h>
#include <support/modalsteps.h>
#include <support/testcase.h>

#include <QtTest>
#include <QtWidgets>

#include <memory>

namespace
{

void typeAndReturn(QWidget *target, const QString &text)
{
    target->setFocus();
    QTest::keyClick(target, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(target, text);
    QTest::keyClick(target, Qt::Key_Return);
}

void chooseLastPlace(QComboBox *lookIn)
{
    lookIn->showPopup();
    lookIn->view()->setCurrentIndex(lookIn->model()->index(lookIn->count() - 1, 0));
    QTest::keyClick(lookIn->view(), Qt::Key_Return);
}

/// A dialog whose parts are at hand.
class Dialog : public RemoteFileDialogBase
{
public:
    explicit Dialog(const QString &directory, QWidget *parent = nullptr)
        : RemoteFileDialogBase(parent, {}, directory)
    {
    }
    explicit Dialog(const RemoteFileDialogBaseArgs &args)
        : RemoteFileDialogBase(args)
    {
    }

    using RemoteFileDialogBase::fileSystemModel;

    template<class W> W *child(const char *name) const
    {
        return findChild<W *>(QLatin1String(name));
    }
    QLineEdit *edit() const { return child<QLineEdit>("fileNameEdit"); }
    QListView *view() const { return child<QListView>("listView"); }
    QHeaderView *header() const { return child<QTreeView>("treeView")->header(); }
    QString shown() const { return directory().path(); }
    bool isListing() const { return view()->viewport()->cursor().shape() == Qt::BusyCursor; }
    bool call(const char *slot) { return QMetaObject::invokeMethod(this, slot); }

    QStringList rows() const
    {
        QStringList names;
        for (int row = 0; row < view()->model()->rowCount(view()->rootIndex()); ++row)
            names.append(view()->model()->index(row, 0, view()->rootIndex()).data().toString());
        names.sort();
        return names;
    }

    /// Makes a row the current one.
    void setCurrent(int row)
    {
        view()->setCurrentIndex(view()->model()->index(row, 0, view()->rootIndex()));
    }

    /// Comes up and waits for its rows.
    void showRows(int count)
    {
        show();
        QTRY_COMPARE(rows().size(), count);
        QTRY_VERIFY(!isListing());
    }
};

/// Puts brackets around each text.
class Brackets : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *text, const char * /*note*/,
                      int /*n*/) const override
    {
        return QLatin1String(context) == QLatin1String("RemoteFileDialogBase")
            ? QLatin1Char('[') + QString::fromUtf8(text) + QLatin1Char(']')
            : QString();
    }
};

} // namespace

class TestRemoteFileDialogBase : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void isBuiltAsHostsKnowIt();
    void mnemonicsAreUnique();
    void followsTheLanguage();
    void argumentsLeaveTheNameSelected();
    void beginsWhereTheArgumentSays();
    void keepsItsLayoutForTheNextProcess();
    void restoresWhatCanBeRestored();
    void widensPanesThatHaveNoWidth();
    void openCallsTheMemberOnce();
    void mayBeDeletedInItsSlots();
    void mayGoWithItsParentWhileABoxIsOpen();
    void proxyModelStandsBetweenModelAndViews();
    void completerMayBeReplaced();
    void deleteKeyOfThePlacesLeavesFilesAlone();
    void readOnlyDialogChangesNoFile();
    void staysOnTheRemoteSide();
    void typingANameAsksNoOtherMachine();
    void acceptsWhileTheListingIsPending();
    void saysThatADirectoryCannotBeRead();
    void goesUpFromADirectoryThatIsGone();
    void stepsOverADirectoryThatIsGone();
    void deletesWhatIsLeftOfTheChosen();
    void tellsOfAFileThatIsGone();
    void clickThatActivatesCanAddToTheChoice();

private:
    QString path(const char *name) const { return m_folder->filePath(QLatin1String(name)); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestRemoteFileDialogBase::init()
{
    TestCase::init();
    m_folder = std::make_unique<QTemporaryDir>();
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, path("settings"));
    DialogNavigation::lastVisitedDirectory().clear();
    QVERIFY(QDir(m_folder->path()).mkpath("root/sub"_s));
    QFile file(path("root/a.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(QDir::setCurrent(path("root")));
}

void TestRemoteFileDialogBase::isBuiltAsHostsKnowIt()
{
    const Dialog dialog(path("root"));
    QCOMPARE(dialog.findChild<QComboBox *>()->objectName(), "lookInCombo"_s);

    QStringList order;
    const QWidget *widget = dialog.child<QWidget>("lookInCombo");
    for (int i = 0; i < 200; ++i, widget = widget->nextInFocusChain()) {
        if (widget->focusPolicy() & Qt::TabFocus && !widget->objectName().startsWith("qt_"_s))
            order.append(widget->objectName());
    }
    order.removeAll({});
    order.removeDuplicates();
    QCOMPARE(order.join(QLatin1Char(' ')),
             "lookInCombo backButton forwardButton toParentButton newFolderButton "
             "listModeButton detailModeButton sidebar listView treeView fileNameEdit "
             "fileTypeCombo"_s);
    for (const auto *const button :
         dialog.findChildren<QToolButton *>(QRegularExpression("Button$"_s)))
        QVERIFY(!button->icon().isNull() && !button->accessibleName().isEmpty());
    QCOMPARE(dialog.child<QAction>("qt_goto_parent_action")->shortcut()[0], 0x4000001);

    const QHeaderView *const header = dialog.header();
    QCOMPARE(header->sectionSize(1), header->fontMetrics().horizontalAdvance("128.88 GB"_s));
    QAction *const size = header->actions().constFirst();
    QCOMPARE(size->text(), "Show Size"_s);
    QVERIFY(size->isChecked());
    size->trigger();
    QVERIFY(header->isSectionHidden(1));
}

void TestRemoteFileDialogBase::mnemonicsAreUnique()
{
    Dialog dialog(path("root"));
    for (const int modes : {0, 1, 2, 3}) {
        dialog.setFileMode(modes & 1 ? QFileDialog::Directory : QFileDialog::AnyFile);
        dialog.setAcceptMode(modes & 2 ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
        QStringList keys;
        for (const auto *const label : dialog.findChildren<QLabel *>())
            keys.append(QKeySequence::mnemonic(label->text()).toString());
        for (const auto *const button : dialog.findChildren<QAbstractButton *>())
            keys.append(QKeySequence::mnemonic(button->text()).toString());
        keys.removeAll(QString());
        QVERIFY(!keys.isEmpty());
        QCOMPARE(keys.removeDuplicates(), 0);
    }
}

void TestRemoteFileDialogBase::followsTheLanguage()
{
    Dialog dialog(path("root"));
    dialog.setLabelText(QFileDialog::Reject, "No"_s);
    Brackets brackets;
    QCoreApplication::installTranslator(&brackets);
    QCoreApplication::sendPostedEvents(&dialog, QEvent::LanguageChange);
    QCoreApplication::processEvents();
    QCOMPARE(dialog.windowTitle(), "[Open]"_s);
    QCOMPARE(dialog.labelText(QFileDialog::FileName), "[File &name:]"_s);
    QCOMPARE(dialog.labelText(QFileDialog::Accept), "[&Open]"_s);
    QCOMPARE(dialog.labelText(QFileDialog::Reject), "No"_s);
    QCOMPARE(dialog.selectedNameFilter(), "[All Files (*)]"_s);
    QCOMPARE(dialog.child<QAction>("qt_delete_action")->text(), "[&Delete]"_s);
    dialog.setWindowTitle("Mine"_s);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    QCOMPARE(dialog.windowTitle(), "Mine"_s);
    QCoreApplication::removeTranslator(&brackets);
}

void TestRemoteFileDialogBase::argumentsLeaveTheNameSelected()
{
    RemoteFileDialogBaseArgs args;
    args.caption = "Pick"_s;
    args.directory = path("root");
    args.selection = "a.txt"_s;
    args.filter = "Text (*.txt)"_s;
    args.mode = QFileDialog::ExistingFile;
    args.options = QFileDialog::ReadOnly;
    const Dialog dialog(args);
    QCOMPARE(dialog.edit()->selectedText(), "a.txt"_s);
    QCOMPARE(dialog.windowTitle(), "Pick"_s);
    QCOMPARE(dialog.fileMode(), QFileDialog::ExistingFile);
    QVERIFY(dialog.isReadOnly());
    QCOMPARE(dialog.selectedNameFilter(), "Text (*.txt)"_s);
}

void TestRemoteFileDialogBase::beginsWhereTheArgumentSays()
{
    const QString rows[][3] = {{path("root"), "root"_s, {}},
                               {path("root/a.txt"), "root"_s, "a.txt"_s},
                               {path("root/new.c"), "root"_s, "new.c"_s},
                               {path("root/new/"), "root/sub"_s, {}},
                               {path("none/x.c"), "root/sub"_s, "x.c"_s},
                               {"."_s, "root"_s, {}},
                               {"sub"_s, "root/sub"_s, {}},
                               {"new.c"_s, "root"_s, "new.c"_s},
                               {{}, "root/sub"_s, {}}};
    for (const auto &[argument, shown, name] : rows) {
        Dialog(path("root")).setDirectory(path("root/sub"));
        const Dialog dialog(argument);
        QCOMPARE(dialog.shown(), m_folder->filePath(shown));
        QCOMPARE(dialog.edit()->text(), name);
        QVERIFY(!dialog.child<QToolButton>("backButton")->isEnabled());
    }
    // Another process knows nothing but the saved state.
    DialogNavigation::lastVisitedDirectory().clear();
    QCOMPARE(Dialog(QString()).shown(), path("root/sub"));
}

void TestRemoteFileDialogBase::keepsItsLayoutForTheNextProcess()
{
    const char *const variable = "TST_DIALOG_FOLDER";
    const QString shared = qEnvironmentVariable(variable, m_folder->path());
    const QList<QUrl> places{QUrl::fromLocalFile(shared), QUrl("file:"_s)};
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, shared + "/settings"_s);
    if (qEnvironmentVariableIsSet(variable)) { // in the other process
        Dialog dialog(shared + "/root"_s);
        dialog.setSidebarUrls(places);
        dialog.setHistory({"/one"_s, QString()});
        dialog.setViewMode(QFileDialog::Detail);
        dialog.header()->actions().at(1)->trigger();
        dialog.header()->resizeSection(0, 333);
        return;
    }
    QProcess other;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QLatin1String(variable), shared);
    other.setProcessEnvironment(environment);
    other.start(QCoreApplication::applicationFilePath(), {"keepsItsLayoutForTheNextProcess"_s});
    QVERIFY(other.waitForFinished());
    QCOMPARE(other.exitCode(), 0);
    QVERIFY(QDir::setCurrent("/"_s));

    const Dialog dialog(QString{});
    QCOMPARE(dialog.directory().path(), path("root"));
    QCOMPARE(dialog.sidebarUrls(), places);
    QCOMPARE(dialog.viewMode(), QFileDialog::Detail);
    QCOMPARE(dialog.history(), (QStringList{"/one"_s, path("root")}));
    QCOMPARE(dialog.header()->sectionSize(0), 333);
    QVERIFY(dialog.header()->isSectionHidden(2));
    QVERIFY(!dialog.header()->actions().at(1)->isChecked());
    const QSettings settings(QSettings::UserScope, "Vantorq"_s);
    QVERIFY(settings.contains("RemoteFileDialog/state"_s));
}

void TestRemoteFileDialogBase::restoresWhatCanBeRestored()
{
    Dialog dialog(path("root"));
    dialog.setHistory({"/1"_s, "/2"_s, "/3"_s, "/4"_s, "/5"_s});
    QVERIFY(dialog.restoreState(dialog.saveState()));
    QCOMPARE(dialog.history(), (QStringList{"/2"_s, "/3"_s, "/4"_s, "/5"_s, path("root")}));

    const QByteArray before = dialog.saveState();
    DialogState state = *DialogState::fromBytes(before);
    state.history = QStringList{"/x"_s};
    state.viewMode = QFileDialog::Detail;
    QByteArray bytes = state.toBytes();
    bytes[7] = 4;
    QVERIFY(!dialog.restoreState(bytes) && !dialog.restoreState({}));
    DialogState badSplitter = state;
    badSplitter.splitter = "no splitter";
    QVERIFY(!dialog.restoreState(badSplitter.toBytes()));
    QCOMPARE(dialog.saveState(), before);
    state.header = "no header";
    QVERIFY(!dialog.restoreState(state.toBytes()));
    QCOMPARE(dialog.history().constFirst(), "/x"_s); // what stands ahead of it is kept
    QCOMPARE(dialog.viewMode(), QFileDialog::List);
}

void TestRemoteFileDialogBase::widensPanesThatHaveNoWidth()
{
    Dialog dialog(path("root"));
    QSplitter collapsed;
    collapsed.addWidget(new QWidget);
    collapsed.addWidget(new QWidget);
    collapsed.setSizes({0, 0});
    DialogState state = *DialogState::fromBytes(dialog.saveState());
    state.splitter = collapsed.saveState();
    // Only where there is no room at all does the toolkit leave both panes without width.
    auto *const splitter = dialog.child<QSplitter>("splitter");
    splitter->resize(0, 0);
    QVERIFY(dialog.restoreState(state.toBytes()));
    dialog.show();
    const QList<int> sizes = splitter->sizes();
    QVERIFY2(sizes.at(0) > 0 && sizes.at(0) < sizes.at(1),
             qPrintable(QString::number(sizes.at(0))));
}

void TestRemoteFileDialogBase::openCallsTheMemberOnce()
{
    Dialog dialog(path("root"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    QComboBox receiver;
    receiver.setEditable(true);
    dialog.open(&receiver, SLOT(setEditText(QString)));
    QVERIFY(dialog.isVisible() && dialog.windowModality() == Qt::WindowModal);
    dialog.setFileMode(QFileDialog::ExistingFiles); // too late to make a difference
    typeAndReturn(dialog.edit(), "a.txt"_s);
    QCOMPARE(receiver.currentText(), path("root/a.txt"));
    receiver.setEditText({});
    Q_EMIT dialog.fileSelected("again"_s);
    QCOMPARE(receiver.currentText(), QString());
}

void TestRemoteFileDialogBase::mayBeDeletedInItsSlots()
{
    const char *const rows[][2] = {{SIGNAL(filesSelected(QStringList)), "accept"},
                                   {SIGNAL(fileSelected(QString)), "accept"},
                                   {SIGNAL(finished(int)), "accept"},
                                   {SIGNAL(directoryEntered(QString)), "_q_navigateToParent"},
                                   {SIGNAL(finished(int)), "reject"}};
    for (const auto &[signal, slot] : rows) {
        const QPointer<Dialog> dialog = new Dialog(path("root"));
        dialog->showRows(2);
        dialog->setCurrent(0);
        dialog->edit()->setText("a.txt"_s);

        // A dialog deletes itself within a call of its own; its children are in use further up.
        QObject context;
        QSignalMapper mapper;
        mapper.setMapping(dialog, 1);
        connect(dialog, signal, &mapper, SLOT(map()));
        connect(&mapper, &QSignalMapper::mappedInt, &context, [&] { delete dialog.data(); });
        QVERIFY(dialog->call(slot));
        QVERIFY2(!dialog, signal);
    }
}

void TestRemoteFileDialogBase::mayGoWithItsParentWhileABoxIsOpen()
{
    for (const char *const slot : {"accept", "_q_deleteCurrent", "look in"}) {
        auto *const parent = new QWidget;
        const ModalSteps steps({[&](QWidget *) { delete parent; }});
        const QPointer<Dialog> dialog = new Dialog(path("root"), parent);
        dialog->setFileMode(QFileDialog::ExistingFile);
        dialog->setHistory({path("root/gone")});
        dialog->showRows(2);
        dialog->setCurrent(1);
        if (qstrcmp(slot, "accept") == 0)
            dialog->edit()->setText("missing"_s);
        if (qstrcmp(slot, "look in") == 0)
            chooseLastPlace(dialog->child<QComboBox>("lookInCombo"));
        else
            QVERIFY(dialog->call(slot));
        QTRY_VERIFY(!dialog);
        QVERIFY(QFileInfo::exists(path("root/a.txt")));
    }
    auto *const parent = new QWidget;
    const ModalSteps steps({[&](QWidget *) { delete parent; }});
    QCOMPARE(RemoteFileDialogBase::getOpenFileName(parent, {}, path("root")), QString());
}

void TestRemoteFileDialogBase::proxyModelStandsBetweenModelAndViews()
{
    Dialog dialog(path("root"));
    dialog.showRows(2);
    const QPointer<QSortFilterProxyModel> proxy = new QSortFilterProxyModel;
    proxy->setRecursiveFilteringEnabled(true);
    proxy->setFilterRegularExpression("a.txt"_s);
    dialog.setProxyModel(proxy);
    QCOMPARE(proxy->parent(), &dialog);
    QCOMPARE(proxy->sourceModel(), dialog.fileSystemModel());
    QTRY_COMPARE(dialog.rows(), QStringList{"a.txt"_s});

    typeAndReturn(dialog.edit(), "sub"_s);
    QCOMPARE(dialog.shown(), path("root/sub"));
    dialog.setDirectory(path("root"));
    QCOMPARE(dialog.view()->selectionModel(),
             dialog.child<QTreeView>("treeView")->selectionModel());
    QSignalSpy current(&dialog, &RemoteFileDialogBase::currentChanged);
    dialog.setCurrent(0);
    QCOMPARE(current.takeFirst().constFirst().toString(), path("root/a.txt"));
    QCOMPARE(dialog.selectedFiles(), QStringList{path("root/a.txt")});

    dialog.setProxyModel(nullptr);
    QVERIFY(proxy && !dialog.proxyModel());
    QTRY_COMPARE(dialog.rows().size(), 2);
    dialog.setProxyModel(new QSortFilterProxyModel);
    delete dialog.proxyModel();
    QTRY_COMPARE(dialog.rows().size(), 2);
}

void TestRemoteFileDialogBase::completerMayBeReplaced()
{
    Dialog dialog(path("root"));
    dialog.showRows(2);
    dialog.edit()->setCompleter(new QCompleter(dialog.edit()));
    typeAndReturn(dialog.edit(), "sub/"_s);
    dialog.setProxyModel(new QSortFilterProxyModel);
    QTRY_VERIFY(!dialog.isListing());
    QCOMPARE(dialog.shown(), path("root/sub"));
}

void TestRemoteFileDialogBase::deleteKeyOfThePlacesLeavesFilesAlone()
{
    Dialog dialog(path("root"));
    dialog.showRows(2);
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    dialog.selectFile("a.txt"_s);
    const ModalSteps none({});
    auto *const places = dialog.child<QListView>("sidebar");
    places->setFocus();
    places->setCurrentIndex(places->model()->index(1, 0));
    QTest::keyClick(places, Qt::Key_Delete);
    QCOMPARE(dialog.sidebarUrls().size(), 1);
}

void TestRemoteFileDialogBase::readOnlyDialogChangesNoFile()
{
    Dialog dialog(path("root"));
    dialog.setReadOnly(true);
    dialog.showRows(2);
    dialog.setCurrent(1);
    const ModalSteps none({});
    for (const char *const action : {"qt_delete_action", "qt_rename_action"})
        QVERIFY(!dialog.child<QAction>(action)->isEnabled());
    for (const char *const slot : {"_q_deleteCurrent", "_q_renameCurrent", "_q_createDirectory"})
        QVERIFY(dialog.call(slot));
    QVERIFY(!dialog.view()->viewport()->findChild<QLineEdit *>());
    QCOMPARE(dialog.rows().size(), 2);
}

void TestRemoteFileDialogBase::staysOnTheRemoteSide()
{
    const FaultyFolder remote;
    QVERIFY(remote.make("tmp/deep/f.txt"_s));
    Dialog dialog("remote:/tmp/deep"_s);
    dialog.showRows(1);
    QCOMPARE(dialog.shown(), "remote:/tmp/deep"_s);
    dialog.edit()->setText("f.txt"_s);
    QCOMPARE(dialog.selectedFiles(), QStringList{"remote:/tmp/deep/f.txt"_s});
    QVERIFY(remote.make("tmp/deep/g.txt"_s));
    QTest::keyClick(dialog.view(), Qt::Key_F5);
    QTRY_COMPARE(dialog.rows().size(), 2);

    auto *const lookIn = dialog.child<QComboBox>("lookInCombo");
    lookIn->showPopup(); // fills it with what is typed next
    lookIn->hidePopup();
    const QSignalSpy entered(&dialog, &RemoteFileDialogBase::directoryEntered);
    QString complaint;
    const ModalSteps complaining({ModalSteps::with<QMessageBox>([&](QMessageBox *box) {
        complaint = box->text();
        box->close();
    })});
    const QString steps[][2] = {{"remote:/tmp"_s, "remote:/tmp"_s},
                                {"deep/.."_s, "remote:/tmp"_s},
                                {"deep/../../../.."_s, "remote:"_s},
                                {"/tmp/deep"_s, "remote:/tmp/deep"_s},
                                {"/home"_s, "remote:/tmp/deep"_s},
                                {"remote:tmp"_s, "remote:/tmp"_s},
                                {"/"_s, "remote:"_s}};
    for (const auto &[typed, shown] : steps) {
        typeAndReturn(lookIn->lineEdit(), typed);
        QCOMPARE(dialog.shown(), shown);
        QCOMPARE(lookIn->currentText(), shown);
        QVERIFY(dialog.isVisible());
    }
    QCOMPARE(entered.size(), 6);
    QTRY_COMPARE(complaining.shown(), 1);
    QVERIFY2(complaint.startsWith("remote:/home\nDirectory not found."_s), qPrintable(complaint));
    typeAndReturn(dialog.edit(), ".."_s);
    QVERIFY(dialog.call("_q_navigateToParent"));
    QCOMPARE(dialog.shown(), "."_s);
    QVERIFY(!dialog.child<QToolButton>("newFolderButton")->isEnabled());
}

void TestRemoteFileDialogBase::typingANameAsksNoOtherMachine()
{
    FaultyFolder remote;
    QVERIFY(remote.make("a/file.txt"_s) && remote.make("a/sub/"_s));
    Dialog dialog("remote:/a"_s);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.showRows(2);
    remote.forgetCalls();
    for (const QString &text : {"$none"_s, "\"file.txt\" \"su"_s, "file.txt"_s}) {
        dialog.edit()->selectAll();
        QTest::keyClicks(dialog.edit(), text);
    }
    QCOMPARE(remote.calls(true), 0);
    QCOMPARE(dialog.view()->selectionModel()->selectedRows().size(), 1);
    auto *const buttons = dialog.child<QDialogButtonBox>("buttonBox");
    QVERIFY(buttons->buttons().constFirst()->isEnabled());
}

void TestRemoteFileDialogBase::acceptsWhileTheListingIsPending()
{
    FaultyFolder remote;
    QVERIFY(remote.make("a/f.txt"_s) && remote.make("b/g.txt"_s));
    remote.endless = true;
    Dialog dialog("remote:/a"_s);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.show();
    QVERIFY(dialog.isListing());
    dialog.setDirectory("remote:/b"_s);
    const QSignalSpy selected(&dialog, &RemoteFileDialogBase::fileSelected);
    typeAndReturn(dialog.edit(), "remote:/a/f.txt"_s);
    QCOMPARE(selected.value(0).value(0).toString(), "remote:/a/f.txt"_s);
    remote.endless = false;
    QTRY_VERIFY(!dialog.isListing());
}

void TestRemoteFileDialogBase::saysThatADirectoryCannotBeRead()
{
    FaultyFolder remote;
    QVERIFY(remote.make("a/"_s) && remote.make("b/"_s));
    Dialog dialog("remote:/a"_s);
    dialog.showRows(0);
    QCOMPARE(dialog.view()->accessibleDescription(), QString());
    dialog.setDirectory("remote:/b"_s);
    remote.broken = true;
    QTRY_COMPARE(dialog.view()->accessibleDescription(), "This directory cannot be read."_s);
    dialog.grab();
}

void TestRemoteFileDialogBase::goesUpFromADirectoryThatIsGone()
{
    QVERIFY(QDir().mkpath(path("root/sub/x/y")));
    Dialog dialog(path("root/sub/x/y"));
    QVERIFY(QDir(path("root/sub/x")).removeRecursively());
    QSignalSpy entered(&dialog, &RemoteFileDialogBase::directoryEntered);
    QVERIFY(dialog.call("_q_navigateToParent"));
    QCOMPARE(entered.value(0).value(0).toString(), path("root/sub"));
}

void TestRemoteFileDialogBase::stepsOverADirectoryThatIsGone()
{
    QVERIFY(QDir().mkpath(path("root/sub/x")));
    Dialog dialog(path("root"));
    for (const char *const next : {"root/sub", "root/sub/x", "root/sub"})
        dialog.setDirectory(path(next));
    QVERIFY(QDir().rmdir(path("root/sub/x")));
    dialog.child<QToolButton>("backButton")->click();
    QCOMPARE(dialog.shown(), path("root"));
    dialog.child<QToolButton>("forwardButton")->click();
    QCOMPARE(dialog.shown(), path("root/sub"));
    QVERIFY(!dialog.child<QToolButton>("forwardButton")->isEnabled());
}

void TestRemoteFileDialogBase::deletesWhatIsLeftOfTheChosen()
{
    for (const char *const name : {"root/sub/a", "root/sub/b", "root/sub/c"})
        QVERIFY(QFile(path(name)).open(QIODevice::WriteOnly));
    Dialog dialog(path("root/sub"));
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.showRows(3);
    dialog.view()->selectAll();
    const ModalSteps::Step yes = ModalSteps::with<QMessageBox>([&](QMessageBox *box) {
        QFile::remove(path("root/sub/b"));
        QTest::keyClick(dialog.view(), Qt::Key_F5);
        QTRY_VERIFY(!dialog.rows().contains("b"_s));
        box->button(QMessageBox::Yes)->click();
    });
    const ModalSteps steps({yes, yes});
    QVERIFY(dialog.call("_q_deleteCurrent"));
    QCOMPARE(steps.shown(), 2);
    QVERIFY(QDir(path("root/sub")).isEmpty());
}

void TestRemoteFileDialogBase::tellsOfAFileThatIsGone()
{
    const FaultyFolder remote;
    QVERIFY(remote.make("f.txt"_s));
    Dialog dialog("remote:"_s);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.showRows(1);
    dialog.setCurrent(0);
    QVERIFY(QFile::remove(remote.local("f.txt"_s)));
    const ModalSteps steps({[](QWidget *box) { box->close(); }});
    dialog.accept();
    QCOMPARE(steps.shown(), 1);
    QVERIFY(dialog.isVisible());
}

void TestRemoteFileDialogBase::clickThatActivatesCanAddToTheChoice()
{
    Dialog dialog(path("root"));
    dialog.setStyleSheet("* { activate-on-singleclick: 1 }"_s);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.showRows(2);
    const QSignalSpy selected(&dialog, &RemoteFileDialogBase::filesSelected);
    const QAbstractItemModel *const model = dialog.view()->model();
    const QRect row = dialog.view()->visualRect(model->index(1, 0, dialog.view()->rootIndex()));
    QTest::mouseClick(dialog.view()->viewport(), Qt::LeftButton, Qt::ControlModifier, row.center());
    QCOMPARE(selected.size(), 0);
    QTest::mouseClick(dialog.view()->viewport(), Qt::LeftButton, {}, row.center());
    QCOMPARE(selected.size(), 1);
}

QTEST_MAIN(TestRemoteFileDialogBase)
#include "tst_remotefiledialogbase.moc"
