#include <backends/ssh/remotename.h>
#include <backends/ssh/sshfileengine.h>
#include <backends/ssh/sshfileinfogatherer.h>
#include <support/literal.h>
#include <support/modalsteps.h>
#include <support/sshserver.h>
#include <support/testcase.h>

#include <tul-util-gui/filedialog/filedialog.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QAction>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <sys/stat.h>

namespace
{

constexpr int longEnough = 20000;

/// A server, a connection to it, and all that a host installs for its files.
struct Remote {
    explicit Remote(SshServer::User user = SshServer::User::Same)
        : server(user)
        , connection(server.connect(server.settings()))
    {
        RemoteFileSystemModel::setRemoteFileInfoGathererHandler(&gatherers);
        if (connection)
            files->setClient(connection->client());
    }
    ~Remote() { RemoteFileSystemModel::setRemoteFileInfoGathererHandler(nullptr); }

    QString local(const QString &name) const { return server.home() + QLatin1Char('/') + name; }

    SshServer server;
    std::unique_ptr<SshConnection> connection;
    std::shared_ptr<SshFileSystem> files = std::make_shared<SshFileSystem>("remote:"_s);
    SshFileEngineHandler engines{files};
    SshFileInfoGathererHandler gatherers{files};
};

bool write(const QString &fileName, const QByteArray &bytes = "1")
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be opened");
}

QListView *viewOf(const QWidget &dialog)
{
    return dialog.findChild<QListView *>("listView"_s);
}

QLineEdit *editOf(const QWidget &dialog)
{
    return dialog.findChild<QLineEdit *>("fileNameEdit"_s);
}

QStringList namesIn(const QWidget &dialog)
{
    const QListView *const view = viewOf(dialog);
    QStringList names;
    for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
        names.append(view->model()->index(row, 0, view->rootIndex()).data().toString());
    names.sort();
    return names;
}

QModelIndex indexOf(const QWidget &dialog, const QString &name)
{
    const QListView *const view = viewOf(dialog);
    for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row) {
        const QModelIndex index = view->model()->index(row, 0, view->rootIndex());
        if (index.data().toString() == name)
            return index;
    }
    return {};
}

/// Does with an entry what the context menu offers.
void act(const QWidget &dialog, const QString &name, const char *action)
{
    viewOf(dialog)->setCurrentIndex(indexOf(dialog, name));
    dialog.findChild<QAction *>(QString::fromLatin1(action))->trigger();
}

/// Types into the editor of the view, and ends with Return.
void typeName(const QWidget &dialog, const QString &name)
{
    auto *const editor = viewOf(dialog)->viewport()->findChild<QLineEdit *>();
    QVERIFY(editor);
    editor->setText(name);
    QTest::keyClick(editor, Qt::Key_Return);
}

/// Puts in a name, as by pasting, and presses Open, Save or Choose; a question may follow.
ModalSteps::Step entering(const QString &name)
{
    return ModalSteps::with<RemoteFileDialog>([name](RemoteFileDialog *dialog) {
        editOf(*dialog)->setText(name);
        auto *const buttons = dialog->findChild<QDialogButtonBox *>("buttonBox"_s);
        QTimer::singleShot(0, buttons->buttons().constFirst(), &QAbstractButton::click);
    });
}

ModalSteps::Step pressing(QMessageBox::StandardButton button)
{
    return ModalSteps::with<QMessageBox>(
        [button](QMessageBox *box) { QTest::mouseClick(box->button(button), Qt::LeftButton); });
}

} // namespace

/// The file dialogs on a real server.
class TestSshDialogs : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void filesAreManaged();
    void requestsLeadToTheServersDisk();
    void closedDirectoriesAreShownEmpty();
    void aListingThatBreaksOffIsMadeAnew();

private:
    const QTemporaryDir m_settings;
};

void TestSshDialogs::initTestCase()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
    FileDialog::setAllFilesLocal(false);
}

void TestSshDialogs::filesAreManaged()
{
    const Remote remote;
    QVERIFY(remote.connection);
    QStringList names{"-rf"_s, "100%25"_s, "C:\\x"_s, "a:b"_s, "line\nfeed"_s, "with blank"_s};
    names.append(tul::remoteNameFromBytes("latin \xe4\xff"));
    for (const QString &name : qAsConst(names))
        QVERIFY(write("remote:"_s + remote.local(name)));
    names.sort();
    RemoteFileDialog dialog(nullptr, QString(), remote.server.home());
    dialog.setFileMode(QFileDialog::ExistingFiles);
    dialog.open();
    QTRY_COMPARE_WITH_TIMEOUT(namesIn(dialog), names, longEnough);

    act(dialog, "line\nfeed"_s, "qt_rename_action");
    typeName(dialog, "one line"_s);
    QTRY_VERIFY(QFileInfo::exists(remote.local("one line"_s)));
    QVERIFY(!QFileInfo::exists(remote.local("line\nfeed"_s)));
    {
        const ModalSteps steps({pressing(QMessageBox::Yes)});
        act(dialog, "-rf"_s, "qt_delete_action");
    }
    QVERIFY(!QFileInfo::exists(remote.local("-rf"_s)));
    dialog.findChild<QAction *>("qt_new_folder_action"_s)->trigger();
    QVERIFY(QFileInfo(remote.local("New Folder"_s)).isDir());
    typeName(dialog, "made"_s);
    QTRY_VERIFY(QFileInfo(remote.local("made"_s)).isDir());
    for (const QString &gone : {"line\nfeed"_s, "-rf"_s})
        names.removeOne(gone);
    names += QStringList{"one line"_s, "made"_s};
    names.sort();
    QTRY_COMPARE(namesIn(dialog), names);

    viewOf(dialog)->selectionModel()->clear();
    names.removeOne("made"_s);
    for (const QString &name : qAsConst(names))
        viewOf(dialog)->selectionModel()->select(
            indexOf(dialog, name), QItemSelectionModel::Select | QItemSelectionModel::Rows);
    QSignalSpy selected(&dialog, &RemoteFileDialog::filesSelected);
    dialog.accept();
    QCOMPARE(selected.size(), 1);
    const QStringList chosen = selected.first().first().toStringList();
    QCOMPARE(chosen.size(), names.size());
    for (const QString &file : chosen)
        QCOMPARE(contents(file), QByteArray("1"));
    dialog.hide();
    // The local file system does not find the name that is no UTF-8.
    QVERIFY(QDir("remote:"_s + remote.server.home()).removeRecursively());
}

void TestSshDialogs::requestsLeadToTheServersDisk()
{
    const Remote remote;
    QVERIFY(remote.connection);
    const QString home = remote.server.home();
    QVERIFY(write(remote.local("old.txt"_s)) && QDir(home).mkdir("sub"_s));
    const QString filter = "Text (*.txt)"_s;
    {
        const ModalSteps steps({entering("old.txt"_s)});
        QCOMPARE(FileDialog::getRemoteOpenFileName(nullptr, "Open Text"_s, home, filter),
                 remote.local("old.txt"_s));
    }
    {
        const ModalSteps steps({entering("old"_s), pressing(QMessageBox::No), entering("new"_s)});
        const QString saved
            = FileDialog::getRemoteSaveFileName(nullptr, "Save Text"_s, home, filter);
        QCOMPARE(saved, remote.local("new.txt"_s));
        QVERIFY(write("remote:"_s + saved, "bytes"));
        QCOMPARE(contents(saved), QByteArray("bytes"));
    }
    {
        const ModalSteps steps({entering("sub"_s)});
        QCOMPARE(FileDialog::getRemoteExistingDirectory(nullptr, "Choose Place"_s, home),
                 remote.local("sub"_s));
    }
}

void TestSshDialogs::closedDirectoriesAreShownEmpty()
{
    const Remote remote(SshServer::User::Unprivileged);
    QVERIFY(remote.connection);
    QVERIFY(QDir(remote.server.home()).mkdir("closed"_s) && write(remote.local("closed/file"_s)));
    const QByteArray closed = remote.local("closed"_s).toLocal8Bit();
    QCOMPARE(::chmod(closed.constData(), 0), 0);
    RemoteFileDialog dialog(nullptr, QString(), remote.server.home());
    dialog.open();
    QTRY_COMPARE_WITH_TIMEOUT(namesIn(dialog), QStringList{"closed"_s}, longEnough);
    auto *const model = dialog.findChild<RemoteFileSystemModel *>();
    QSignalSpy loaded(model, &RemoteFileSystemModel::directoryLoaded);
    editOf(dialog)->setText("closed"_s);
    QTest::keyClick(editOf(dialog), Qt::Key_Return);
    QCOMPARE(dialog.directory().path(), "remote:"_s + remote.local("closed"_s));
    QVERIFY(loaded.wait(longEnough));
    QVERIFY(namesIn(dialog).isEmpty());
    QCOMPARE(::chmod(closed.constData(), 0700), 0);
}

void TestSshDialogs::aListingThatBreaksOffIsMadeAnew()
{
    constexpr int count = 5000;
    Remote remote;
    QVERIFY(remote.connection);
    for (int index = 0; index < count; ++index) {
        const QByteArray name = remote.local(QString::number(index)).toLocal8Bit();
        QCOMPARE(::mknod(name.constData(), S_IFREG | 0644, 0), 0);
    }
    remote.connection = remote.server.connect(remote.server.settings(50));
    QVERIFY(remote.connection);
    remote.files->setClient(remote.connection->client());
    RemoteFileDialog dialog(nullptr, QString(), remote.server.home());
    dialog.open();
    QTRY_VERIFY_WITH_TIMEOUT(!namesIn(dialog).isEmpty(), longEnough);
    editOf(dialog)->setText("typed"_s);
    QSignalSpy lost(remote.connection.get(), &SshConnection::lost);
    remote.server.kill();
    QVERIFY(lost.wait(longEnough));
    const int shown = namesIn(dialog).size();
    QVERIFY(shown > 0 && shown < count);

    remote.server.restore();
    QSignalSpy opened(remote.connection.get(), &SshConnection::opened);
    remote.connection->open();
    QVERIFY(opened.wait(longEnough));
    remote.files->setClient(remote.connection->client());
    QTRY_COMPARE_WITH_TIMEOUT(namesIn(dialog).size(), count, longEnough);
    QCOMPARE(editOf(dialog)->text(), "typed"_s);
}

QTEST_MAIN(TestSshDialogs)
#include "tst_sshdialogs.moc"
