#include <support/faultyfolder.h>
#include <support/modalsteps.h>
#include <support/testcase.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/filedialog/remoteproxymodel.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QComboBox>
#include <QDateTime>
#include <QIdentityProxyModel>
#include <QLineEdit>
#include <QSettings>
#include <QStringListModel>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <functional>
#include <memory>

namespace
{

QString q(const char *text)
{
    return QString::fromLatin1(text);
}

QStringList words(const char *text)
{
    return q(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

class Dialog : public RemoteFileDialog
{
public:
    explicit Dialog(FileSystemLocation location = RemoteLocation, const QString &directory = {})
        : RemoteFileDialog(nullptr, QString(), directory, QString(), location)
    {
    }

    using RemoteFileDialogBase::fileSystemModel;

    QLineEdit *edit() const { return findChild<QLineEdit *>(q("fileNameEdit")); }
    QString shown() const { return directory().path(); }
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

using Ask = std::function<QStringList(QString *filter)>;

} // namespace

Q_DECLARE_METATYPE(Ask)

class TestRemoteFileDialog : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void pathsAreConvertedInRemoteDialogsOnly();
    void dialogBeginsOnItsSide();
    void switchingSidesDropsWhatIsOfTheOther();
    void textInTheLookInBoxLeadsToTheRemoteSide_data();
    void textInTheLookInBoxLeadsToTheRemoteSide();
    void typedNamesAreOfTheRemoteSide();
    void remoteDialogShowsRemoteRowsOnly();
    void directoriesComeFirstByNameAndSize();
    void newRowsOfALargeListingFindTheirPlaces();
    void foreignProxyModelsAreLeftAlone();
    void hookComesLastAndTheInstanceEndsWithAnyDialog();
    void staticFunctionsReturnPathsWithoutPrefix_data();
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
    for (const char *const path : {"home/user/a.c", "home/user/b.c", "usr/lib/", "name/"})
        QVERIFY(m_far->make(q(path)));
    // What is visited last outlives the dialogs.
    QCOMPARE(Dialog(RemoteFileDialog::AnyLocation, QDir::tempPath()).shown(), QDir::tempPath());
}

void TestRemoteFileDialog::cleanup()
{
    RemoteFileDialog::setRemotePrefix(q("remote:"));
    RemoteFileDialog::setRemoteHomeDirectory(QString());
    RemoteFileDialog::setDefaultWorkingDirectory(QString());
    RemoteFileDialog::setHook(nullptr);
    m_far.reset();
    TestCase::cleanup();
}

void TestRemoteFileDialog::pathsAreConvertedInRemoteDialogsOnly()
{
    for (const auto location : {RemoteFileDialog::LocalLocation, RemoteFileDialog::RemoteLocation,
                                RemoteFileDialog::AnyLocation}) {
        const bool remote = location == RemoteFileDialog::RemoteLocation;
        Dialog dialog(location);
        QCOMPARE(dialog.mungePath(q("/a")), remote ? q("remote:/a") : q("/a"));
        if (remote)
            announceWarning(q("Path is not remote: /100%s"));
        QCOMPARE(dialog.unmungePaths({q("/100%s"), q("remote:/a"), QString()}),
                 QStringList({q("/100%s"), remote ? q("/a") : q("remote:/a"), QString()}));
        QVERIFY(dialog.isRemotePath(q("remote:")) && !dialog.isRemotePath(q("REMOTE:/a")));
        dialog.setFileMode(QFileDialog::ExistingFile);
        QVERIFY(dialog.selectedFile().isEmpty());
    }
}

void TestRemoteFileDialog::dialogBeginsOnItsSide()
{
    const QString local = QDir::tempPath();
    QCOMPARE(Dialog(RemoteFileDialog::LocalLocation).shown(), local);
    RemoteFileDialog::setDefaultWorkingDirectory(local); // of the other side
    QCOMPARE(Dialog().shown(), q("remote:"));
    QCOMPARE(Dialog(RemoteFileDialog::LocalLocation).shown(), local); // that of its side
    RemoteFileDialog::setDefaultWorkingDirectory(q("remote:/home"));
    QCOMPARE(Dialog(RemoteFileDialog::RemoteLocation, q("/usr")).shown(), q("remote:/usr"));
    QCOMPARE(Dialog(RemoteFileDialog::LocalLocation).shown(), QDir::homePath());
    QCOMPARE(Dialog(RemoteFileDialog::RemoteLocation, q("/no")).shown(), q("remote:/home"));
    const RemoteFileDialog byFlags(nullptr, Qt::WindowFlags());
    QCOMPARE(byFlags.location(), RemoteFileDialog::RemoteLocation);
}

void TestRemoteFileDialog::switchingSidesDropsWhatIsOfTheOther()
{
    RemoteFileDialog::setRemoteHomeDirectory(q("remote:/home/user"));
    RemoteFileDialog::setDefaultWorkingDirectory(q("remote:/usr"));
    Dialog dialog(RemoteFileDialog::LocalLocation);
    const QString drives; // is local
    dialog.setPlaces({drives, q("/tmp"), q("remote:/home"), q("other:/name")});
    dialog.setHistory(words("/tmp remote:/home /usr"));
    dialog.setLocation(RemoteFileDialog::RemoteLocation);
    QCOMPARE(dialog.shown(), q("remote:/usr"));
    const QStringList places = words("remote:/home remote:/name remote:/usr remote:/home/user");
    QCOMPARE(dialog.places(), places);
    QCOMPARE(dialog.history(), words("remote:/home remote:/usr"));
    dialog.setLocation(RemoteFileDialog::RemoteLocation);
    QCOMPARE(dialog.places(), places); // none twice
    RemoteFileDialog::setDefaultWorkingDirectory(q("remote:/home/user"));
    dialog.setPlaces({});
    dialog.setLocation(RemoteFileDialog::RemoteLocation);
    QCOMPARE(dialog.places(), words("remote:/home/user")); // working directory and home in one

    dialog.setPlaces(words("/tmp remote:/home"));
    dialog.setLocation(RemoteFileDialog::AnyLocation);
    QCOMPARE(dialog.shown(), q("remote:/usr"));
    QCOMPARE(dialog.places().size(), 2);
    dialog.setLocation(RemoteFileDialog::LocalLocation);
    QCOMPARE(dialog.shown(), QDir::homePath());
    QCOMPARE(dialog.places(), words("/tmp"));
    QCOMPARE(dialog.history().filter(q("remote:")), QStringList());
}

void TestRemoteFileDialog::textInTheLookInBoxLeadsToTheRemoteSide_data()
{
    QTest::addColumn<QString>("workingDirectory");
    QTest::addColumn<QString>("shown");

    QTest::newRow("/usr") << q("remote:/home") << q("remote:/usr");
    QTest::newRow("user") << q("remote:/home") << q("remote:/home/user");
    QTest::newRow("remote:user") << q("remote:/home") << q("remote:/home/user");
    QTest::newRow("no such") << q("remote:/home") << q("remote:/home");
    QTest::newRow("../..") << q("remote:/home") << q("remote:");
    QTest::newRow("tmp") << QString() << q("/tmp"); // by design, for want of a directory
}

void TestRemoteFileDialog::textInTheLookInBoxLeadsToTheRemoteSide()
{
    QFETCH(QString, workingDirectory);
    QFETCH(QString, shown);

    RemoteFileDialog::setDefaultWorkingDirectory(workingDirectory);
    for (const auto location : {RemoteFileDialog::AnyLocation, RemoteFileDialog::RemoteLocation}) {
        Dialog dialog(location);
        QCoreApplication::processEvents();
        const QString before = dialog.shown();
        dialog.findChild<QComboBox *>(q("lookInCombo"))->setEditText(q(QTest::currentDataTag()));
        QCOMPARE(dialog.shown(), before); // the check is queued
        QCoreApplication::processEvents();
        QCOMPARE(dialog.shown(), location == RemoteFileDialog::AnyLocation ? before : shown);
    }
}

void TestRemoteFileDialog::typedNamesAreOfTheRemoteSide()
{
    RemoteFileDialog::setRemoteHomeDirectory(q("remote:/home/user"));
    Dialog dialog(RemoteFileDialog::RemoteLocation, q("/home"));
    dialog.edit()->setText(q("/etc/passwd"));
    QCOMPARE(dialog.typedFiles(), words("remote:/etc/passwd"));
    dialog.edit()->setText(q("a"));
    QCOMPARE(dialog.typedFiles(), words("remote:/home/a"));
    QCOMPARE(dialog.tildeExpansion(q("~/src")), q("remote:/home/user/src"));
    qputenv("TUL_TEST_VARIABLE", "value");
    const QString variable = q("$TUL_TEST_VARIABLE");
    QCOMPARE(dialog.getEnvironmentVariable(variable), variable);

    dialog.setLocation(RemoteFileDialog::LocalLocation);
    QCOMPARE(dialog.tildeExpansion(q("~")), QDir::homePath());
    QCOMPARE(dialog.getEnvironmentVariable(variable), q("value"));
    dialog.edit()->setText(q("/etc/passwd"));
    QCOMPARE(dialog.typedFiles(), words("/etc/passwd"));
}

void TestRemoteFileDialog::remoteDialogShowsRemoteRowsOnly()
{
    Dialog dialog(RemoteFileDialog::RemoteLocation, q("/home/user"));
    dialog.fileSystemModel()->index(QDir::tempPath());
    QCOMPARE(dialog.proxyModel()->rowCount(), 1);
    const auto *const view = dialog.findChild<QTreeView *>(q("treeView"));
    QTRY_COMPARE(dialog.proxyModel()->rowCount(view->rootIndex()), 2);
    dialog.setLocation(RemoteFileDialog::AnyLocation);
    QCOMPARE(dialog.proxyModel()->rowCount(), 2);
    dialog.setLocation(RemoteFileDialog::LocalLocation);
    QCOMPARE(dialog.proxyModel()->rowCount(), 2);
}

void TestRemoteFileDialog::directoriesComeFirstByNameAndSize()
{
    QVERIFY(m_far->make(q("sort/a"), "long") && m_far->make(q("sort/b"), "b"));
    QVERIFY(m_far->make(q("sort/d/")));
    for (const char name : {'a', 'b'}) {
        QFile file(m_far->local(q("sort/") + QLatin1Char(name)));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(name == 'a' ? -9 : 9),
                                 QFileDevice::FileModificationTime));
    }
    RemoteFileSystemModel files;
    RemoteProxyModel proxy;
    proxy.setSourceModel(&files);
    const QPersistentModelIndex directory = files.setRootPath(q("remote:/sort"));
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
    QStringList names;
    for (int i = 300; i < 600; ++i) {
        names.append(QString::number(i));
        QVERIFY(m_far->make(q("large/") + names.last()));
    }
    RemoteFileSystemModel files;
    RemoteProxyModel proxy;
    proxy.sort(0, Qt::DescendingOrder);
    proxy.setSourceModel(&files);
    const QPersistentModelIndex directory = files.setRootPath(q("remote:/large"));
    const auto shown = [&] {
        QStringList result;
        const QModelIndex parent = proxy.mapFromSource(directory);
        for (int row = proxy.rowCount(parent) - 1; row >= 0; --row)
            result.append(proxy.index(row, 0, parent).data().toString());
        return result;
    };
    QTRY_COMPARE(shown(), names);
    QTRY_VERIFY(proxy.dynamicSortFilter());
    names.prepend(q("1"));
    QVERIFY(m_far->make(q("large/1")));
    files.refresh(directory);
    QTRY_COMPARE(shown(), names);
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
    QCOMPARE(own->index(0, 0).data().toString(), q("a"));
}

void TestRemoteFileDialog::hookComesLastAndTheInstanceEndsWithAnyDialog()
{
    RemoteFileDialog::setHook([](RemoteFileDialog *dialog) {
        s_hooked = dialog;
        if (dialog->proxyModel() && RemoteFileDialog::instance() == dialog)
            RemoteFileDialog::setRemoteHomeDirectory(q("remote:/home"));
    });
    auto *const older = new Dialog;
    QCOMPARE(s_hooked, older);
    QVERIFY(older->places().contains(q("remote:/home")));
    const Dialog newer;
    QCOMPARE(RemoteFileDialog::instance(), &newer);
    QString munged;
    connect(older, &RemoteFileDialog::aboutToBeDestroyed, this,
            [&] { munged = older->mungePath(q("/a")); });
    delete older;
    QCOMPARE(munged, q("remote:/a"));
    QVERIFY(!RemoteFileDialog::instance());
}

void TestRemoteFileDialog::staticFunctionsReturnPathsWithoutPrefix_data()
{
    QTest::addColumn<Ask>("ask");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("modes"); // file mode, accept mode
    QTest::addColumn<QStringList>("chosen");

    const QString dir = q("/home/user");
    const QString all = q("Sources (*.c);;All (*)");
    const Ask open = [=](QString *filter) {
        return QStringList{RemoteFileDialog::getOpenFileName(nullptr, {}, dir, all, filter)};
    };
    const Ask openMany = [=](QString *filter) {
        return RemoteFileDialog::getOpenFileNames(nullptr, {}, dir, all, filter);
    };
    const Ask save = [=](QString *filter) {
        return QStringList{RemoteFileDialog::getSaveFileName(nullptr, {}, dir, all, filter)};
    };
    const Ask onlyDirectories = [=](QString * /*filter*/) {
        return QStringList{RemoteFileDialog::getExistingDirectory(nullptr, {}, dir)};
    };
    const Ask directory = [=](QString * /*filter*/) {
        return QStringList{RemoteFileDialog::getExistingDirectory(nullptr, {}, dir, {})};
    };
    QTest::newRow("open") << open << q("a.c") << q("1 0") << words("/home/user/a.c");
    QTest::newRow("open many") << openMany << q("\"a.c\" \"b.c\"") << q("3 0")
                               << words("/home/user/a.c /home/user/b.c");
    QTest::newRow("save") << save << q("new.c") << q("0 1") << words("/home/user/new.c");
    QTest::newRow("only dirs") << onlyDirectories << q("/usr/lib") << q("4 0") << words("/usr/lib");
    QTest::newRow("directory") << directory << q("/usr/lib") << q("2 0") << words("/usr/lib");
}

void TestRemoteFileDialog::staticFunctionsReturnPathsWithoutPrefix()
{
    QFETCH(Ask, ask);
    QFETCH(QString, typed);

    QString modes;
    const ModalSteps steps({ModalSteps::with<RemoteFileDialog>([&](RemoteFileDialog *dialog) {
        modes = q("%1 %2").arg(dialog->fileMode()).arg(dialog->acceptMode());
        QCOMPARE(dialog->directory().path(), q("remote:/home/user"));
        auto *const edit = dialog->findChild<QLineEdit *>(q("fileNameEdit"));
        edit->setText(typed);
        QTest::keyClick(edit, Qt::Key_Return);
    })});
    QString filter = q("All (*)");
    QTEST(ask(&filter), "chosen");
    QTEST(modes, "modes");
    QCOMPARE(filter, q("All (*)"));
}

void TestRemoteFileDialog::cancelledOrOrphanedDialogsReturnNothing()
{
    auto *const parent = new QWidget;
    const ModalSteps steps({ModalSteps::with<QDialog>([](QDialog *dialog) { dialog->reject(); }),
                            [parent](QWidget *) { delete parent; }});
    QString filter = q("none of them");
    QCOMPARE(RemoteFileDialog::getOpenFileName(nullptr, {}, {}, q("A (*.a)"), &filter), QString());
    QCOMPARE(filter, q("none of them"));
    QCOMPARE(RemoteFileDialog::getOpenFileNames(parent), QStringList());
}

QTEST_MAIN(TestRemoteFileDialog)
#include "tst_remotefiledialog.moc"
