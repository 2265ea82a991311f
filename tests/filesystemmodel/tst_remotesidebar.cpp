#include <support/faultyfolder.h>
#include <support/testcase.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <tul-util-gui/filesystemmodel/remotesidebar.h>
#include <tul-util-gui/filesystemmodel/remotesidebardelegate_p.h>
#include <tul-util-gui/filesystemmodel/remoteurlmodel.h>

#include <QAbstractItemModelTester>
#include <QAction>
#include <QApplication>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

#include <memory>

namespace
{

QString q(const char *text)
{
    return QString::fromLatin1(text);
}

/// A short way to write places: "file:" and "http:..." as they are, others on the remote side.
QList<QUrl> urlsOf(const char *texts)
{
    QList<QUrl> urls;
    for (const QString &text : q(texts).split(QLatin1Char(' '), Qt::SkipEmptyParts))
        urls.append(text == q("file:") || text.startsWith(q("http:"))
                        ? QUrl(text)
                        : QUrl::fromLocalFile(q("remote:/") + text));
    return urls;
}

/// A side bar over a remote machine with the directories a, b and c and the file "file".
class SideBar : public RemoteSidebar
{
public:
    FaultyFolder far;
    RemoteFileSystemModel files;
    std::unique_ptr<QAbstractItemModelTester> tester;
    QSignalSpy went{this, &RemoteSidebar::goToUrl};

    explicit SideBar(const char *places = "file: a gone")
    {
        for (const char *const path : {"a/", "b/", "c/", "file"})
            far.make(q(path));
        setFileSystemModel(&files);
        tester = std::make_unique<QAbstractItemModelTester>(urlModel());
        setUrls(urlsOf(places));
        resize(200, 200);
        show();
    }

    using RemoteSidebar::dragEnterEvent;

    QModelIndex place(int row) const { return urlModel()->index(row, 0); }
    QPoint at(int row) const { return visualRect(place(row)).center(); }
    bool exists(int row) const { return place(row).data(RemoteUrlModel::EnabledRole).toBool(); }
    QString names() const
    {
        QStringList result;
        for (int row = 0; row < urlModel()->rowCount(); ++row)
            result.append(place(row).data().toString());
        return result.join(QLatin1Char(' '));
    }

    /// Opens the context menu of a place and triggers its action, if that is possible.
    void removeByMenu(int row)
    {
        QTimer::singleShot(0, this, [] {
            auto *const menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            QCOMPARE(menu->actions().constFirst()->text(), q("Remove"));
            menu->actions().constFirst()->trigger();
            menu->close();
        });
        selectUrl(urls().at(row));
        Q_EMIT customContextMenuRequested(at(row));
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
    void placesShowWhatTheFileSystemModelKnows();
    void placesAreAddedAndMovedInOrder_data();
    void placesAreAddedAndMovedInOrder();
    void onlyDirectoriesCanBeDropped_data();
    void onlyDirectoriesCanBeDropped();
    void placesFollowTheFileSystem();
    void placesOutliveTheFileSystemModel();
    void goesToAPlaceOnceAndOnlyWhenAsked();
    void placesAreRemovedButNotTheDrives();
};

void TestRemoteSidebar::placesShowWhatTheFileSystemModelKnows()
{
    const SideBar bar;
    QCOMPARE(bar.names(), bar.files.myComputer().toString() + q(" a gone"));
    QVERIFY(!bar.place(0).data(RemoteUrlModel::EnabledRole).isValid());
    for (int row = 0; row < 3; ++row) {
        QCOMPARE(Delegate().isGreyed(bar.place(row)), row == 2);
        QCOMPARE(bar.place(row).flags(),
                 Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled);
        const QIcon icon = bar.place(row).data(Qt::DecorationRole).value<QIcon>();
        QVERIFY(row == 0 || icon.actualSize({32, 32}).width() >= 32);
    }
    bar.urlModel()->setShowFullPath(true);
    QCOMPARE(bar.place(1).data().toString(), q("remote:/a"));
    bar.urlModel()->setData(bar.place(1), QVariant(), Qt::DecorationRole);
    QVERIFY(!bar.place(1).flags().testFlag(Qt::ItemIsEnabled));

    QUrl hostUrl; // as the URL of "//usr" is, which is no level of drives
    hostUrl.setScheme(q("file"));
    hostUrl.setHost(q("usr"));
    bar.urlModel()->setUrls({hostUrl});
    QCOMPARE(bar.urls(), QList<QUrl>{QUrl::fromLocalFile(q("/usr"))});
}

void TestRemoteSidebar::placesAreAddedAndMovedInOrder_data()
{
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("move");
    QTest::addColumn<QString>("names");

    QTest::newRow("x y") << -1 << true << q("a b c x y");
    QTest::newRow("x y ") << 0 << true << q("x y a b c");
    QTest::newRow("x") << 99 << true << q("a b c x");
    QTest::newRow("a") << 3 << true << q("b c a");
    QTest::newRow("c/") << 0 << true << q("c a b");
    QTest::newRow("b") << 1 << true << q("a b c");
    QTest::newRow("c x") << 0 << false << q("x a b c");
    QTest::newRow("x x/ y") << -1 << true << q("a b c x y");
    QTest::newRow("http://x/y x ") << -1 << true << q("a b c x");
}

void TestRemoteSidebar::placesAreAddedAndMovedInOrder()
{
    QFETCH(int, row);
    QFETCH(bool, move);

    SideBar bar("a b c");
    bar.urlModel()->addUrls(urlsOf(QTest::currentDataTag()), row, move);
    QTEST(bar.names(), "names");
}

void TestRemoteSidebar::onlyDirectoriesCanBeDropped_data()
{
    QTest::addColumn<bool>("taken");

    QTest::newRow("a b") << true;
    QTest::newRow("file:") << true;
    QTest::newRow("a file") << false;
    QTest::newRow("gone") << false;
    QTest::newRow("http://x/y") << false;
    QTest::newRow("") << false; // a text, no URLs
}

void TestRemoteSidebar::onlyDirectoriesCanBeDropped()
{
    SideBar bar;
    QMimeData data;
    const QList<QUrl> urls = urlsOf(QTest::currentDataTag());
    data.setText(q("text"));
    if (!urls.isEmpty())
        data.setUrls(urls);
    for (const QDir::Filters filter : {bar.files.filter(), QDir::Filters(QDir::Dirs)}) {
        bar.files.setFilter(filter); // a file that is hidden is a file all the same
        QDragEnterEvent event(bar.at(0), Qt::CopyAction, &data, Qt::LeftButton, {});
        bar.dragEnterEvent(&event);
        QTEST(event.isAccepted(), "taken");
    }
    QCOMPARE(bar.urlModel()->dropMimeData(&data, Qt::CopyAction, 0, 0, {}), !urls.isEmpty());

    bar.setUrls(urlsOf("a file: b"));
    const std::unique_ptr<QMimeData> dragged(
        bar.urlModel()->mimeData({bar.place(2), bar.place(0)}));
    QCOMPARE(dragged->urls(), urlsOf("a b"));
    QVERIFY(!bar.urlModel()->supportedDragActions().testFlag(Qt::MoveAction));
}

void TestRemoteSidebar::placesFollowTheFileSystem()
{
    SideBar bar("a new/deep");
    bar.files.setRootPath(q("remote:"));
    QVERIFY(bar.exists(0) && !bar.exists(1));
    QVERIFY(QDir(bar.far.local()).rmdir(q("a")) && bar.far.make(q("new/deep/")));
    bar.files.refresh(bar.files.index(q("remote:")));
    QTRY_VERIFY(!bar.exists(0) && bar.exists(1));
    bar.files.setReadOnly(false);
    QVERIFY(bar.files.setData(bar.files.index(q("remote:/new")), q("old")));
    QTRY_VERIFY(!bar.exists(1));
    QCOMPARE(bar.names(), q("a deep"));
}

void TestRemoteSidebar::placesOutliveTheFileSystemModel()
{
    RemoteSidebar bar;
    QVERIFY(bar.urls().isEmpty() && bar.sizeHint() == bar.QAbstractScrollArea::sizeHint());
    {
        RemoteFileSystemModel files;
        bar.setFileSystemModel(&files);
    }
    bar.urlModel()->refresh();
    bar.addUrls(urlsOf("a"));
    QCOMPARE(bar.urls(), QList<QUrl>({QUrl(q("file:")), QUrl::fromLocalFile(QDir::homePath())}));
    const QSize frame(2 * bar.frameWidth(), 2 * bar.frameWidth());
    QCOMPARE(bar.sizeHint(), bar.sizeHintForIndex(bar.model()->index(0, 0)) + frame);
    bar.setUrls({});
    QCOMPARE(bar.sizeHint(), frame);
}

void TestRemoteSidebar::goesToAPlaceOnceAndOnlyWhenAsked()
{
    SideBar bar;
    bar.setFocus(Qt::TabFocusReason);
    bar.selectUrl(urlsOf("a").first());
    QCOMPARE(bar.selectionModel()->selectedIndexes(), QModelIndexList{bar.place(1)});
    bar.selectUrl(urlsOf("elsewhere").first());
    QVERIFY(!bar.selectionModel()->hasSelection());
    QTest::mouseClick(bar.viewport(), Qt::RightButton, {}, bar.at(2));
    QTest::mousePress(bar.viewport(), Qt::LeftButton, {}, bar.at(1));
    QCOMPARE(bar.went.count(), 0);
    QTest::mouseRelease(bar.viewport(), Qt::LeftButton, {}, bar.at(1));
    QCOMPARE(bar.went.count(), 1);
    QTest::mouseClick(bar.viewport(), Qt::LeftButton, {}, bar.at(1));
    QCOMPARE(bar.went.count(), 2);
    QTest::keyClick(&bar, Qt::Key_Down);
    QCOMPARE(bar.went.count(), 3);
    QCOMPARE(bar.went.last().first().toUrl(), urlsOf("gone").first());
}

void TestRemoteSidebar::placesAreRemovedButNotTheDrives()
{
    SideBar bar("file: a b gone");
    bar.removeByMenu(0);
    bar.removeByMenu(1);
    QCOMPARE(bar.urls(), urlsOf("file: b gone"));
    QVERIFY(bar.findChildren<QAction *>().isEmpty());
    bar.setSelectionMode(QAbstractItemView::MultiSelection);
    bar.selectAll();
    QTest::keyPress(&bar, Qt::Key_Delete);
    QCOMPARE(bar.urls().size(), 3);
    QTest::keyRelease(&bar, Qt::Key_Delete);
    QCOMPARE(bar.urls(), urlsOf("file:"));
    QCOMPARE(bar.went.count(), 0); // the neighbour became current, but nobody went there
}

QTEST_MAIN(TestRemoteSidebar)
#include "tst_remotesidebar.moc"
