// What a person meets in a file dialog on a remote machine that is far away or fails: prints, for
// each case, how long until the first row and until the message, how long the window stood still at
// most, how many requests it took, and whether what was typed is still there. With a directory as
// its argument it also writes pictures of what is shown.

#include <backends/ssh/sftpclient.h>
#include <support/sshserver.h>
#include <workbench/remoteconnection.h>

#include <tul-util-gui/filedialog/remotefiledialog.h>

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QListView>
#include <QMainWindow>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace
{

constexpr int few = 30;
constexpr int many = 20000;
constexpr int patience = 60000;
constexpr int timeout = 3000; // of the connection in the cases of a silent server

/// The longest time between two beats of the event loop.
class Heartbeat : public QObject
{
public:
    Heartbeat()
    {
        connect(&m_timer, &QTimer::timeout, this,
                [this] { m_longest = qMax(m_longest, m_sinceLast.restart()); });
        m_sinceLast.start();
        m_timer.start(0);
    }
    qint64 longest() const { return m_longest; }

private:
    QTimer m_timer;
    QElapsedTimer m_sinceLast;
    qint64 m_longest = 0;
};

enum class Fault { None, Killed, Silent };

struct Case {
    const char *name;
    const char *directory; // below the home directory
    int files;
    int delay;
    Fault fault;
    bool whileListing; // else when all is shown
};

QString pictures; // where to; empty for none

template<typename Condition> void await(const Condition &condition)
{
    // Without the naps of the test library, which would pass for a window that stands still.
    QTimer waker;
    waker.start(10);
    const QDeadlineTimer deadline(patience);
    while (!condition() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    if (!condition())
        std::fputs("gave up waiting\n", stderr);
}

void savePicture(QWidget *widget, const char *name)
{
    if (!pictures.isEmpty())
        widget->grab().save(QDir(pictures).filePath(QLatin1String(name)));
}

QMessageBox *shownBox()
{
    for (QWidget *const widget : QApplication::topLevelWidgets()) {
        auto *const box = qobject_cast<QMessageBox *>(widget);
        if (box && box->isVisible())
            return box;
    }
    return nullptr;
}

void fill(const QString &directory, int count)
{
    QDir().mkpath(directory);
    for (int index = 0; index < count; ++index) {
        const QString name = QStringLiteral("%1/file%2.txt").arg(directory).arg(index);
        ::close(::creat(name.toLocal8Bit().constData(), 0644));
    }
}

void inject(SshServer *server, Fault fault)
{
    if (fault == Fault::Killed)
        server->kill();
    else if (fault == Fault::Silent)
        server->swallowBytes();
}

void run(SshServer *server, const Case &what)
{
    QMainWindow window;
    window.show();
    RemoteConnection remote(&window);
    SshSettings settings = server->settings(what.delay);
    settings.timeout = timeout;
    bool isOpen = false;
    QObject::connect(&remote, &RemoteConnection::opened, &remote, [&] { isOpen = true; });
    remote.connectTo(server->target(), settings);
    if (!QTest::qWaitFor([&] { return isOpen; }, patience))
        return;

    RemoteFileDialog::setRemoteHomeDirectory(RemoteFileDialog::remotePrefix()
                                             + remote.connection()->homeDirectory());
    const SftpClient &client = *remote.connection()->client();
    const SftpClient::Statistics before = client.statistics();
    const QString path = server->home() + QLatin1Char('/') + QLatin1String(what.directory);
    const Heartbeat heart;
    QElapsedTimer clock;
    clock.start();
    RemoteFileDialog dialog(&window, QStringLiteral("Open"), path);
    dialog.open();
    auto *const view = dialog.findChild<QListView *>(QStringLiteral("listView"));
    auto *const edit = dialog.findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    const auto rows = [&] { return view->model()->rowCount(view->rootIndex()); };
    await([&] { return rows() > 0; });
    const qint64 firstRow = clock.elapsed();
    edit->setText(QStringLiteral("typed"));
    if (!what.whileListing)
        await([&] { return rows() == what.files; });
    const qint64 allRows = clock.elapsed();
    const int requests = client.statistics().requests - before.requests;
    if (what.fault == Fault::None && what.delay == 0 && what.files == few)
        savePicture(&dialog, "remotefiledialog-ssh.png");

    clock.start();
    inject(server, what.fault);
    QString message = QStringLiteral("-");
    if (what.fault != Fault::None) {
        if (!what.whileListing)
            dialog.findChild<QToolButton *>(QStringLiteral("toParentButton"))->click();
        await([] { return shownBox() != nullptr; });
        if (QMessageBox *const box = shownBox()) {
            message
                = QStringLiteral("%1, after %2 ms").arg(box->windowTitle()).arg(clock.elapsed());
            savePicture(box, "connection-lost.png");
        }
        server->restore();
    }
    std::printf("%-36s first row %5lld ms, all %6lld ms, %4d requests, longest gap %5lld ms, "
                "typed text %s, message: %s\n",
                what.name, firstRow, allRows, requests, heart.longest(),
                edit->text() == QLatin1String("typed") ? "kept" : "LOST", qPrintable(message));
}

/// The question about a key that was never seen.
void pictureOfKeyQuestion(SshServer *server)
{
    const QString known = server->clientDirectory() + QStringLiteral("/known_hosts");
    QFile::rename(known, known + QStringLiteral(".away"));
    QMainWindow window;
    RemoteConnection remote(&window);
    QTimer presser;
    QObject::connect(&presser, &QTimer::timeout, &remote, [&] {
        if (QMessageBox *const box = shownBox()) {
            presser.stop();
            savePicture(box, "unknown-host-key.png");
            box->reject();
        }
    });
    presser.start(50);
    remote.connectTo(server->target(), server->settings());
    await([&] { return !presser.isActive(); });
    QFile::rename(known + QStringLiteral(".away"), known);
}

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    pictures = QApplication::arguments().value(1);
    SshServer server;
    if (!server.fault().isEmpty()) {
        std::fprintf(stderr, "%s\n", qPrintable(server.fault()));
        return 1;
    }
    fill(server.home() + QStringLiteral("/few"), few);
    fill(server.home() + QStringLiteral("/many"), many);
    if (!pictures.isEmpty())
        pictureOfKeyQuestion(&server);
    for (const Case &what :
         {Case{"30 files", "few", few, 0, Fault::None, false},
          Case{"30 files, 50 ms away", "few", few, 50, Fault::None, false},
          Case{"30 files, 200 ms away", "few", few, 200, Fault::None, false},
          Case{"20,000 files", "many", many, 0, Fault::None, false},
          Case{"20,000 files, 50 ms away", "many", many, 50, Fault::None, false},
          Case{"20,000 files, 200 ms away", "many", many, 200, Fault::None, false},
          Case{"server killed while listing", "many", many, 50, Fault::Killed, true},
          Case{"server killed, then a click", "few", few, 50, Fault::Killed, false},
          Case{"server silent while listing", "many", many, 50, Fault::Silent, true},
          Case{"server silent, then a click", "few", few, 50, Fault::Silent, false}})
        run(&server, what);
    return 0;
}
