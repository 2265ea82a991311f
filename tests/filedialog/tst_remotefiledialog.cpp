#include <support/faultyfolder.h>
#include <support/modalsteps.h>
#include <support/testcase.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/filedialog/remoteproxymodel.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QComboBox>
#include <QDateTime>
#include <QFileSystemModel>
#include <QIdentityProxyModel>
#include <QLineEdit>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include <functional>
#include <memory>

namespace
{

using Location = RemoteFileDialog::FileSystemLocation;

QString q(const char *text)
{
    return QString::fromLatin1(text);
}

QStringList words(const QString &text)
{
    return text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// A dialog that lets a test see what is protected.
class Dialog : public RemoteFileDialog
{
public:
    explicit Dialog(Location location, const QString &directory = {})
        : RemoteFileDialog(nullptr, QString(), directory, QString(), location)
    {
    }

    using RemoteFileDialogBase::fileSystemModel;

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
    void initTestCase();
    void init();
    void cleanup();

    void pathsAreConvertedInRemoteDialogsOnly_data();
    void pathsAreConvertedInRemoteDialogsOnly();
    void dialogBeginsOnItsSide_data();
    void dialogBeginsOnItsSide();
    void switchingSidesDropsWhatIsOfTheOther();
    void placesFromElsewhereGetThePrefix();
    void textInTheLookInBoxLeadsToTheRemoteSide_data();
    void textInTheLookInBoxLeadsToTheRemoteSide();
    void typedNamesAreOfTheRemoteSide();
    void remoteDialogShowsRemoteRowsOnly();
    void directoriesComeFirstByNameAndSize_data();
    void directoriesComeFirstByNameAndSize();
    void foreignProxyModelsAreLeftAlone();
    void hookComesLastAndMayChangeSettings();
    void instanceEndsWithAnyDialog();
    void staticFunctionsReturnPathsWithoutPrefix_data();
    void staticFunctionsReturnPathsWithoutPrefix();
    void cancellingLeavesTheSelectedFilter();
    void parentMayGoWhileTheDialogIsUp();

private:
    QTemporaryDir m_settings;
    std::unique_ptr<FaultyFolder> m_far;
};

void TestRemoteFileDialog::initTestCase()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
}

void TestRemoteFileDialog::init()
{
    TestCase::init();
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

void TestRemoteFileDialog::pathsAreConvertedInRemoteDialogsOnly_data()
{
    QTest::addColumn<Location>("location");
    QTest::addColumn<QString>("munged"); // of "/a"
    QTest::addColumn<QString>("unmunged"); // of "remote:/a"

    QTest::newRow("local") << RemoteFileDialog::LocalLocation << q("/a") << q("remote:/a");
    QTest::newRow("remote") << RemoteFileDialog::RemoteLocation << q("remote:/a") << q("/a");
    QTest::newRow("any") << RemoteFileDialog::AnyLocation << q("/a") << q("remote:/a");
}

void TestRemoteFileDialog::pathsAreConvertedInRemoteDialogsOnly()
{
    QFETCH(Location, location);
    QFETCH(QString, munged);
    QFETCH(QString, unmunged);

    Dialog dialog(location);
    QCOMPARE(dialog.mungePath(q("/a")), munged);
    QCOMPARE(dialog.unmungePath(q("remote:/a")), unmunged);
    QCOMPARE(dialog.mungePath(QString()), QString());
    QCOMPARE(dialog.unmungePath(QString()), QString());
    if (location == RemoteFileDialog::RemoteLocation)
        announceWarning(q("Path is not remote: /100%s"));
    QCOMPARE(dialog.unmungePaths({q("/100%s"), q("remote:/a")}),
             QStringList({q("/100%s"), unmunged}));
    QVERIFY(dialog.isRemotePath(q("remote:")) && !dialog.isRemotePath(q("REMOTE:/a")));
    dialog.setFileMode(QFileDialog::ExistingFile);
    QVERIFY(dialog.selectedFile().isEmpty());
    RemoteFileDialog::setRemotePrefix(QString());
    QVERIFY(dialog.isRemotePath(QString()));
}

void TestRemoteFileDialog::dialogBeginsOnItsSide_data()
{
    QTest::addColumn<QString>("workingDirectory");
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("shown");

    QTest::newRow("at the root") << QString() << QString() << q("remote:");
    QTest::newRow("in the working directory")
        << q("remote:/home/user") << QString() << q("remote:/home/user");
    QTest::newRow("not in a local one") << q("/tmp") << QString() << q("remote:");
    QTest::newRow("where the caller says") << q("remote:/home") << q("/usr") << q("remote:/usr");
    QTest::newRow("not in a missing one") << q("remote:/home") << q("/no") << q("remote:/home");
}

void TestRemoteFileDialog::dialogBeginsOnItsSide()
{
    QFETCH(QString, workingDirectory);
    QFETCH(QString, argument);
    QFETCH(QString, shown);

    RemoteFileDialog::setDefaultWorkingDirectory(workingDirectory);
    QCOMPARE(Dialog(RemoteFileDialog::RemoteLocation, argument).shown(), shown);
    // What was visited last is of the other side.
    const QString local = workingDirectory == q("/tmp") ? workingDirectory : QDir::homePath();
    QCOMPARE(Dialog(RemoteFileDialog::LocalLocation).shown(), local);
    QCOMPARE(RemoteFileDialog(nullptr, Qt::WindowFlags()).location(),
             RemoteFileDialog::RemoteLocation);
}

void TestRemoteFileDialog::switchingSidesDropsWhatIsOfTheOther()
{
    RemoteFileDialog::setRemoteHomeDirectory(q("remote:/home/user"));
    RemoteFileDialog::setDefaultWorkingDirectory(q("remote:/usr"));
    Dialog dialog(RemoteFileDialog::LocalLocation);
    const QString drives; // is local
    dialog.setPlaces({drives, q("/tmp"), q("remote:/home")});
    dialog.setHistory({q("/tmp"), q("remote:/home"), QDir::homePath()});
    dialog.setLocation(RemoteFileDialog::RemoteLocation);
    QCOMPARE(dialog.shown(), q("remote:/usr"));
    QCOMPARE(dialog.places(), words(q("remote:/home remote:/usr remote:/home/user")));
    QCOMPARE(dialog.history(), words(q("remote:/home remote:/usr")));

    dialog.setLocation(RemoteFileDialog::RemoteLocation);
    QCOMPARE(dialog.places().size(), 3); // none twice
    dialog.setDirectory(q("remote:/home"));
    dialog.setPlaces({q("/tmp"), q("remote:/home")});
    dialog.setLocation(RemoteFileDialog::AnyLocation);
    QCOMPARE(dialog.shown(), q("remote:/home"));
    QCOMPARE(dialog.places().size(), 2);

    RemoteFileDialog::setDefaultWorkingDirectory(QDir::tempPath());
    dialog.setLocation(RemoteFileDialog::LocalLocation);
    QCOMPARE(dialog.shown(), QDir::tempPath());
    QCOMPARE(dialog.places(), QStringList{q("/tmp")});
    QCOMPARE(dialog.history().filter(q("remote:")), QStringList());
    RemoteFileDialog::setDefaultWorkingDirectory(q("remote:/usr"));
    dialog.setDirectory(q("remote:/home"));
    dialog.setLocation(RemoteFileDialog::LocalLocation);
    QCOMPARE(dialog.shown(), QDir::homePath());
}

void TestRemoteFileDialog::placesFromElsewhereGetThePrefix()
{
    RemoteFileDialog::setRemoteHomeDirectory(q("remote:/home"));
    RemoteFileDialog::setDefaultWorkingDirectory(q("remote:/home")); // the same place
    Dialog dialog(RemoteFileDialog::RemoteLocation);
    dialog.setPlaces(words(q("other:/usr zz:/name remote:/home/user")));
    dialog.setLocation(RemoteFileDialog::RemoteLocation);
    QCOMPARE(dialog.places(), words(q("remote:/usr remote:/name remote:/home/user remote:/home")));
}

void TestRemoteFileDialog::textInTheLookInBoxLeadsToTheRemoteSide_data()
{
    QTest::addColumn<Location>("location");
    QTest::addColumn<QString>("workingDirectory");
    QTest::addColumn<QString>("shown");

    const Location remote = RemoteFileDialog::RemoteLocation;
    QTest::newRow("/usr") << remote << q("remote:/home") << q("remote:/usr");
    QTest::newRow("user") << remote << q("remote:/home") << q("remote:/home/user");
    QTest::newRow("remote:user") << remote << q("remote:/home") << q("remote:/home/user");
    QTest::newRow("no such") << remote << q("remote:/home") << q("remote:/home");
    QTest::newRow("../..") << remote << q("remote:/home") << q("remote:");
    // By design: without a working directory this names one of this machine.
    QTest::newRow("tmp") << remote << QString() << q("/tmp");
    QTest::newRow("/usr ") << RemoteFileDialog::AnyLocation << q("remote:/home") << QString();
}

void TestRemoteFileDialog::textInTheLookInBoxLeadsToTheRemoteSide()
{
    QFETCH(Location, location);
    QFETCH(QString, workingDirectory);
    QFETCH(QString, shown);

    RemoteFileDialog::setDefaultWorkingDirectory(workingDirectory);
    Dialog dialog(location);
    const QString before = dialog.shown();
    QCoreApplication::processEvents();
    dialog.findChild<QComboBox *>(q("lookInCombo"))->setEditText(q(QTest::currentDataTag()));
    QCoreApplication::processEvents();
    // Typing itself goes nowhere: the check comes later, and only once.
    QTRY_COMPARE(dialog.shown(), shown.isNull() ? before : shown);
}

void TestRemoteFileDialog::typedNamesAreOfTheRemoteSide()
{
    RemoteFileDialog::setRemoteHomeDirectory(q("remote:/home/user"));
    Dialog dialog(RemoteFileDialog::RemoteLocation, q("/home"));
    auto *const edit = dialog.findChild<QLineEdit *>(q("fileNameEdit"));
    edit->setText(q("/etc/passwd"));
    QCOMPARE(dialog.typedFiles(), QStringList{q("remote:/etc/passwd")});
    edit->setText(q("a"));
    QCOMPARE(dialog.typedFiles(), QStringList{q("remote:/home/a")});
    bool expanded = false;
    QCOMPARE(dialog.tildeExpansion(q("~/src"), &expanded), q("remote:/home/user/src"));
    QVERIFY(expanded);
    qputenv("TUL_TEST_VARIABLE", "value");
    const QString variable = q("$TUL_TEST_VARIABLE");
    QCOMPARE(dialog.getEnvironmentVariable(variable), variable);

    dialog.setLocation(RemoteFileDialog::LocalLocation);
    QCOMPARE(dialog.tildeExpansion(q("~"), nullptr), QDir::homePath());
    QCOMPARE(dialog.getEnvironmentVariable(variable), q("value"));
    edit->setText(q("/etc/passwd"));
    QCOMPARE(dialog.typedFiles(), QStringList{q("/etc/passwd")});
}

void TestRemoteFileDialog::remoteDialogShowsRemoteRowsOnly()
{
    Dialog dialog(RemoteFileDialog::RemoteLocation, q("/home/user"));
    dialog.fileSystemModel()->index(QDir::tempPath());
    const QAbstractItemModel *const proxy = dialog.proxyModel();
    const auto topRows = [&] {
        QStringList rows;
        for (int row = 0; row < proxy->rowCount(); ++row)
            rows.append(proxy->index(row, 0).data(RemoteFileSystemModel::FileNameRole).toString());
        rows.sort();
        return rows;
    };
    QCOMPARE(topRows(), QStringList{q("remote:")});
    auto *const view = dialog.findChild<QTreeView *>(q("treeView"));
    QTRY_COMPARE(proxy->rowCount(view->rootIndex()), 2);
    dialog.setLocation(RemoteFileDialog::AnyLocation);
    QCOMPARE(topRows(), QStringList({q("/"), q("remote:")}));
    dialog.setLocation(RemoteFileDialog::LocalLocation);
    QCOMPARE(topRows(), QStringList({q("/"), q("remote:")}));
}

void TestRemoteFileDialog::directoriesComeFirstByNameAndSize_data()
{
    QTest::addColumn<QString>("ascending");
    QTest::addColumn<QString>("descending");

    QTest::newRow("0") << q("d a b") << q("b a d");
    QTest::newRow("1") << q("d b a") << q("a b d");
    QTest::newRow("3") << q("a d b") << q("b d a");
}

void TestRemoteFileDialog::directoriesComeFirstByNameAndSize()
{
    QFETCH(QString, ascending);
    QFETCH(QString, descending);

    QVERIFY(m_far->make(q("sort/a"), "long") && m_far->make(q("sort/b"), "b"));
    QVERIFY(m_far->make(q("sort/d/")));
    for (const char *const name : {"a", "b"}) {
        QFile file(m_far->local(q("sort/") + q(name)));
        QVERIFY(file.open(QIODevice::ReadWrite));
        QVERIFY(file.setFileTime(QDateTime::currentDateTime().addDays(*name == 'a' ? -9 : 9),
                                 QFileDevice::FileModificationTime));
    }

    RemoteFileSystemModel files;
    RemoteProxyModel proxy;
    proxy.setSourceModel(&files);
    const QPersistentModelIndex directory = files.setRootPath(q("remote:/sort"));
    QTRY_COMPARE(files.rowCount(directory), 3);
    const auto sorted = [&](Qt::SortOrder order) {
        proxy.sort(q(QTest::currentDataTag()).toInt(), order);
        QStringList names;
        for (int row = 0; row < 3; ++row)
            names.append(proxy.index(row, 0, proxy.mapFromSource(directory)).data().toString());
        return names;
    };
    QCOMPARE(sorted(Qt::AscendingOrder), words(ascending));
    QCOMPARE(sorted(Qt::DescendingOrder), words(descending));
}

void TestRemoteFileDialog::foreignProxyModelsAreLeftAlone()
{
    Dialog dialog(RemoteFileDialog::RemoteLocation);
    auto *const own = new RemoteProxyModel;
    own->setLocation(RemoteFileDialog::AnyLocation);
    dialog.setProxyModel(own);
    dialog.setLocation(RemoteFileDialog::LocalLocation);
    QCOMPARE(own->location(), RemoteFileDialog::LocalLocation); // not that of the first one
    dialog.setProxyModel(new QIdentityProxyModel);
    dialog.setLocation(RemoteFileDialog::RemoteLocation);
    dialog.setProxyModel(nullptr);
    dialog.setLocation(RemoteFileDialog::LocalLocation);

    QFileSystemModel local;
    local.setRootPath(QDir::tempPath());
    RemoteProxyModel plain;
    plain.setSourceModel(&local);
    plain.sort(1);
    QCOMPARE(plain.rowCount(), local.rowCount());
}

void TestRemoteFileDialog::hookComesLastAndMayChangeSettings()
{
    RemoteFileDialog::setHook([](RemoteFileDialog *dialog) {
        s_hooked = dialog;
        RemoteFileDialog::setRemoteHomeDirectory(dialog->proxyModel() ? q("remote:/home")
                                                                      : QString());
    });
    Dialog dialog(RemoteFileDialog::RemoteLocation);
    QCOMPARE(s_hooked, &dialog);
    QCOMPARE(RemoteFileDialog::instance(), &dialog);
    QVERIFY(dialog.places().contains(q("remote:/home")));
}

void TestRemoteFileDialog::instanceEndsWithAnyDialog()
{
    auto *const older = new Dialog(RemoteFileDialog::RemoteLocation);
    const Dialog newer(RemoteFileDialog::LocalLocation);
    QCOMPARE(RemoteFileDialog::instance(), &newer);
    QString munged;
    connect(older, &RemoteFileDialog::aboutToBeDestroyed, this, [&] {
        munged = older->mungePath(q("/a"));
        QVERIFY(!RemoteFileDialog::instance());
    });
    delete older;
    QCOMPARE(munged, q("remote:/a"));
    QVERIFY(!RemoteFileDialog::instance());
}

void TestRemoteFileDialog::staticFunctionsReturnPathsWithoutPrefix_data()
{
    QTest::addColumn<Ask>("ask");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("mode"); // file mode, accept mode
    QTest::addColumn<QString>("chosen");

    const QString dir = q("/home/user");
    const QString filter = q("Sources (*.c);;All (*)");
    QTest::newRow("open") << Ask([=](QString *chosen) {
        return QStringList{
            RemoteFileDialog::getOpenFileName(nullptr, QString(), dir, filter, chosen)};
    }) << q("a.c") << q("1 0")
                          << q("/home/user/a.c");
    QTest::newRow("open many") << Ask([=](QString *chosen) {
        return RemoteFileDialog::getOpenFileNames(nullptr, QString(), dir, filter, chosen);
    }) << q("\"a.c\" \"b.c\"") << q("3 0")
                               << q("/home/user/a.c /home/user/b.c");
    QTest::newRow("save") << Ask([=](QString *chosen) {
        return QStringList{
            RemoteFileDialog::getSaveFileName(nullptr, QString(), dir, filter, chosen)};
    }) << q("new.c") << q("0 1")
                          << q("/home/user/new.c");
    for (const bool only : {true, false}) {
        QTest::newRow(only ? "only directories" : "directory") << Ask([=](QString *) {
            return QStringList{RemoteFileDialog::getExistingDirectory(
                nullptr, QString(), dir, QFileDialog::Options(QFileDialog::ShowDirsOnly * only))};
        }) << q("/usr/lib") << (only ? q("4 0") : q("2 0")) << q("/usr/lib");
    }
}

void TestRemoteFileDialog::staticFunctionsReturnPathsWithoutPrefix()
{
    QFETCH(Ask, ask);
    QFETCH(QString, typed);
    QFETCH(QString, mode);
    QFETCH(QString, chosen);

    QString modes;
    const ModalSteps steps({ModalSteps::with<RemoteFileDialog>([&](RemoteFileDialog *dialog) {
        modes = q("%1 %2").arg(dialog->fileMode()).arg(dialog->acceptMode());
        QCOMPARE(dialog->directory().path(), q("remote:/home/user"));
        auto *const edit = dialog->findChild<QLineEdit *>(q("fileNameEdit"));
        edit->setText(typed);
        QTest::keyClick(edit, Qt::Key_Return);
    })});
    QString filter = q("All (*)");
    QCOMPARE(ask(&filter), words(chosen));
    QCOMPARE(modes, mode);
    QCOMPARE(filter, q("All (*)"));
}

void TestRemoteFileDialog::cancellingLeavesTheSelectedFilter()
{
    QString filter = q("none of them");
    const auto cancel = ModalSteps::with<RemoteFileDialog>([](auto *dialog) { dialog->reject(); });
    const ModalSteps steps({cancel, cancel});
    QVERIFY(RemoteFileDialog::getOpenFileName(nullptr, QString(), QString(), q("A (*.a)"), &filter)
                .isEmpty());
    QCOMPARE(filter, q("none of them"));
    QVERIFY(RemoteFileDialog::getOpenFileNames().isEmpty());
}

void TestRemoteFileDialog::parentMayGoWhileTheDialogIsUp()
{
    auto *const parent = new QWidget;
    const ModalSteps steps({[parent](QWidget *) { delete parent; }});
    QVERIFY(RemoteFileDialog::getOpenFileName(parent).isEmpty());
    QVERIFY(!RemoteFileDialog::instance());
}

QTEST_MAIN(TestRemoteFileDialog)
#include "tst_remotefiledialog.moc"
