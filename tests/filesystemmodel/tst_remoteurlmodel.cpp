#include <support/faultyfolder.h>
#include <support/testcase.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>
#include <tul-util-gui/filesystemmodel/remoteurlmodel.h>

#include <QAbstractItemModelTester>
#include <QDragEnterEvent>
#include <QFileIconProvider>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace
{

QString q(const char *text)
{
    return QString::fromLatin1(text);
}

/// Places over a model of a served folder and a local one, each with the directories a, b and c and
/// the file "file".
struct Places {
    FaultyFolder far;
    QTemporaryDir near;
    RemoteFileSystemModel files;
    RemoteUrlModel model;
    QAbstractItemModelTester tester{&model};

    Places()
    {
        for (const char *const name : {"a", "b", "c"}) {
            far.make(q(name) + QLatin1Char('/'));
            QDir(near.path()).mkdir(q(name));
        }
        far.make(q("file"));
        model.setFileSystemModel(&files);
    }

    /// Short for a URL: "file:", "http:..." and "remote:..." as they are, others in the local
    /// folder.
    QUrl url(const QString &text) const
    {
        if (text == q("file:") || text.startsWith(q("http:")))
            return QUrl(text);
        return QUrl::fromLocalFile(text.startsWith(q("remote:")) ? text : near.filePath(text));
    }
    QList<QUrl> urls(const QString &texts) const
    {
        QList<QUrl> result;
        for (const QString &text : texts.split(QLatin1Char(' '), Qt::SkipEmptyParts))
            result.append(url(text));
        return result;
    }
    QVariant at(int row, int role = Qt::DisplayRole) const
    {
        return model.index(row, 0).data(role);
    }
    bool exists(int row) const { return at(row, RemoteUrlModel::EnabledRole).toBool(); }
    QString names() const
    {
        QStringList result;
        for (int row = 0; row < model.rowCount(); ++row)
            result.append(at(row).toString());
        return result.join(QLatin1Char(' '));
    }
};

} // namespace

class TestRemoteUrlModel : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void placesShowWhatTheFileSystemModelKnows();
    void placesAreAddedAndMovedInOrder_data();
    void placesAreAddedAndMovedInOrder();
    void onlyDirectoriesCanBeDropped_data();
    void onlyDirectoriesCanBeDropped();
    void placesFollowTheFileSystem();
    void localPathsOfOneElementAreNotTheDrives();
    void placesAreDraggedAsUrlsAndNeverMoved();
    void placesOutliveTheFileSystemModel();
};

void TestRemoteUrlModel::placesShowWhatTheFileSystemModelKnows()
{
    Places places;
    places.model.setUrls(places.urls(q("file: a remote:/b remote:/missing")));
    QCOMPARE(places.names(), places.files.myComputer().toString() + q(" a b missing"));
    QVERIFY(!places.at(0, RemoteUrlModel::EnabledRole).isValid());
    QVERIFY(places.exists(1) && places.exists(2));
    QCOMPARE(places.at(3, RemoteUrlModel::EnabledRole), QVariant(false));
    for (int row = 1; row < 4; ++row) {
        const QIcon icon = places.at(row, Qt::DecorationRole).value<QIcon>();
        QVERIFY(icon.actualSize({32, 32}).width() >= 32);
        QCOMPARE(places.model.flags(places.model.index(row, 0)),
                 Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled);
    }
    QVERIFY(places.model.flags({}).testFlag(Qt::ItemIsDropEnabled)); // between the places

    places.model.setShowFullPath(true);
    QCOMPARE(places.at(2).toString(), q("remote:/b"));
    QCOMPARE(places.at(1).toString(),
             places.files.filePath(places.files.index(places.near.filePath(q("a")))));
    places.model.setData(places.model.index(2, 0), QVariant(), Qt::DecorationRole);
    QVERIFY(!places.model.flags(places.model.index(2, 0)).testFlag(Qt::ItemIsEnabled));
}

void TestRemoteUrlModel::placesAreAddedAndMovedInOrder_data()
{
    QTest::addColumn<QString>("added");
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("move");
    QTest::addColumn<QString>("names");

    QTest::newRow("at the end") << q("remote:/a remote:/b") << -1 << true << q("a b c a b");
    QTest::newRow("in front") << q("remote:/a remote:/b") << 0 << true << q("a b a b c");
    QTest::newRow("past the end") << q("remote:/a") << 99 << true << q("a b c a");
    QTest::newRow("moved down") << q("a") << 3 << true << q("b c a");
    QTest::newRow("moved up") << q("c") << 0 << true << q("c a b");
    QTest::newRow("moved nowhere") << q("b") << 1 << true << q("a b c");
    QTest::newRow("not moved") << q("c remote:/c") << 0 << false << q("c a b c");
    QTest::newRow("twice") << q("remote:/a remote:/a/ remote:/b") << -1 << true << q("a b c a b");
    QTest::newRow("other schemes") << q("http://x/y remote:/b") << -1 << true << q("a b c b");
}

void TestRemoteUrlModel::placesAreAddedAndMovedInOrder()
{
    QFETCH(QString, added);
    QFETCH(int, row);
    QFETCH(bool, move);
    QFETCH(QString, names);

    Places places;
    places.model.setUrls(places.urls(q("a b c")));
    places.model.addUrls(places.urls(added), row, move);
    QCOMPARE(places.names(), names);
}

void TestRemoteUrlModel::onlyDirectoriesCanBeDropped_data()
{
    QTest::addColumn<bool>("taken");

    QTest::newRow("a remote:/b") << true;
    QTest::newRow("file:") << true;
    QTest::newRow("a remote:/file") << false;
    QTest::newRow("remote:/missing") << false;
    QTest::newRow("http://x/y") << false;
    QTest::newRow("") << false; // a text, no URLs
}

void TestRemoteUrlModel::onlyDirectoriesCanBeDropped()
{
    QFETCH(bool, taken);

    Places places;
    const QString texts = q(QTest::currentDataTag());
    for (const QDir::Filters filter : {places.files.filter(), QDir::Filters(QDir::Dirs)}) {
        places.files.setFilter(filter); // a file that is hidden is a file all the same
        QMimeData data;
        data.setText(q("text"));
        if (!texts.isEmpty())
            data.setUrls(places.urls(texts));
        const QDragEnterEvent event({}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCOMPARE(places.model.canDrop(&event), taken);
        QCOMPARE(places.model.dropMimeData(&data, Qt::CopyAction, 0, 0, {}), !texts.isEmpty());
    }
}

void TestRemoteUrlModel::placesFollowTheFileSystem()
{
    Places places;
    places.files.setRootPath(q("remote:"));
    places.model.setUrls(places.urls(q("remote:/a remote:/new/deep")));
    QVERIFY(places.exists(0) && !places.exists(1));

    QVERIFY(QDir(places.far.local()).rmdir(q("a")));
    QVERIFY(places.far.make(q("new/deep/")));
    places.files.refresh(places.files.index(q("remote:")));
    QTRY_VERIFY(!places.exists(0) && places.exists(1));
    QCOMPARE(places.names(), q("a deep"));

    places.files.setReadOnly(false);
    QVERIFY(places.files.setData(places.files.index(q("remote:/new")), q("old")));
    QTRY_VERIFY(!places.exists(1));
}

void TestRemoteUrlModel::localPathsOfOneElementAreNotTheDrives()
{
    Places places;
    const QString local = q("/usr");
    if (!QFileInfo(local).isDir())
        QSKIP("needs a directory in the root");
    QUrl hostUrl; // as the URL of "//usr" is
    hostUrl.setScheme(q("file"));
    hostUrl.setHost(q("usr"));
    places.model.addUrls({hostUrl, QUrl::fromLocalFile(local)});
    QCOMPARE(places.model.urls(), QList<QUrl>{QUrl::fromLocalFile(local)});
    QVERIFY(places.exists(0));
}

void TestRemoteUrlModel::placesAreDraggedAsUrlsAndNeverMoved()
{
    Places places;
    const QList<QUrl> urls = places.urls(q("a file: remote:/b"));
    places.model.setUrls(urls);
    const std::unique_ptr<QMimeData> data(
        places.model.mimeData({places.model.index(2, 0), places.model.index(0, 0)}));
    QCOMPARE(data->formats(), places.model.mimeTypes());
    QCOMPARE(data->urls(), QList<QUrl>({urls.at(0), urls.at(2)}));
    QVERIFY(!places.model.supportedDragActions().testFlag(Qt::MoveAction));
}

void TestRemoteUrlModel::placesOutliveTheFileSystemModel()
{
    RemoteUrlModel model;
    {
        RemoteFileSystemModel files;
        model.setFileSystemModel(&files);
        model.setUrls({QUrl::fromLocalFile(QDir::tempPath())});
    }
    model.refresh();
    model.addUrls({QUrl(q("file:"))});
    QCOMPARE(model.rowCount(), 1);
    QVERIFY(!model.fileSystemModel());
}

QTEST_MAIN(TestRemoteUrlModel)
#include "tst_remoteurlmodel.moc"
