#include <support/faultyfolder.h>
#include <support/literal.h>
#include <support/modalsteps.h>
#include <support/testcase.h>
#include <tul-util-gui/filedialog/acceptdecision_p.h>
#include <tul-util-gui/filedialog/dialognavigation_p.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/filedialog/remoteproxymodel.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QComboBox>
#include <QDateTime>
#include <QIdentityProxyModel>
#include <QLineEdit>
#include <QSettings>
#include <QStandardItemModel>
#include <QStringListModel>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QTreeView>

#include <functional>
#include <memory>

namespace
{

QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

class Dialog : public RemoteFileDialog
{
public:
    explicit Dialog(FileSystemLocation location = RemoteLocation, const QString &directory = {})
        : RemoteFileDialog(nullptr, QString(), directory, QString(), location)
    {
    }

    using RemoteFileDialogBase::fileSystemModel;

    QLineEdit *edit() const { return findChild<QLineEdit *>("fileNameEdit"_s); }
    QComboBox *lookIn() const { return findChild<QComboBox *>("lookInCombo"_s); }
    QString shown() const { return directory().path(); }
    bool canGoBack() const { return findChild<QToolButton *>("backButton"_s)->isEnabled(); }
    QStringList places() const
    {
        QStringList paths;
        for (const QUrl &url : sidebarUrls())
            paths.append(url.toLocalFile());
        return paths;
    }
    void setPlaces(const QStringList &paths)
    {
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls.append(QUrl::fromLocalFile(path));
        setSidebarUrls(urls);
    }
};

RemoteFileDialog *s_hooked = nullptr;

} // namespace

class TestRemoteFileDialog : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void pathsAreConvertedInRemoteDialogsOnly();
    void dialogBeginsOnItsSide();
    void dialogAsksForItsOwnDirectoryOnly();
    void switchingSidesDropsWhatIsOfTheOther();
    void textInTheLookInBoxLeadsToTheRemoteSide();
    void typedNamesAreOfTheRemoteSide();
    void remoteDialogShowsRemoteRowsOnly();
    void directoriesComeFirstByNameAndSize();
    void newRowsOfALargeListingFindTheirPlaces();
    void foreignProxyModelsAreLeftAlone();
    void hookComesLastAndTheInstanceEndsWithAnyDialog();
    void staticFunctionsReturnPathsWithoutPrefix();
    void cancelledOrOrphanedDialogsReturnNothing();

private:
    QTemporaryDir m_settings;
    std::unique_ptr<FaultyFolder> m_far;
};

void TestRemoteFileDialog::init()
{
    TestCase::init();
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
    m_far = std::make_unique<FaultyFolder>();
    for (const QString &path : words("home/user/a.c home/user/b.c usr/lib/ name/"))
        QVERIFY(m_far->make(path));
    // What is visited last outlives the dialogs.
    QCOMPARE(Dialog(RemoteFileDialog::AnyLocation, QDir::tempPath()).shown(), QDir::tempPath());
}

void TestRemoteFileDialog::cleanup()
{
    RemoteFileDialog::setRemotePrefix("remote:"_s);
    RemoteFileDialog::setRemoteHomeDirectory(QString());
    RemoteFileDialog::setDefaultWorkingDirectory(QString());
    RemoteFileDialog::setHook(nullptr);
    m_far.reset();
    TestCase::cleanup();
}

void TestRemoteFileDialog::pathsAreConvertedInRemoteDialogsOnly()
{
    const QString rows[][3] = {{"/a"_s, "remote:/a"_s, "/a"_s},
                               {"src"_s, "remote:src"_s, "src"_s},
                               {"remote:/a"_s, "remote:/a"_s, "/a"_s},
                               {"remote:"_s, "remote:"_s, {}},
                               {"REMOTE:/100%s"_s, "remote:REMOTE:/100%s"_s, "REMOTE:/100%s"_s},
                               {}};
    for (const auto location : {RemoteFileDialog::LocalLocation, RemoteFileDialog::RemoteLocation,
                                RemoteFileDialog::AnyLocation}) {
        const bool remote = location == RemoteFileDialog::RemoteLocation;
        Dialog dialog(location);
        for (const auto &[path, munged, unmunged] : rows) {
            QCOMPARE(dialog.mungePath(path), remote ? munged : path);
            if (remote && !path.isEmpty() && path == unmunged)
                announceWarning("Path is not remote: "_s + path);
            QCOMPARE(dialog.unmungePaths({path}), QStringList{remote ? unmunged : path});
            QCOMPARE(dialog.isRemotePath(path), path.startsWith("remote:"_s));
        }
        dialog.setFileMode(QFileDialog::ExistingFile);
        QVERIFY(dialog.selectedFile().isEmpty());
    }
}

void TestRemoteFileDialog::dialogBeginsOnItsSide()
{
    const QString local = QDir::tempPath();
    QCOMPARE(Dialog(RemoteFileDialog::LocalLocation).shown(), local);
    RemoteFileDialog::setDefaultWorkingDirectory(local); // of the other side
    QCOMPARE(Dialog().shown(), "remote:"_s);
    QCOMPARE(Dialog(RemoteFileDialog::LocalLocation).shown(), local); // that of its side
    RemoteFileDialog::setDefaultWorkingDirectory("remote:/gone"_s);
    QCOMPARE(Dialog().shown(), "remote:"_s);
    QCOMPARE(Dialog(RemoteFileDialog::LocalLocation).shown(), QDir::homePath());
    m_far->broken = true;
    QCOMPARE(Dialog().shown(), "."_s); // the level of the drives
    m_far->broken = false;
    RemoteFileDialog::setDefaultWorkingDirectory("remote:/home"_s);
    for (const char *const row : {"/usr remote:/usr", "/no remote:/home"}) {
        DialogNavigation::lastVisitedDirectory() = local;
        const Dialog dialog(RemoteFileDialog::RemoteLocation, words(row).first());
        QCOMPARE(dialog.shown(), words(row).last());
        QVERIFY(!dialog.canGoBack());
    }
    const RemoteFileDialog byFlags(nullptr, Qt::WindowFlags());
    QCOMPARE(byFlags.location(), RemoteFileDialog::RemoteLocation);
}

void TestRemoteFileDialog::dialogAsksForItsOwnDirectoryOnly()
{
    QVector<int> calls;
    for (const char *const last : {"remote:/usr", "remote:/home/user"}) {
        DialogNavigation::lastVisitedDirectory() = QLatin1String(last);
        m_far->forgetCalls();
        const Dialog dialog(RemoteFileDialog::RemoteLocation, "/usr"_s);
        calls.append(m_far->calls(true));
    }
    QCOMPARE(calls.last(), calls.first());
}

void TestRemoteFileDialog::switchingSidesDropsWhatIsOfTheOther()
{
    RemoteFileDialog::setRemoteHomeDirectory("remote:/home/user"_s);
    RemoteFileDialog::setDefaultWorkingDirectory("remote:/usr"_s);
    Dialog dialog(RemoteFileDialog::LocalLocation);
    const QString drives; // is local
    dialog.setPlaces({drives, "/tmp"_s, "remote:/home"_s, "other:/name"_s});
    dialog.setHistory(words("/tmp remote:/home /usr"));
    dialog.setLocation(RemoteFileDialog::RemoteLocation);
    QCOMPARE(dialog.shown(), "remote:/usr"_s);
    const QStringList places = words("remote:/home remote:/name remote:/usr remote:/home/user");
    QCOMPARE(dialog.places(), places);
    QCOMPARE(dialog.history(), words("remote:/home remote:/usr"));
    dialog.setLocation(RemoteFileDialog::RemoteLocation);
    QCOMPARE(dialog.places(), places); // none twice
    RemoteFileDialog::setDefaultWorkingDirectory("remote:/home/user"_s);
    dialog.setPlaces({});
    dialog.setLocation(RemoteFileDialog::RemoteLocation);
    QCOMPARE(dialog.places(), words("remote:/home/user")); // working directory and home in one

    dialog.setPlaces(words("/tmp remote:/home"));
    dialog.setLocation(RemoteFileDialog::AnyLocation);
    QCOMPARE(dialog.shown(), "remote:/usr"_s);
    QCOMPARE(dialog.places().size(), 2);
    dialog.setDirectory(QDir::homePath());
    dialog.setDirectory("remote:/usr"_s);
    dialog.setLocation(RemoteFileDialog::LocalLocation);
    QCOMPARE(dialog.shown(), QDir::homePath());
    QCOMPARE(dialog.places(), words("/tmp"));
    QCOMPARE(dialog.history().filter("remote:"_s), QStringList());
    QVERIFY(!dialog.canGoBack());
}

void TestRemoteFileDialog::textInTheLookInBoxLeadsToTheRemoteSide()
{
    const QString rows[][3] = {{"/usr/lib"_s, "remote:/home"_s, "remote:/usr/lib"_s},
                               {"user"_s, "remote:/home"_s, "remote:/home/user"_s},
                               {"remote:user"_s, "remote:/home"_s, "remote:/home/user"_s},
                               {"lib"_s, "remote:/home"_s, "remote:/usr"_s},
                               {"../.."_s, "remote:/home"_s, "remote:"_s},
                               // By design, for want of a working directory.
                               {"tmp"_s, {}, "/tmp"_s}};
    for (const auto &[text, workingDirectory, shown] : rows) {
        RemoteFileDialog::setDefaultWorkingDirectory(workingDirectory);
        for (const auto location :
             {RemoteFileDialog::AnyLocation, RemoteFileDialog::RemoteLocation}) {
            Dialog dialog(location);
            dialog.setDirectory("remote:/usr"_s);
            QCoreApplication::processEvents();
            dialog.lookIn()->setEditText(text);
            QCOMPARE(dialog.shown(), "remote:/usr"_s); // the check is queued
            QCoreApplication::processEvents();
            const bool follows = location == RemoteFileDialog::RemoteLocation;
            QCOMPARE(dialog.shown(), follows ? shown : "remote:/usr"_s);
        }
        for (const Qt::Key end : {Qt::Key_Return, Qt::Key_Tab}) {
            RemoteFileDialog::setDefaultWorkingDirectory(QString());
            Dialog dialog(RemoteFileDialog::RemoteLocation, "/usr"_s);
            RemoteFileDialog::setDefaultWorkingDirectory(workingDirectory);
            dialog.show();
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            dialog.lookIn()->setFocus();
            dialog.lookIn()->lineEdit()->selectAll();
            for (const QChar letter : text) {
                QTest::keyClick(dialog.lookIn(), letter.toLatin1());
                QCoreApplication::processEvents();
            }
            QCOMPARE(dialog.lookIn()->currentText(), text); // it is the user's until he is done
            const ModalSteps notFound({[](QWidget *box) { box->close(); }});
            QTest::keyClick(dialog.lookIn(), end);
            QCoreApplication::processEvents();
            QCOMPARE(notFound.shown(), end == Qt::Key_Return && text == "lib"_s ? 1 : 0);
            QTest::keyClick(dialog.lookIn(), Qt::Key_Return); // where nothing was typed
            QCOMPARE(dialog.shown(), shown);
            QCOMPARE(dialog.lookIn()->currentText(), shown);
        }
    }
    // What was typed goes with the directory that is left on purpose.
    Dialog left(RemoteFileDialog::RemoteLocation, "/home/user"_s);
    left.show();
    QVERIFY(QTest::qWaitForWindowActive(&left));
    left.lookIn()->setFocus();
    for (const char *const button : {"toParentButton", "backButton"}) {
        QTest::keyClick(left.lookIn(), Qt::Key_Z);
        left.findChild<QToolButton *>(QLatin1String(button))->click();
        QCOMPARE(left.lookIn()->currentText(), left.shown());
    }
    // The text of a directory that was set without the prefix leads there, too.
    Dialog dialog(RemoteFileDialog::RemoteLocation);
    dialog.setDirectory("/usr"_s);
    QTRY_COMPARE(dialog.shown(), "remote:/usr"_s);
}

void TestRemoteFileDialog::typedNamesAreOfTheRemoteSide()
{
    Dialog dialog(RemoteFileDialog::RemoteLocation, "/home"_s);
    QVERIFY(QMetaObject::invokeMethod(&dialog, "_q_goHome"));
    QCOMPARE(dialog.shown(), "remote:/home"_s); // where else
    bool expanded = false;
    QCOMPARE(dialog.tildeExpansion("~"_s, &expanded), QString());
    QVERIFY(expanded);
    QCOMPARE(dialog.tildeExpansion("~x"_s, &expanded), "~x"_s);
    QVERIFY(!expanded);
    RemoteFileDialog::setRemoteHomeDirectory("remote:/home/user"_s);
    qputenv("TUL_TEST_VARIABLE", "value");
    const QString variable = "$TUL_TEST_VARIABLE"_s;
    const QString rows[][3]
        = {{"/etc/passwd"_s, "remote:/etc/passwd"_s, "/etc/passwd"_s},
           {"a"_s, "remote:/home/a"_s, QDir::homePath() + "/a"_s},
           {"~/src"_s, "remote:/home/user/src"_s, QDir::homePath() + "/src"_s},
           {variable, "remote:/home/"_s + variable, QDir::homePath() + "/value"_s}};
    for (const auto &[typed, remote, local] : rows) {
        dialog.edit()->setText(typed);
        dialog.setLocation(RemoteFileDialog::RemoteLocation);
        dialog.setDirectory("remote:/home"_s);
        QCOMPARE(dialog.typedFiles(), QStringList{remote});
        dialog.setLocation(RemoteFileDialog::LocalLocation);
        QCOMPARE(dialog.typedFiles(), QStringList{local});
    }
}

void TestRemoteFileDialog::remoteDialogShowsRemoteRowsOnly()
{
    Dialog dialog(RemoteFileDialog::RemoteLocation, "/home/user"_s);
    dialog.fileSystemModel()->index(QDir::tempPath());
    QCOMPARE(dialog.proxyModel()->rowCount(), 1);
    const auto *const view = dialog.findChild<QTreeView *>("treeView"_s);
    QTRY_COMPARE(dialog.proxyModel()->rowCount(view->rootIndex()), 2);
    dialog.setLocation(RemoteFileDialog::AnyLocation);
    QCOMPARE(dialog.proxyModel()->rowCount(), 2);
    dialog.setLocation(RemoteFileDialog::LocalLocation);
    QCOMPARE(dialog.proxyModel()->rowCount(), 2);
}

void TestRemoteFileDialog::directoriesComeFirstByNameAndSize()
{
    QVERIFY(m_far->make("sort/a"_s, "long") && m_far->make("sort/b"_s, "b"));
    QVERIFY(m_far->make("sort/d/"_s));
    for (const char name : {'a', 'b'}) {
        QFile file(m_far->local("sort/"_s + QLatin1Char(name)));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(name == 'a' ? -9 : 9),
                                 QFileDevice::FileModificationTime));
    }
    RemoteFileSystemModel files;
    RemoteProxyModel proxy;
    proxy.setSourceModel(&files);
    const QPersistentModelIndex directory = files.setRootPath("remote:/sort"_s);
    QTRY_COMPARE(files.rowCount(directory), 3);
    const QVector<QPair<int, const char *>> rows{{0, "d a b"}, {1, "d b a"}, {3, "a d b"}};
    for (const auto &[column, names] : rows) {
        for (const bool ascending : {true, false}) {
            proxy.sort(column, ascending ? Qt::AscendingOrder : Qt::DescendingOrder);
            for (int i = 0; i < 3; ++i)
                QCOMPARE(proxy.index(i, 0, proxy.mapFromSource(directory)).data().toString(),
                         words(names).at(ascending ? i : 2 - i));
        }
    }
}

void TestRemoteFileDialog::newRowsOfALargeListingFindTheirPlaces()
{
    QStandardItemModel files;
    RemoteProxyModel proxy;
    proxy.setSourceModel(&files);
    proxy.setFilterFixedString("file"_s);
    proxy.sort(0);
    QList<QStandardItem *> rows;
    QStringList names;
    for (int i = 0; i < 200; ++i) {
        names.append(QStringLiteral("file%1").arg(i, 3, 10, QLatin1Char('0')));
        rows.prepend(new QStandardItem(names.last()));
    }
    files.invisibleRootItem()->appendRows(rows);
    QVERIFY(!proxy.dynamicSortFilter()); // or each would be looked for alone
    QCOMPARE(proxy.rowCount(), 200);
    rows.last()->setText("other"_s);
    names.removeFirst();
    QTRY_VERIFY(proxy.dynamicSortFilter());
    for (int row = 0; row < names.size(); ++row)
        QCOMPARE(proxy.index(row, 0).data().toString(), names.at(row));
    QCOMPARE(proxy.rowCount(), names.size());
}

void TestRemoteFileDialog::foreignProxyModelsAreLeftAlone()
{
    Dialog dialog;
    auto *const own = new RemoteProxyModel;
    dialog.setProxyModel(own);
    dialog.setLocation(RemoteFileDialog::LocalLocation);
    QCOMPARE(own->location(), RemoteFileDialog::LocalLocation); // not that of the first one
    dialog.setProxyModel(new QIdentityProxyModel);
    dialog.setLocation(RemoteFileDialog::RemoteLocation);
    dialog.setProxyModel(nullptr);
    dialog.setLocation(RemoteFileDialog::LocalLocation);

    QStringListModel names(words("b a"));
    own->setSourceModel(&names);
    own->sort(0);
    QCOMPARE(own->index(0, 0).data().toString(), "a"_s);
}

void TestRemoteFileDialog::hookComesLastAndTheInstanceEndsWithAnyDialog()
{
    RemoteFileDialog::setHook([](RemoteFileDialog *dialog) {
        s_hooked = dialog;
        if (dialog->proxyModel() && RemoteFileDialog::instance() == dialog)
            RemoteFileDialog::setRemoteHomeDirectory("remote:/home"_s);
    });
    auto *const older = new Dialog;
    QCOMPARE(s_hooked, older);
    QVERIFY(older->places().contains("remote:/home"_s));
    const Dialog newer;
    QCOMPARE(RemoteFileDialog::instance(), &newer);
    QString munged;
    connect(older, &RemoteFileDialog::aboutToBeDestroyed, this,
            [&] { munged = older->mungePath("/a"_s); });
    delete older;
    QCOMPARE(munged, "remote:/a"_s);
    QVERIFY(!RemoteFileDialog::instance());
}

void TestRemoteFileDialog::staticFunctionsReturnPathsWithoutPrefix()
{
    const QString dir = "/home/user"_s;
    const QString all = "Sources (*.c);;All (*)"_s;
    QString filter = "All (*)"_s;
    const struct {
        std::function<QStringList()> ask;
        const char *typed;
        QFileDialog::FileMode mode;
        const char *chosen;
    } rows[] = {
        {[&] { return QStringList{RemoteFileDialog::getOpenFileName({}, {}, dir, all, &filter)}; },
         "a.c", QFileDialog::ExistingFile, "/home/user/a.c"},
        {[&] { return RemoteFileDialog::getOpenFileNames({}, {}, dir, all, &filter); },
         "\"a.c\" \"b.c\"", QFileDialog::ExistingFiles, "/home/user/a.c /home/user/b.c"},
        {[&] { return QStringList{RemoteFileDialog::getSaveFileName({}, {}, dir, all, &filter)}; },
         "new.c", QFileDialog::AnyFile, "/home/user/new.c"},
        {[&] { return QStringList{RemoteFileDialog::getExistingDirectory({}, {}, dir)}; },
         "/usr/lib", tul::directoryOnly, "/usr/lib"},
        {[&] { return QStringList{RemoteFileDialog::getExistingDirectory({}, {}, dir, {})}; },
         "/usr/lib", QFileDialog::Directory, "/usr/lib"}};
    for (const auto &row : rows) {
        const ModalSteps steps({ModalSteps::with<RemoteFileDialog>([&](RemoteFileDialog *dialog) {
            QCOMPARE(dialog->fileMode(), row.mode);
            const bool saves = row.mode == QFileDialog::AnyFile;
            QCOMPARE(dialog->acceptMode() == QFileDialog::AcceptSave, saves);
            QCOMPARE(dialog->directory().path(), "remote:/home/user"_s);
            auto *const edit = dialog->findChild<QLineEdit *>("fileNameEdit"_s);
            edit->setText(QLatin1String(row.typed));
            QTest::keyClick(edit, Qt::Key_Return);
        })});
        QCOMPARE(row.ask(), words(row.chosen));
        QCOMPARE(filter, "All (*)"_s);
    }
}

void TestRemoteFileDialog::cancelledOrOrphanedDialogsReturnNothing()
{
    auto *const parent = new QWidget;
    const ModalSteps steps({ModalSteps::with<QDialog>([](QDialog *dialog) { dialog->reject(); }),
                            [parent](QWidget *) { delete parent; }});
    QString filter = "none of them"_s;
    QCOMPARE(RemoteFileDialog::getOpenFileName(nullptr, {}, {}, "A (*.a)"_s, &filter), QString());
    QCOMPARE(filter, "none of them"_s);
    QCOMPARE(RemoteFileDialog::getOpenFileNames(parent), QStringList());
}

QTEST_MAIN(TestRemoteFileDialog)
#include "tst_remotefiledialog.moc"
