#include <support/sshserver.h>
#include <support/testcase.h>
#include <workbench/remoteactions.h>
#include <workbench/remoteconnection.h>

#include <tul-util-gui/filedialog/remotefiledialog.h>
#include <tul-util-gui/terminal/terminalwidget.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QListView>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace
{

constexpr int longEnough = 20000;

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The message box that is shown; null for none.
QMessageBox *shownBox()
{
    for (QWidget *const widget : QApplication::topLevelWidgets()) {
        auto *const box = qobject_cast<QMessageBox *>(widget);
        if (box && box->isVisible())
            return box;
    }
    return nullptr;
}

void press(QMessageBox *box, const QString &text)
{
    for (QAbstractButton *const button : box->buttons()) {
        if (button->text().remove(QLatin1Char('&')) == text)
            button->click();
    }
}

} // namespace

class TestRemoteActions : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void anUnknownMachineIsConnectedToOnlyWhenThePersonSaysSo();
    void chosenFilesAreFetchedAndCommandsRun();
    void aLostConnectionIsOfferedAnewAndDialogsGoOn();

private:
    void connectTo(SshServer *server);

    QTemporaryDir m_settings;
    std::unique_ptr<QMainWindow> m_window;
    RemoteActions *m_actions = nullptr;
};

void TestRemoteActions::initTestCase()
{
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_settings.path());
}

void TestRemoteActions::cleanup()
{
    m_window.reset();
    TestCase::cleanup();
}

void TestRemoteActions::connectTo(SshServer *server)
{
    QCOMPARE(server->fault(), QString());
    m_window = std::make_unique<QMainWindow>();
    m_window->show();
    m_actions = new RemoteActions(new QMenu(m_window.get()), m_window.get());
    m_actions->setFilter(QStringLiteral("All (*)"));
    QSignalSpy opened(m_actions, &RemoteActions::opened);
    m_actions->connectTo(server->target(), server->settings());
    QTRY_VERIFY_WITH_TIMEOUT(!opened.isEmpty() || shownBox(), longEnough);
}

void TestRemoteActions::anUnknownMachineIsConnectedToOnlyWhenThePersonSaysSo()
{
    SshServer server;
    QVERIFY(QFile::remove(server.clientDirectory() + QStringLiteral("/known_hosts")));
    QString answer = QStringLiteral("Cancel");
    QTimer presser;
    connect(&presser, &QTimer::timeout, this, [&] {
        QMessageBox *const box = shownBox();
        if (box && box->windowTitle() == QLatin1String("Unknown Host Key"))
            press(box, answer);
    });
    presser.start(20);
    connectTo(&server);
    QTRY_VERIFY(shownBox() && shownBox()->windowTitle() == QLatin1String("No Connection"));
    answer = QStringLiteral("Connect and Remember");
    QSignalSpy opened(m_actions, &RemoteActions::opened);
    press(shownBox(), QStringLiteral("Try Again"));
    QVERIFY(opened.wait(longEnough));
    QVERIFY(!contents(server.clientDirectory() + QStringLiteral("/known_hosts")).isEmpty());
}

void TestRemoteActions::chosenFilesAreFetchedAndCommandsRun()
{
    SshServer server;
    const QByteArray bytes(3000000, 'x');
    QFile file(server.home() + QStringLiteral("/array.h5"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    connectTo(&server);
    QSignalSpy fetched(m_actions, &RemoteActions::fetched);
    QSignalSpy failed(m_actions, &RemoteActions::failed);
    const QString name = QStringLiteral("remote:%1/array.h5").arg(server.home());
    m_actions->fetch(name);
    QVERIFY(fetched.wait(longEnough));
    const QString local = fetched.first().first().toString();
    QCOMPARE(QFileInfo(local).fileName(), QStringLiteral("array.h5"));
    QVERIFY(contents(local) == bytes);

    m_actions->fetch(name + QStringLiteral(".not"));
    QVERIFY(failed.wait(longEnough));
    QVERIFY(failed.first().first().toString().contains(QLatin1String("No such file")));

    const QPointer<QWidget> terminal(m_actions->run(QStringLiteral("echo $((6 * 7)); exit 3")));
    const auto shows = [&](const char *text) {
        const auto *const widget = terminal->findChild<TerminalWidget *>();
        return widget && widget->toPlainText().contains(QLatin1String(text));
    };
    QTRY_VERIFY_WITH_TIMEOUT(shows("42") && shows("Exit status 3."), longEnough);
    terminal->close();

    m_actions->fetch(name);
    auto *const progress = m_window->findChild<QProgressDialog *>();
    QVERIFY(progress);
    progress->cancel();
    m_actions->fetch(name); // the one given up says nothing
    QVERIFY(fetched.wait(longEnough));
    QCOMPARE(fetched.size(), 2);
    QCOMPARE(failed.size(), 1);
}

void TestRemoteActions::aLostConnectionIsOfferedAnewAndDialogsGoOn()
{
    SshServer server;
    QVERIFY(QDir(server.home()).mkdir(QStringLiteral("inside")));
    connectTo(&server);
    RemoteFileDialog dialog(m_window.get());
    dialog.open();
    auto *const view = dialog.findChild<QListView *>(QStringLiteral("listView"));
    auto *const edit = dialog.findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    QVERIFY(view && edit);
    QTRY_COMPARE_WITH_TIMEOUT(view->model()->rowCount(view->rootIndex()), 1, longEnough);
    edit->setText(QStringLiteral("typed"));

    server.kill();
    QTRY_VERIFY_WITH_TIMEOUT(shownBox(), longEnough);
    QCOMPARE(shownBox()->windowTitle(), QStringLiteral("Connection Lost"));
    QCOMPARE(shownBox()->parentWidget(), &dialog);
    QVERIFY(dialog.isVisible());
    server.restore();
    QVERIFY(QDir(server.home()).mkdir(QStringLiteral("later")));
    QSignalSpy opened(m_window->findChild<RemoteConnection *>(), &RemoteConnection::opened);
    press(shownBox(), QStringLiteral("Reconnect"));
    QVERIFY(opened.wait(longEnough));
    QTRY_VERIFY(!shownBox());
    QCOMPARE(edit->text(), QStringLiteral("typed"));
    // The dialog lists its directory again by itself.
    QTRY_COMPARE_WITH_TIMEOUT(view->model()->rowCount(view->rootIndex()), 2, longEnough);
}

QTEST_MAIN(TestRemoteActions)
#include "tst_remoteactions.moc"
