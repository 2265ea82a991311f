#include <workbench/mainwindow.h>
#include <workbench/page.h>
#include <workbench/screenshots.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QPixmap>
#include <QTimer>

#include <cstdio>

namespace
{

constexpr int settledRounds = 3;
constexpr int roundMilliseconds = 20;
constexpr int patienceMilliseconds = 10'000;

/// The window once several pictures in a row came out the same: all that was queued has been laid
/// out, read and painted then. Null when it never comes to rest.
QImage settledPicture(QWidget *window)
{
    QElapsedTimer clock;
    clock.start();
    QImage picture;
    for (int same = 0; same < settledRounds;) {
        if (clock.hasExpired(patienceMilliseconds))
            return {};
        QEventLoop loop;
        QTimer::singleShot(roundMilliseconds, &loop, &QEventLoop::quit);
        loop.exec();
        const QImage next = window->grab().toImage();
        same = next == picture ? same + 1 : 0;
        picture = next;
    }
    return picture;
}

bool savePicture(const QImage &picture, const QString &fileName)
{
    if (picture.isNull()) {
        std::fprintf(stderr, "workbench: the window does not come to rest\n");
        return false;
    }
    if (!picture.save(fileName, "PNG")) {
        std::fprintf(stderr, "workbench: cannot write \"%s\"\n", qPrintable(fileName));
        return false;
    }
    std::printf("%s\n", qPrintable(fileName));
    return true;
}

} // namespace

bool saveScreenshots(MainWindow *window, const QString &directory)
{
    const QDir target(directory);
    if (!target.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "workbench: cannot make the directory \"%s\"\n",
                     qPrintable(directory));
        return false;
    }
    QApplication::setCursorFlashTime(0); // a blinking cursor never comes to rest
    bool good = true;
    for (int i = 0; i < window->pages().size(); ++i) {
        WorkbenchPage *const page = window->pages().at(i);
        window->setCurrentPage(i);
        const QStringList shots = page->shots();
        for (const QString &shot : shots) {
            page->prepareShot(shot);
            const QString fileName = target.filePath(shot + QStringLiteral(".png"));
            good = savePicture(settledPicture(window), fileName) && good;
        }
    }
    return good && window->faultCount() == 0;
}
