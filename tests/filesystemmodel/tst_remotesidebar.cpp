#include <support/testcase.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <tul-util-gui/filesystemmodel/remotesidebar.h>
#include <tul-util-gui/filesystemmodel/remotesidebardelegate_p.h>
#include <tul-util-gui/filesystemmodel/remoteurlmodel.h>

#include <QApplication>
#include <QDir>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace
{

/// A side bar with the drives, the directory "there" and the missing directory "gone".
class SideBar : public RemoteSidebar
{
public:
    QTemporaryDir folder;
    RemoteFileSystemModel files;
    QSignalSpy went{this, &RemoteSidebar::goToUrl};

    SideBar()
    {
        QDir(folder.path()).mkdir(QStringLiteral("there"));
        setFileSystemModel(&files);
        setUrls({QUrl(QStringLiteral("file:")), url("there"), url("gone")});
        resize(200, 200);
    }

    using RemoteSidebar::dragEnterEvent;

    QUrl url(const char *name) const
    {
        return QUrl::fromLocalFile(folder.filePath(QString::fromLatin1(name)));
    }
    QModelIndex place(int row) const { return model()->index(row, 0); }
    QPoint at(int row) const { return visualRect(place(row)).center(); }
    QUrl lastWent() const { return went.last().first().toUrl(); }
    void select(int row) { selectUrl(urls().at(row)); }

    void expose()
    {
        show();
        QVERIFY(QTest::qWaitForWindowExposed(this));
    }

    /// Opens the context menu of a place and triggers its action if that is possible.
    QString tryRemoveByMenu(int row)
    {
        QString seen;
        QTimer::singleShot(0, this, [&seen] {
            auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            QAction *const action = menu->actions().constFirst();
            seen = action->text();
            action->trigger();
            menu->close();
        });
        select(row);
        Q_EMIT customContextMenuRequested(at(row));
        return seen;
    }
};

class Delegate : public RemoteSideBarDelegate
{
public:
    bool isGreyed(const QModelIndex &place) const
    {
        QStyleOptionViewItem option;
        option.state = QStyle::State_Enabled;
        initStyleOption(&option, place);
        return !option.state.testFlag(QStyle::State_Enabled);
    }
};

} // namespace

class TestRemoteSidebar : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void beginsWithTheDrivesAndTheHome();
    void clickOrKeyGoesToAPlaceOnce();
    void nothingElseGoesToAPlace();
    void deleteRemovesPlacesWhenItIsReleased();
    void menuRemovesPlacesButNotTheDrives();
    void missingPlacesAreGreyedButSelectable();
    void directoriesAreDroppedFilesAreNot();
    void sizeIsThatOfAPlace();
};

void TestRemoteSidebar::beginsWithTheDrivesAndTheHome()
{
    RemoteFileSystemModel first;
    RemoteFileSystemModel second;
    RemoteSidebar bar;
    QVERIFY(bar.urls().isEmpty() && !bar.urlModel());
    bar.setUrls({QUrl(QStringLiteral("file:"))});
    bar.setFileSystemModel(&first);
    const QList<QUrl> initial{QUrl(QStringLiteral("file:")), QUrl::fromLocalFile(QDir::homePath())};
    QCOMPARE(bar.urls(), initial);
    bar.addUrls({QUrl::fromLocalFile(QDir::rootPath())}, 0);
    bar.setFileSystemModel(&second);
    QCOMPARE(bar.urls().mid(1), initial);
    QCOMPARE(bar.urlModel()->fileSystemModel(), &second);
}

void TestRemoteSidebar::clickOrKeyGoesToAPlaceOnce()
{
    SideBar bar;
    bar.expose();
    QTest::mouseClick(bar.viewport(), Qt::LeftButton, {}, bar.at(1));
    QCOMPARE(bar.went.count(), 1);
    QCOMPARE(bar.lastWent(), bar.url("there"));
    QTest::mouseClick(bar.viewport(), Qt::LeftButton, {}, bar.at(1));
    QCOMPARE(bar.went.count(), 2);
    QTest::keyClick(&bar, Qt::Key_Down);
    QCOMPARE(bar.went.count(), 3);
    QCOMPARE(bar.lastWent(), bar.url("gone"));
    bar.setCurrentIndex(bar.place(0));
    QCOMPARE(bar.went.count(), 4);
    QVERIFY(bar.lastWent().path().isEmpty());
}

void TestRemoteSidebar::nothingElseGoesToAPlace()
{
    SideBar bar;
    bar.expose();
    bar.setFocus(Qt::TabFocusReason);
    bar.selectUrl(bar.url("there"));
    QCOMPARE(bar.selectionModel()->selectedIndexes(), QModelIndexList{bar.place(1)});
    bar.selectUrl(bar.url("elsewhere"));
    QVERIFY(!bar.selectionModel()->hasSelection());
    QTest::mouseClick(bar.viewport(), Qt::RightButton, {}, bar.at(2));
    QTest::mousePress(bar.viewport(), Qt::LeftButton, {}, bar.at(1));
    bar.setUrls({bar.url("there")});
    QCOMPARE(bar.went.count(), 0);
}

void TestRemoteSidebar::deleteRemovesPlacesWhenItIsReleased()
{
    SideBar bar;
    bar.expose();
    bar.setSelectionMode(QAbstractItemView::MultiSelection);
    bar.selectAll();
    QTest::keyPress(&bar, Qt::Key_Delete);
    QCOMPARE(bar.urls().size(), 3);
    QTest::keyRelease(&bar, Qt::Key_Delete);
    QCOMPARE(bar.urls(), QList<QUrl>{QUrl(QStringLiteral("file:"))});
    QCOMPARE(bar.went.count(), 0);
}

void TestRemoteSidebar::menuRemovesPlacesButNotTheDrives()
{
    for (int menu = 0; menu < 2; ++menu) { // what this platform has to say of each
        announceWarning(QStringLiteral("This plugin does not support raise()"));
        announceWarning(QStringLiteral("This plugin does not support grabbing the keyboard"));
    }
    SideBar bar;
    bar.expose();
    QCOMPARE(bar.tryRemoveByMenu(0), QStringLiteral("Remove"));
    QCOMPARE(bar.urls().size(), 3);
    QCOMPARE(bar.tryRemoveByMenu(1), QStringLiteral("Remove"));
    QCOMPARE(bar.urls().size(), 2);
    QVERIFY(bar.findChildren<QAction *>().isEmpty());
    Q_EMIT bar.customContextMenuRequested(QPoint(100, 190)); // no place, no menu
}

void TestRemoteSidebar::missingPlacesAreGreyedButSelectable()
{
    const SideBar bar;
    const Delegate delegate;
    QCOMPARE(delegate.isGreyed(bar.place(0)), false);
    QCOMPARE(delegate.isGreyed(bar.place(1)), false);
    QCOMPARE(delegate.isGreyed(bar.place(2)), true);
    QVERIFY(bar.place(2).flags().testFlag(Qt::ItemIsEnabled));
    QVERIFY(qobject_cast<RemoteSideBarDelegate *>(bar.itemDelegate()));
}

void TestRemoteSidebar::directoriesAreDroppedFilesAreNot()
{
    SideBar bar;
    const auto takes = [&](const QUrl &url) {
        QMimeData data;
        data.setUrls({url});
        QDragEnterEvent event(bar.at(0), Qt::CopyAction, &data, Qt::LeftButton, {});
        bar.dragEnterEvent(&event);
        return event.isAccepted();
    };
    QVERIFY(takes(bar.url("there")));
    QVERIFY(!takes(QUrl::fromLocalFile(QCoreApplication::applicationFilePath())));
    QVERIFY(!takes(bar.url("gone")));
}

void TestRemoteSidebar::sizeIsThatOfAPlace()
{
    RemoteSidebar empty;
    QCOMPARE(empty.sizeHint(), QListView().QAbstractScrollArea::sizeHint());
    SideBar bar;
    const QSize frame(2 * bar.frameWidth(), 2 * bar.frameWidth());
    QCOMPARE(bar.sizeHint(), bar.sizeHintForIndex(bar.place(0)) + frame);
    bar.setUrls({});
    QCOMPARE(bar.sizeHint(), frame);
}

QTEST_MAIN(TestRemoteSidebar)
#include "tst_remotesidebar.moc"
