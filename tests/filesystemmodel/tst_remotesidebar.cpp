#include <support/faultyfolder.h>
#include <support/literal.h>
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
#include <QPointer>
#include <QSignalSpy>
#include <QStringListModel>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>

namespace
{

/// A short way to write places: "file:" and "http:..." as they are, others on the remote side.
QList<QUrl> urlsOf(const char *texts)
{
    QList<QUrl> urls;
    for (const QString &text :
         QString::fromLatin1(texts).split(QLatin1Char(' '), Qt::SkipEmptyParts))
        urls.append(text == "file:"_s || text.startsWith("http:"_s)
                        ? QUrl(text)
                        : QUrl::fromLocalFile("remote:/"_s + text));
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
            far.make(QString::fromLatin1(path));
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
            QCOMPARE(menu->actions().constFirst()->text(), "Remove"_s);
            menu->actions().constFirst()->trigger();
            menu->close();
        });
        selectUrl(urls().at(row));
        Q_EMIT customContextMenuRequested(at(row));
    }
};

struct Delegate : RemoteSideBarDelegate {
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
    void placesAreAddedAndMovedInOrder();
    void onlyDirectoriesCanBeDropped();
    void placesFollowTheFileSystem();
    void whatTheFiltersHideIsMissingUntilTheyShowIt();
    void placesOutliveTheFileSystemModel();
    void goesToAPlaceOnceAndOnlyWhenAsked();
    void placesAreRemovedButNotTheDrives();
};

void TestRemoteSidebar::placesShowWhatTheFileSystemModelKnows()
{
    const SideBar bar;
    QCOMPARE(bar.names(), bar.files.myComputer().toString() + " a gone"_s);
    QVERIFY(!bar.place(0).data(RemoteUrlModel::EnabledRole).isValid());
    for (int row = 0; row < 3; ++row) {
        QCOMPARE(Delegate().isGreyed(bar.place(row)), row == 2);
        QCOMPARE(bar.place(row).flags(),
                 Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled);
        const QIcon icon = bar.place(row).data(Qt::DecorationRole).value<QIcon>();
        QVERIFY(row == 0 || icon.actualSize({32, 32}).width() >= 32);
    }
    bar.urlModel()->setShowFullPath(true);
    QCOMPARE(bar.place(1).data().toString(), "remote:/a"_s);
    bar.urlModel()->setData(bar.place(1), QVariant(), Qt::DecorationRole);
    QVERIFY(!bar.place(1).flags().testFlag(Qt::ItemIsEnabled));

    QUrl hostUrl; // as the URL of "//usr" is, which is no level of drives
    hostUrl.setScheme("file"_s);
    hostUrl.setHost("usr"_s);
    bar.urlModel()->setUrls({hostUrl});
    QCOMPARE(bar.urls(), QList<QUrl>{QUrl::fromLocalFile("/usr"_s)});
}

void TestRemoteSidebar::placesAreAddedAndMovedInOrder()
{
    const struct {
        const char *added;
        int row;
        bool move;
        QString names;
    } cases[] = {{"x y", -1, true, "a b c x y"_s},
                 {"x y", 0, true, "x y a b c"_s},
                 {"x", 99, true, "a b c x"_s},
                 {"a", 3, true, "b c a"_s},
                 {"c/", 0, true, "c a b"_s},
                 {"b", 1, true, "a b c"_s},
                 {"c x", 0, false, "x a b c"_s},
                 {"x x/ y", -1, true, "a b c x y"_s},
                 {"http://x/y x", -1, true, "a b c x"_s}};
    for (const auto &each : cases) {
        const SideBar bar("a b c");
        bar.urlModel()->addUrls(urlsOf(each.added), each.row, each.move);
        QCOMPARE(bar.names(), each.names);
    }
}

void TestRemoteSidebar::onlyDirectoriesCanBeDropped()
{
    SideBar bar;
    // The last one is a text without URLs.
    for (const char *const dragged : {"a b", "file:", "a file", "gone", "http://x/y", ""}) {
        QMimeData data;
        const QList<QUrl> urls = urlsOf(dragged);
        data.setText("text"_s);
        if (!urls.isEmpty())
            data.setUrls(urls);
        for (const QDir::Filters filter : {bar.files.filter(), QDir::Filters(QDir::Dirs)}) {
            bar.files.setFilter(filter); // a file that is hidden is a file all the same
            QDragEnterEvent event(bar.at(0), Qt::CopyAction, &data, Qt::LeftButton, {});
            bar.dragEnterEvent(&event);
            // What is missing can be dropped: it may be a greyed place on its way to another row.
            QCOMPARE(event.isAccepted(), !urls.isEmpty() && urls != urlsOf("a file"));
        }
        QCOMPARE(bar.urlModel()->dropMimeData(&data, Qt::CopyAction, 0, 0, {}), !urls.isEmpty());
    }
    bar.setUrls(urlsOf("a file: b"));
    const std::unique_ptr<QMimeData> data(bar.urlModel()->mimeData({bar.place(2), bar.place(0)}));
    QCOMPARE(data->urls(), urlsOf("a b"));
    QVERIFY(!bar.urlModel()->supportedDragActions().testFlag(Qt::MoveAction));
}

void TestRemoteSidebar::placesFollowTheFileSystem()
{
    SideBar bar("a new/deep");
    bar.files.setRootPath("remote:"_s);
    QVERIFY(bar.exists(0) && !bar.exists(1));
    QVERIFY(QDir(bar.far.local()).rmdir("a"_s) && bar.far.make("new/deep/"_s));
    bar.files.refresh(bar.files.index("remote:"_s));
    QTRY_VERIFY(!bar.exists(0) && bar.exists(1));
    bar.files.setReadOnly(false);
    QVERIFY(bar.files.setData(bar.files.index("remote:/new"_s), "old"_s));
    QTRY_VERIFY(!bar.exists(1));
    QCOMPARE(bar.names(), "a deep"_s);

    bar.setUrls(urlsOf("b old/missing"));
    QVERIFY(bar.files.setData(bar.files.index("remote:/b"_s), "b2"_s));
    QTRY_VERIFY(!bar.exists(0));
    QCOMPARE(bar.names(), "b missing"_s);
    QVERIFY(bar.files.setData(bar.files.index("remote:/b2"_s), "b"_s));
    QTRY_VERIFY(bar.exists(0));
}

void TestRemoteSidebar::whatTheFiltersHideIsMissingUntilTheyShowIt()
{
    SideBar bar("");
    QSignalSpy loaded(&bar.files, &RemoteFileSystemModel::directoryLoaded);
    bar.files.setRootPath("remote:"_s);
    QVERIFY(loaded.wait());
    bar.setUrls(urlsOf("b c/missing"));
    const QSignalSpy changed(&bar.files, &QAbstractItemModel::dataChanged);
    bar.far.forgetCalls();
    // A change of the directory above a missing place costs no look at the disk.
    QVERIFY(QFile::setPermissions(bar.far.local("c"_s), QFileDevice::Permissions(0x7700)));
    bar.files.refresh(bar.files.index("remote:"_s));
    QVERIFY(loaded.wait() && !changed.isEmpty());
    bar.files.sort(1, Qt::DescendingOrder);
    bar.files.setFilter(QDir::Files);
    QTRY_VERIFY(!bar.exists(0));
    QVERIFY(!bar.files.index("remote:/b"_s).isValid());
    QCOMPARE(bar.far.calls(true), 0);
    QVERIFY(QDir(bar.far.local("c"_s)).mkdir("missing"_s));
    bar.files.setFilter(QDir::AllEntries);
    QTRY_VERIFY(bar.exists(0) && bar.exists(1));
}

void TestRemoteSidebar::placesOutliveTheFileSystemModel()
{
    RemoteSidebar bar;
    QVERIFY(bar.urls().isEmpty() && bar.sizeHint() == bar.QAbstractScrollArea::sizeHint());
    QStringListModel foreign({"row"_s});
    bar.setModel(&foreign);
    bar.selectUrl(QUrl());
    QVERIFY(!bar.currentIndex().isValid());
    {
        RemoteFileSystemModel files;
        bar.setFileSystemModel(&files);
    }
    bar.urlModel()->refresh();
    bar.addUrls(urlsOf("a"));
    QCOMPARE(bar.urls(), QList<QUrl>({QUrl("file:"_s), QUrl::fromLocalFile(QDir::homePath())}));
    const QSize frame(2 * bar.frameWidth(), 2 * bar.frameWidth());
    QCOMPARE(bar.sizeHint(), bar.sizeHintForIndex(bar.model()->index(0, 0)) + frame);
    bar.setUrls({}); // changes nothing
    QVERIFY(bar.urlModel()->removeRows(0, 2));
    QCOMPARE(bar.sizeHint(), frame);

    const FaultyFolder far;
    QMimeData data;
    data.setUrls(urlsOf("b a"));
    QDragEnterEvent event({}, Qt::CopyAction, &data, Qt::LeftButton, {});
    const std::function<void()> lookUps[]{[&] { bar.addUrls(data.urls()); },
                                          [&] { bar.urlModel()->canDrop(&event); }};
    QVERIFY(far.make("a/"_s) && far.make("b/"_s));
    for (const auto &lookUp : lookUps) {
        auto *const doomed = new RemoteFileSystemModel;
        bar.setFileSystemModel(doomed);
        connect(doomed, &QAbstractItemModel::rowsInserted, doomed, [doomed] { delete doomed; });
        lookUp();
        QVERIFY(!bar.urlModel()->fileSystemModel() && bar.urls().isEmpty());
    }
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
    const QSignalSpy activated(&bar, &QAbstractItemView::activated);
    QTest::keyClick(&bar, Qt::Key_Return);
    QCOMPARE(bar.went.count(), 4);
    QCOMPARE(activated.count(), 1);
    bar.selectUrl(QUrl()); // as a dialog names the drives
    QCOMPARE(bar.currentIndex(), bar.place(0));
    bar.selectUrl(QUrl::fromLocalFile("remote:/a//"_s));
    QCOMPARE(bar.currentIndex(), bar.place(1));
    bar.selectUrl(QUrl("http://x"_s));
    QVERIFY(!bar.currentIndex().isValid());
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

    const QPointer<SideBar> doomed = new SideBar;
    QTimer::singleShot(0, doomed, [doomed] { delete doomed; });
    Q_EMIT doomed->customContextMenuRequested(doomed->at(1));
    QVERIFY(!doomed);
}

QTEST_MAIN(TestRemoteSidebar)
#include "tst_remotesidebar.moc"
