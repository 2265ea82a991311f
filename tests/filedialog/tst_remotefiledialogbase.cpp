#include <tul-util-gui/filedialog/dialognavigation_p.h>
#include <tul-util-gui/filedialog/dialogstate_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <support/faultyfolder.h>
#include <support/modalsteps.h>
#include <support/testcase.h>

#include <QtTest>
#include <QtWidgets>

#include <functional>
#include <memory>

namespace
{

QString s(const char *text)
{
    return QString::fromUtf8(text);
}

template<class W> W *child(const QObject *parent, const char *name)
{
    return parent->findChild<W *>(QLatin1String(name));
}

QLineEdit *nameEdit(const RemoteFileDialogBase &dialog)
{
    return child<QLineEdit>(&dialog, "fileNameEdit");
}

void typeAndReturn(QWidget *target, const QString &text)
{
    target->setFocus();
    QTest::keyClick(target, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(target, text);
    QTest::keyClick(target, Qt::Key_Return);
}

QStringList rows(const RemoteFileDialogBase &dialog)
{
    const auto *const view = child<QListView>(&dialog, "listView");
    QStringList names;
    for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
        names.append(view->model()->index(row, 0, view->rootIndex()).data().toString());
    names.sort();
    return names;
}

ModalSteps::Step pressing(QMessageBox::StandardButton button)
{
    return ModalSteps::with<QMessageBox>(
        [button](QMessageBox *box) { box->button(button)->click(); });
}

/// With the constructor and the model for all to use.
class OpenDialog : public RemoteFileDialogBase
{
public:
    using RemoteFileDialogBase::fileSystemModel;
    using RemoteFileDialogBase::RemoteFileDialogBase;
    explicit OpenDialog(const RemoteFileDialogBaseArgs &args)
        : RemoteFileDialogBase(args)
    {
    }
};

/// Puts brackets around each text.
class Brackets : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char *context, const char *text, const char *, int) const override
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
    void headerShowsAndHidesColumns();
    void mnemonicsAreUnique();
    void followsTheLanguage();
    void argumentsLeaveTheNameSelected();
    void beginsWhereTheArgumentSays();
    void keepsItsLayoutForTheNextDialog();
    void refusedStateChangesNothing();
    void restoresFiveRecentPlaces();
    void widensPanesThatHaveNoWidth();
    void refusedHeaderKeepsTheRest();
    void openCallsTheMemberOnce();
    void mayBeDeletedInItsSlots_data();
    void mayBeDeletedInItsSlots();
    void mayGoWithItsParentWhileABoxIsOpen_data();
    void mayGoWithItsParentWhileABoxIsOpen();
    void proxyModelStandsBetweenModelAndViews();
    void deleteKeyOfThePlacesLeavesFilesAlone();
    void readOnlyDialogChangesNoFile();
    void staysOnTheRemoteSide();
    void typingANameAsksNoOtherMachine();
    void acceptsWhileTheListingIsPending();
    void saysThatADirectoryCannotBeRead();
    void goesUpFromADirectoryThatIsGone();

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
}

void TestRemoteFileDialogBase::isBuiltAsHostsKnowIt()
{
    const RemoteFileDialogBase dialog(nullptr, {}, path("root"));
    auto *const grid = qobject_cast<QGridLayout *>(dialog.layout());
    QVERIFY(grid);
    QCOMPARE(grid->objectName(), "gridLayout"_s);
    const struct {
        const char *name;
        QRect cell; // column, row, columns, rows
    } cells[] = {{"lookInLabel", {0, 0, 1, 1}},   {"splitter", {0, 1, 3, 1}},
                 {"fileNameLabel", {0, 2, 1, 1}}, {"fileNameEdit", {1, 2, 1, 1}},
                 {"buttonBox", {2, 2, 1, 2}},     {"fileTypeLabel", {0, 3, 1, 1}},
                 {"fileTypeCombo", {1, 3, 1, 1}}};
    for (const auto &[name, cell] : cells) {
        auto *const widget = child<QWidget>(&dialog, name);
        QVERIFY2(widget && widget->parent() == &dialog, name);
        int row = -1, column = -1, rowSpan = 0, columnSpan = 0;
        grid->getItemPosition(grid->indexOf(widget), &row, &column, &rowSpan, &columnSpan);
        QCOMPARE(QRect(column, row, columnSpan, rowSpan), cell);
    }
    QCOMPARE(dialog.findChild<QComboBox *>()->objectName(), "lookInCombo"_s);
    for (const char *const view : {"sidebar", "listView", "treeView"})
        QVERIFY(child<QAbstractItemView>(child<QSplitter>(&dialog, "splitter"), view));
    QCOMPARE(child<QStackedWidget>(&dialog, "stackedWidget")->currentIndex(), 0);
    QVERIFY(dialog.isSizeGripEnabled() && !dialog.isVisible());

    QStringList order;
    const QWidget *widget = child<QWidget>(&dialog, "lookInCombo");
    for (int i = 0; i < 200; ++i, widget = widget->nextInFocusChain()) {
        if (widget->focusPolicy() & Qt::TabFocus && !widget->objectName().startsWith("qt_"_s)
            && !widget->objectName().isEmpty() && !order.contains(widget->objectName()))
            order.append(widget->objectName());
    }
    QCOMPARE(order.join(QLatin1Char(' ')),
             "lookInCombo backButton forwardButton toParentButton newFolderButton "
               "listModeButton detailModeButton sidebar listView treeView fileNameEdit "
               "fileTypeCombo"_s);

    for (const auto *const button :
         dialog.findChildren<QToolButton *>(QRegularExpression("Button$"_s))) {
        QVERIFY(!button->icon().isNull() && !button->accessibleName().isEmpty());
        QCOMPARE(button->toolTip(), button->accessibleName());
    }
    QCOMPARE(child<QToolButton>(&dialog, "newFolderButton")->accessibleDescription(),
             "Create a New Folder"_s);
    QCOMPARE(child<QAction>(&dialog, "qt_goto_parent_action")->shortcut()[0], 0x4000001);
    QVERIFY(std::any_of(dialog.actions().cbegin(), dialog.actions().cend(),
                        [](const QAction *a) { return a->shortcut()[0] == 0x6000048; }));
    QCOMPARE(dialog.nameFilters(), QStringList{"All Files (*)"_s});
}

void TestRemoteFileDialogBase::headerShowsAndHidesColumns()
{
    const RemoteFileDialogBase dialog(nullptr, {}, path("root"));
    const auto *const header = child<QTreeView>(&dialog, "treeView")->header();
    QCOMPARE(header->sectionSize(1), header->fontMetrics().horizontalAdvance("128.88 GB"_s));
    QCOMPARE(header->actions().size(), 3);
    QAction *const size = header->actions().constFirst();
    QCOMPARE(size->text(), "Show Size"_s);
    QVERIFY(size->isChecked());
    size->trigger();
    QVERIFY(header->isSectionHidden(1));
}

void TestRemoteFileDialogBase::mnemonicsAreUnique()
{
    RemoteFileDialogBase dialog(nullptr, {}, path("root"));
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
    RemoteFileDialogBase dialog(nullptr, {}, path("root"));
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
    QCOMPARE(child<QAction>(&dialog, "qt_delete_action")->text(), "[&Delete]"_s);
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
    const OpenDialog dialog(args);
    QCOMPARE(nameEdit(dialog)->selectedText(), "a.txt"_s);
    QCOMPARE(dialog.windowTitle(), "Pick"_s);
    QCOMPARE(dialog.fileMode(), QFileDialog::ExistingFile);
    QVERIFY(dialog.isReadOnly());
    QCOMPARE(dialog.selectedNameFilter(), "Text (*.txt)"_s);
}

void TestRemoteFileDialogBase::beginsWhereTheArgumentSays()
{
    // The last one has been to root/sub.
    for (const char *const row : {"root|root|", "root/a.txt|root|a.txt", "root/new.c|root|new.c",
                                  "none/x.c|root/sub|x.c", "|root/sub|"}) {
        RemoteFileDialogBase(nullptr, {}, path("root")).setDirectory(path("root/sub"));
        const QStringList parts = s(row).split(QLatin1Char('|'));
        const QString argument
            = parts.at(0).isEmpty() ? QString() : m_folder->filePath(parts.at(0));
        const RemoteFileDialogBase dialog(nullptr, {}, argument);
        QCOMPARE(dialog.directory().path(), m_folder->filePath(parts.at(1)));
        QCOMPARE(nameEdit(dialog)->text(), parts.at(2));
        QVERIFY(!child<QToolButton>(&dialog, "backButton")->isEnabled());
    }
}

void TestRemoteFileDialogBase::keepsItsLayoutForTheNextDialog()
{
    const QList<QUrl> places{QUrl::fromLocalFile(path("root")), QUrl("file:"_s)};
    {
        RemoteFileDialogBase dialog(nullptr, {}, path("root"));
        dialog.setSidebarUrls(places);
        dialog.setHistory({"/one"_s});
        dialog.setViewMode(QFileDialog::Detail);
        child<QTreeView>(&dialog, "treeView")->header()->actions().at(1)->trigger();
        child<QTreeView>(&dialog, "treeView")->header()->resizeSection(0, 333);
    }
    const RemoteFileDialogBase dialog(nullptr, {}, path("root/sub"));
    QCOMPARE(dialog.sidebarUrls(), places);
    QCOMPARE(dialog.viewMode(), QFileDialog::Detail);
    QCOMPARE(dialog.history(), (QStringList{"/one"_s, path("root"), path("root/sub")}));
    const auto *const header = child<QTreeView>(&dialog, "treeView")->header();
    QCOMPARE(header->sectionSize(0), 333);
    QVERIFY(header->isSectionHidden(2) && !header->actions().at(1)->isChecked());
    QSettings settings(QSettings::UserScope, "Vantorq"_s);
    QVERIFY(settings.contains("RemoteFileDialog/state"_s));
}

void TestRemoteFileDialogBase::refusedStateChangesNothing()
{
    RemoteFileDialogBase dialog(nullptr, {}, path("root"));
    const QByteArray before = dialog.saveState();
    DialogState state = *DialogState::fromBytes(before);
    state.history = QStringList{"/x"_s};
    QByteArray bytes = state.toBytes();
    bytes[7] = 4;
    QVERIFY(!dialog.restoreState(bytes) && !dialog.restoreState({}));
    state.splitter = "no splitter";
    QVERIFY(!dialog.restoreState(state.toBytes()));
    QCOMPARE(dialog.saveState(), before);
}

void TestRemoteFileDialogBase::restoresFiveRecentPlaces()
{
    RemoteFileDialogBase dialog(nullptr, {}, path("root"));
    dialog.setHistory({"/1"_s, "/2"_s, "/3"_s, "/4"_s, "/5"_s});
    QVERIFY(dialog.restoreState(dialog.saveState()));
    QCOMPARE(dialog.history(), (QStringList{"/2"_s, "/3"_s, "/4"_s, "/5"_s, path("root")}));
}

void TestRemoteFileDialogBase::widensPanesThatHaveNoWidth()
{
    RemoteFileDialogBase dialog(nullptr, {}, path("root"));
    QSplitter collapsed;
    collapsed.addWidget(new QWidget);
    collapsed.addWidget(new QWidget);
    collapsed.setSizes({0, 0});
    DialogState state = *DialogState::fromBytes(dialog.saveState());
    state.splitter = collapsed.saveState();
    // Only where there is no room at all does the toolkit leave both panes without width.
    auto *const splitter = child<QSplitter>(&dialog, "splitter");
    splitter->resize(0, 0);
    QVERIFY(dialog.restoreState(state.toBytes()));
    dialog.show();
    const QList<int> sizes = splitter->sizes();
    QVERIFY2(sizes.at(0) > 0 && sizes.at(0) < sizes.at(1),
             qPrintable(QString::number(sizes.at(0))));
}

void TestRemoteFileDialogBase::refusedHeaderKeepsTheRest()
{
    RemoteFileDialogBase dialog(nullptr, {}, path("root"));
    DialogState state = *DialogState::fromBytes(dialog.saveState());
    state.header = "no header";
    state.history = QStringList{"/x"_s};
    state.viewMode = QFileDialog::Detail;
    QVERIFY(!dialog.restoreState(state.toBytes()));
    QCOMPARE(dialog.history().constFirst(), "/x"_s);
    QCOMPARE(dialog.viewMode(), QFileDialog::List);
}

void TestRemoteFileDialogBase::openCallsTheMemberOnce()
{
    RemoteFileDialogBase dialog(nullptr, {}, path("root"));
    dialog.setFileMode(QFileDialog::ExistingFile);
    QComboBox receiver;
    receiver.setEditable(true);
    dialog.open(&receiver, SLOT(setEditText(QString)));
    QVERIFY(dialog.isVisible() && dialog.windowModality() == Qt::WindowModal);
    dialog.setFileMode(QFileDialog::ExistingFiles); // too late to make a difference
    typeAndReturn(nameEdit(dialog), "a.txt"_s);
    QCOMPARE(receiver.currentText(), path("root/a.txt"));
    receiver.setEditText({});
    Q_EMIT dialog.fileSelected("again"_s);
    QCOMPARE(receiver.currentText(), QString());

    RemoteFileDialogBase forwarding(nullptr, {}, path("root"));
    const QSignalSpy forwarded(&forwarding, &RemoteFileDialogBase::filesSelected);
    dialog.open(&forwarding, SIGNAL(filesSelected(QStringList)));
    typeAndReturn(nameEdit(dialog), "a.txt"_s);
    QCOMPARE(forwarded.size(), 1);
}

void TestRemoteFileDialogBase::mayBeDeletedInItsSlots_data()
{
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<QByteArray>("how");
    for (const char *const signal :
         {SIGNAL(filesSelected(QStringList)), SIGNAL(fileSelected(QString)), SIGNAL(finished(int))})
        QTest::newRow(signal) << QByteArray(signal) << QByteArray("a.txt");
    QTest::newRow("parent") << QByteArray(SIGNAL(directoryEntered(QString)))
                            << QByteArray("Button");
    QTest::newRow("escape") << QByteArray(SIGNAL(finished(int))) << QByteArray("Escape");
}

void TestRemoteFileDialogBase::mayBeDeletedInItsSlots()
{
    QFETCH(const QByteArray, signal);
    QFETCH(const QByteArray, how);
    const QPointer<RemoteFileDialogBase> dialog
        = new RemoteFileDialogBase(nullptr, {}, path("root"));
    dialog->show();
    QTRY_COMPARE(rows(*dialog).size(), 2);
    auto *const view = child<QListView>(dialog, "listView");
    view->setCurrentIndex(view->model()->index(0, 0, view->rootIndex()));
    nameEdit(*dialog)->setText(QString::fromLatin1(how));

    // A dialog deletes itself within a call of its own; its children are in use further up.
    QObject context;
    QSignalMapper mapper;
    mapper.setMapping(dialog, 1);
    connect(dialog, signal.constData(), &mapper, SLOT(map()));
    connect(&mapper, &QSignalMapper::mappedInt, &context, [&] { delete dialog.data(); });
    if (how.endsWith("Button"))
        QVERIFY(QMetaObject::invokeMethod(dialog, "_q_navigateToParent"));
    else if (how == "Escape")
        dialog->reject();
    else
        dialog->accept();
    QVERIFY(!dialog);
}

void TestRemoteFileDialogBase::mayGoWithItsParentWhileABoxIsOpen_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::newRow("missing file") << QByteArray("accept");
    QTest::newRow("deleting") << QByteArray("_q_deleteCurrent");
    QTest::newRow("the dialog itself") << QByteArray();
}

void TestRemoteFileDialogBase::mayGoWithItsParentWhileABoxIsOpen()
{
    QFETCH(const QByteArray, slot);
    auto *const parent = new QWidget;
    const ModalSteps steps({[&](QWidget *) { delete parent; }});
    if (slot.isEmpty()) {
        QCOMPARE(RemoteFileDialogBase::getOpenFileName(parent, {}, path("root")), QString());
        return;
    }
    const QPointer<RemoteFileDialogBase> dialog
        = new RemoteFileDialogBase(parent, {}, path("root"));
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->show();
    QTRY_COMPARE(rows(*dialog).size(), 2);
    auto *const view = child<QListView>(dialog, "listView");
    if (slot == "accept")
        nameEdit(*dialog)->setText("missing"_s);
    else
        view->selectionModel()->select(view->model()->index(1, 0, view->rootIndex()),
                                       QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QVERIFY(QMetaObject::invokeMethod(dialog, slot.constData()));
    QVERIFY(!dialog);
    QVERIFY(QFileInfo::exists(path("root/a.txt")));
}

void TestRemoteFileDialogBase::proxyModelStandsBetweenModelAndViews()
{
    OpenDialog dialog(nullptr, {}, path("root"));
    dialog.show();
    QTRY_COMPARE(rows(dialog).size(), 2);
    auto *const proxy = new QSortFilterProxyModel;
    proxy->setRecursiveFilteringEnabled(true);
    proxy->setFilterRegularExpression("a.txt"_s);
    dialog.setProxyModel(proxy);
    QCOMPARE(proxy->parent(), &dialog);
    QCOMPARE(proxy->sourceModel(), dialog.fileSystemModel());
    QTRY_COMPARE(rows(dialog), QStringList{"a.txt"_s});

    typeAndReturn(nameEdit(dialog), "sub"_s);
    QCOMPARE(dialog.directory().path(), path("root/sub"));
    dialog.setDirectory(path("root"));
    auto *const view = child<QListView>(&dialog, "listView");
    QCOMPARE(view->selectionModel(), child<QTreeView>(&dialog, "treeView")->selectionModel());
    QSignalSpy current(&dialog, &RemoteFileDialogBase::currentChanged);
    view->setCurrentIndex(view->model()->index(0, 0, view->rootIndex()));
    QCOMPARE(current.takeFirst().constFirst().toString(), path("root/a.txt"));
    QCOMPARE(dialog.selectedFiles(), QStringList{path("root/a.txt")});

    const QPointer<QSortFilterProxyModel> former(proxy);
    dialog.setProxyModel(nullptr);
    QVERIFY(former && !dialog.proxyModel());
    QTRY_COMPARE(rows(dialog).size(), 2);
    dialog.setProxyModel(new QSortFilterProxyModel);
    delete dialog.proxyModel();
    QTRY_COMPARE(rows(dialog).size(), 2);
}

void TestRemoteFileDialogBase::deleteKeyOfThePlacesLeavesFilesAlone()
{
    RemoteFileDialogBase dialog(nullptr, {}, path("root"));
    dialog.show();
    QVERIFY(QTest::qWaitForWindowActive(&dialog));
    QTRY_COMPARE(rows(dialog).size(), 2);
    dialog.selectFile("a.txt"_s);
    const ModalSteps steps({pressing(QMessageBox::No)});
    auto *const places = child<QListView>(&dialog, "sidebar");
    places->setFocus();
    places->setCurrentIndex(places->model()->index(1, 0));
    QTest::keyClick(places, Qt::Key_Delete);
    QCOMPARE(steps.shown(), 0);
    QCOMPARE(dialog.sidebarUrls().size(), 1);
}

void TestRemoteFileDialogBase::readOnlyDialogChangesNoFile()
{
    RemoteFileDialogBase dialog(nullptr, {}, path("root"));
    dialog.setReadOnly(true);
    dialog.show();
    QTRY_COMPARE(rows(dialog).size(), 2);
    auto *const view = child<QListView>(&dialog, "listView");
    view->setCurrentIndex(view->model()->index(1, 0, view->rootIndex()));
    for (const char *const slot : {"_q_deleteCurrent", "_q_renameCurrent", "_q_createDirectory"})
        QVERIFY(QMetaObject::invokeMethod(&dialog, slot));
    QVERIFY(!view->viewport()->findChild<QLineEdit *>());
    QCOMPARE(rows(dialog).size(), 2);
}

void TestRemoteFileDialogBase::staysOnTheRemoteSide()
{
    FaultyFolder remote;
    QVERIFY(remote.make("tmp/deep/f.txt"_s));
    RemoteFileDialogBase dialog(nullptr, {}, "remote:/tmp/deep"_s);
    dialog.show();
    QCOMPARE(dialog.directory().path(), "remote:/tmp/deep"_s);
    QTRY_COMPARE(rows(dialog), QStringList{"f.txt"_s});
    nameEdit(dialog)->setText("f.txt"_s);
    QCOMPARE(dialog.selectedFiles(), QStringList{"remote:/tmp/deep/f.txt"_s});
    QVERIFY(remote.make("tmp/deep/g.txt"_s));
    QTest::keyClick(child<QListView>(&dialog, "listView"), Qt::Key_F5);
    QTRY_COMPARE(rows(dialog).size(), 2);

    auto *const lookIn = child<QComboBox>(&dialog, "lookInCombo");
    const struct {
        const char *typed;
        const char *directory;
    } steps[] = {{"..", "remote:/tmp"},
                 {"deep/../../../..", "remote:"},
                 {"/tmp/deep", "remote:/tmp/deep"},
                 {"/home", "remote:/tmp/deep"},
                 {"/", "remote:"}};
    for (const auto &[typed, directory] : steps) {
        typeAndReturn(lookIn, QLatin1String(typed));
        QCOMPARE(dialog.directory().path(), QLatin1String(directory));
        QCOMPARE(lookIn->currentText(), QLatin1String(directory));
        QVERIFY(dialog.isVisible());
    }
    typeAndReturn(nameEdit(dialog), ".."_s);
    QVERIFY(QMetaObject::invokeMethod(&dialog, "_q_navigateToParent"));
    QCOMPARE(dialog.directory().path(), "."_s);
    QVERIFY(!child<QToolButton>(&dialog, "newFolderButton")->isEnabled());
}

void TestRemoteFileDialogBase::typingANameAsksNoOtherMachine()
{
    FaultyFolder remote;
    QVERIFY(remote.make("a/file.txt"_s) && remote.make("a/sub/"_s));
    RemoteFileDialogBase dialog(nullptr, {}, "remote:/a"_s);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.show();
    QTRY_COMPARE(rows(dialog).size(), 2);
    const auto *const view = child<QListView>(&dialog, "listView");
    QTRY_COMPARE(view->viewport()->cursor().shape(), Qt::ArrowCursor);
    remote.forgetCalls();
    QTest::keyClicks(nameEdit(dialog), "file.txt"_s);
    QCOMPARE(remote.calls(true), 0);
    QCOMPARE(view->selectionModel()->selectedRows().size(), 1);
    QVERIFY(child<QDialogButtonBox>(&dialog, "buttonBox")->buttons().constFirst()->isEnabled());
}

void TestRemoteFileDialogBase::acceptsWhileTheListingIsPending()
{
    FaultyFolder remote;
    QVERIFY(remote.make("a/f.txt"_s) && remote.make("b/g.txt"_s));
    remote.endless = true;
    RemoteFileDialogBase dialog(nullptr, {}, "remote:/a"_s);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.show();
    const auto *const view = child<QListView>(&dialog, "listView");
    QCOMPARE(view->viewport()->cursor().shape(), Qt::BusyCursor);
    dialog.setDirectory("remote:/b"_s);
    QSignalSpy selected(&dialog, &RemoteFileDialogBase::fileSelected);
    typeAndReturn(nameEdit(dialog), "remote:/a/f.txt"_s);
    QCOMPARE(selected.size(), 1);
    QCOMPARE(selected.constFirst().constFirst().toString(), "remote:/a/f.txt"_s);
    remote.endless = false;
    QTRY_COMPARE(view->viewport()->cursor().shape(), Qt::ArrowCursor);
}

void TestRemoteFileDialogBase::saysThatADirectoryCannotBeRead()
{
    FaultyFolder remote;
    QVERIFY(remote.make("a/"_s));
    RemoteFileDialogBase dialog(nullptr, {}, "remote:/a"_s);
    dialog.show();
    const auto *const view = child<QListView>(&dialog, "listView");
    QTRY_COMPARE(view->viewport()->cursor().shape(), Qt::ArrowCursor);
    QCOMPARE(view->accessibleDescription(), QString());
    QVERIFY(remote.make("b/"_s));
    dialog.setDirectory("remote:/b"_s);
    remote.broken = true;
    QTRY_COMPARE(view->accessibleDescription(), "This directory cannot be read."_s);
    dialog.grab();
}

void TestRemoteFileDialogBase::goesUpFromADirectoryThatIsGone()
{
    QVERIFY(QDir().mkpath(path("root/sub/x/y")));
    RemoteFileDialogBase dialog(nullptr, {}, path("root/sub/x/y"));
    QVERIFY(QDir(path("root/sub/x")).removeRecursively());
    QSignalSpy entered(&dialog, &RemoteFileDialogBase::directoryEntered);
    QVERIFY(QMetaObject::invokeMethod(&dialog, "_q_navigateToParent"));
    QCOMPARE(entered.size(), 1);
    QCOMPARE(entered.constFirst().constFirst().toString(), path("root/sub"));
}

QTEST_MAIN(TestRemoteFileDialogBase)
#include "tst_remotefiledialogbase.moc"
