#include <support/faultyfolder.h>
#include <support/literal.h>
#include <support/testcase.h>
#include <support/testgatherer.h>
#include <tul-util-gui/filesystemmodel/sizetext_p.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileIconProvider>
#include <QLocale>
#include <QMessageBox>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include <memory>

using Updates = QList<QPair<QString, QFileInfo>>;

namespace
{

const QString remote = "remote:"_s;

// Names written as in "a b/c", for the many lists of them here.
QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// A model under the item-model tester, on a folder that is also served.
struct Fixture {
    explicit Fixture(const char *files = "", bool isServed = false)
        : base(isServed ? remote : folder.local())
        , factory(base)
        , model(std::make_unique<RemoteFileSystemModel>())
        , tester(std::make_unique<QAbstractItemModelTester>(
              model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest))
        , loaded(model.get(), &RemoteFileSystemModel::directoryLoaded)
    {
        for (const QString &file : words(files))
            make(file);
        model->setReadOnly(false);
    }
    ~Fixture() { tester.reset(); }

    // A name that ends with "/" is that of a directory.
    void make(const QString &name) { QVERIFY(folder.make(name, name.toLatin1())); }
    QString path(const QString &name = {}) const
    {
        return name.isEmpty() ? base : base + QLatin1Char('/') + name;
    }
    QModelIndex index(const char *name = "") const
    {
        return model->index(path(QString::fromLatin1(name)));
    }
    TestGatherer &gatherer() const { return *factory.made(); }

    // Shows the folder and waits until it is listed and sorted.
    bool show()
    {
        model->setRootPath(base);
        return waitForLoaded();
    }
    bool waitForLoaded()
    {
        const bool came = !loaded.isEmpty() || loaded.wait();
        loaded.clear();
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
        return came;
    }
    QString rows(const QModelIndex &parent) const
    {
        QStringList names;
        for (int row = 0; row < model->rowCount(parent); ++row)
            names += model->index(row, 0, parent).data().toString();
        return names.join(QLatin1Char(' '));
    }
    QString rows() const { return rows(index()); }

    // Reports like a gatherer that has found these names in the folder.
    void report(const QStringList &names, const QString &directory = {})
    {
        Updates updates;
        for (const QString &name : names)
            updates.append({name, QFileInfo(path(name))});
        Q_EMIT gatherer().updates(directory.isNull() ? base : directory, updates);
    }

    FaultyFolder folder;
    const QString base;
    const TestGathererFactory factory;
    const std::unique_ptr<RemoteFileSystemModel> model;
    std::unique_ptr<QAbstractItemModelTester> tester;
    QSignalSpy loaded;
};

// Answers the next message box and keeps what it said.
class BoxReader
{
public:
    BoxReader()
    {
        QTimer::singleShot(0, &m_context, [this] {
            if (auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                said = box->windowTitle() + QLatin1Char('|') + box->text();
                box->accept();
            }
        });
    }
    QString said;

private:
    QObject m_context;
};

} // namespace

class tst_RemoteFileSystemModel : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void pathsBecomeNodesAndNodesPaths_data();
    void pathsBecomeNodesAndNodesPaths();
    void settingTheRootMovesListingAndWatch();
    void filteredNodesAppearOnlyWhenTheyBecomeTheRoot();
    void cellsShowNameSizeTypeAndDate();
    void sizesAreCutOffAtTheirUnit_data();
    void sizesAreCutOffAtTheirUnit();
    void renamingMovesTheNode_data();
    void renamingMovesTheNode();
    void unusableNamesAreRefusedWithABox_data();
    void unusableNamesAreRefusedWithABox();
    void renamingADirectoryListsItsChildrenAnew();
    void draggedUrlsLeadBack_data();
    void draggedUrlsLeadBack();
    void droppedFilesAreCopiedMovedAndLinked_data();
    void droppedFilesAreCopiedMovedAndLinked();
    void directoriesAreMadeAndRemoved_data();
    void directoriesAreMadeAndRemoved();
    void removingALinkSparesItsTarget();
    void persistentIndexesFollowTheirFiles();
    void changesAreAnnouncedInRuns();
    void permissionsAskedForMustBeThere();
    void manyScatteredRowsVanishTogether();
    void hugeBatchesArriveInSlicesBeforeTheEnd();
    void strangeReportsAreSurvived();
    void servedListingsCostNoCallsHere();
    void refreshingShowsWhatNobodyReports();
    void iconsAndTypesAreThoseOfTheProvider();
    void hostsProvidersAreAskedForEachFile();
    void unrulyEnginesDoNoHarm_data();
    void unrulyEnginesDoNoHarm();
};

void tst_RemoteFileSystemModel::initTestCase()
{
    qRegisterMetaType<QList<QPersistentModelIndex>>();
    qRegisterMetaType<QAbstractItemModel::LayoutChangeHint>();
}

void tst_RemoteFileSystemModel::pathsBecomeNodesAndNodesPaths_data()
{
    QTest::addColumn<QString>("expected"); // the path again; empty for an invalid index
    QTest::addColumn<int>("depth");
    const auto row = [](const char *path, const char *expected, int depth) {
        QTest::newRow(path) << QString::fromUtf8(expected) << depth;
    };
    row("", "", 0);
    row("My Computer", "", 0);
    row(":/a", "", 0);
    row("/none/a", "", 0);
    row("remote:/none", "", 0);
    row("remote:/D", "", 0);
    row("/", "/", 1);
    row("//usr//lib/", "//usr/lib", 3);
    row("remote:/", "remote:", 1);
    row("remote:/d/e", "remote:/d/e", 3);
}

void tst_RemoteFileSystemModel::pathsBecomeNodesAndNodesPaths()
{
    const QString path = QString::fromUtf8(QTest::currentDataTag());
    QFETCH(QString, expected);
    QFETCH(int, depth);
    const Fixture f("d/e/");
    QModelIndex index = f.model->index(path);
    QCOMPARE(f.model->filePath(index), expected);
    QCOMPARE(f.model->index(path, 2).column(), expected.isEmpty() ? -1 : 2);
    QCOMPARE(f.model->index(f.model->filePath(index)), index);
    for (; depth > 0; --depth)
        index = index.parent();
    QVERIFY(!index.isValid());
    QCOMPARE(f.model->rowCount(), expected.isEmpty() ? 0 : 1);
}

void tst_RemoteFileSystemModel::settingTheRootMovesListingAndWatch()
{
    Fixture f("d/ file");
    QSignalSpy changed(f.model.get(), &RemoteFileSystemModel::rootPathChanged);
    f.model->fetchMore(f.index()); // nothing is listed before a root is set
    QVERIFY(!f.model->canFetchMore({}) && f.gatherer().requests.isEmpty());
    QVERIFY(f.show());
    QVERIFY(!f.model->canFetchMore(f.index()) && !f.model->canFetchMore(f.index("file")));
    for (const char *const unusable : {"d/..", "none", "file"})
        QCOMPARE(f.model->setRootPath(f.path(QString::fromUtf8(unusable))), f.index());
    QCOMPARE(f.gatherer().requests.count(f.base + QLatin1Char('|')), 1);
    QCOMPARE(changed.size(), 1);

    QCOMPARE(f.model->setRootPath(f.path("d/"_s)), f.index("d"));
    QCOMPARE(f.gatherer().unwatched, QStringList{f.base});
    QVERIFY(f.model->canFetchMore(f.index()));
    QVERIFY(f.waitForLoaded());
    QCOMPARE(f.model->setRootPath({}), QModelIndex());
    f.model->setRootPath({});
    QCOMPARE(f.model->rootPath(), QString());
    QVERIFY(f.gatherer().requests.contains("|"_s));
    QCOMPARE(changed.size(), 3);
    QCOMPARE(f.model->setRootPath(f.base), f.index());
    QVERIFY(f.waitForLoaded());
    QCOMPARE(f.gatherer().unwatched.size(), 2); // none for the level of the drives
    QCOMPARE(f.rows(), "d file"_s);
    f.model->setNameFilters({"*.c"_s});
    QCOMPARE(f.model->rootDirectory().nameFilters(), QStringList{"*.c"_s});
    QCOMPARE(f.model->rootDirectory().filter(), f.model->filter());
}

void tst_RemoteFileSystemModel::filteredNodesAppearOnlyWhenTheyBecomeTheRoot()
{
    Fixture f(".hidden/x .other/ b");
    QVERIFY(f.index(".other").isValid()); // was not known to be hidden
    QVERIFY(f.show());
    QCOMPARE(f.rows(), ".other b"_s);
    QVERIFY(!f.index(".hidden").isValid());
    const QModelIndex hidden = f.model->setRootPath(f.path(".hidden"_s));
    QCOMPARE(hidden.data().toString(), ".hidden"_s);
    QVERIFY(f.waitForLoaded());
    QCOMPARE(f.rows(hidden), "x"_s);
    QCOMPARE(f.rows(), ".hidden .other b"_s);
}

void tst_RemoteFileSystemModel::cellsShowNameSizeTypeAndDate()
{
    Fixture f("d/ a.txt");
    QVERIFY(f.show());
    const QModelIndex file = f.index("a.txt");
    const auto data = [&](int column, int role) { return file.siblingAtColumn(column).data(role); };
    QCOMPARE(data(1, Qt::DisplayRole).toString(), "5 bytes"_s);
    QCOMPARE(f.index("d").siblingAtColumn(1).data().toString(), QString());
    QCOMPARE(data(0, Qt::EditRole).toString(), "a.txt"_s);
    QCOMPARE(data(1, Qt::TextAlignmentRole).toInt(), int(Qt::AlignRight));
    QCOMPARE(data(3, 257).toString(), QLatin1Char('/') + f.path("a.txt"_s));
    QCOMPARE(data(3, 258).toString(), "a.txt"_s);
    for (const int role : {int(Qt::TextAlignmentRole), int(Qt::ToolTipRole), 256, 260})
        QVERIFY(!data(0, role).isValid());
    QVERIFY(!data(1, Qt::DecorationRole).isValid() && data(0, Qt::DecorationRole).isValid());
    QVERIFY(f.model->isDir({}) && !f.model->lastModified({}).isValid());
    QCOMPARE(f.model->roleNames().value(Qt::DecorationRole), QByteArray("fileIcon"));
    QCOMPARE(f.model->roleNames().value(259), QByteArray("filePermissions"));
    announceWarning("data: invalid display value column 4"_s);
    QVERIFY(!f.model->index(f.path("d"_s), 4).data().isValid());

    QStringList headers;
    for (int section = 0; section < 5; ++section)
        headers += f.model->headerData(section, Qt::Horizontal).toString();
    QCOMPARE(headers.join(QLatin1Char('|')), "Name|Size|Type|Date Modified|"_s);
    QCOMPARE(f.model->headerData(3, Qt::Vertical, Qt::TextAlignmentRole).toInt(), 1);
    const auto spacer = f.model->headerData(0, Qt::Horizontal, Qt::DecorationRole).value<QImage>();
    QCOMPARE(spacer.size(), QSize(16, 1));
    QCOMPARE(spacer.pixelColor(5, 0).alpha(), 0);
}

void tst_RemoteFileSystemModel::sizesAreCutOffAtTheirUnit_data()
{
    QTest::addColumn<qint64>("bytes");
    const auto row = [](qint64 bytes, const char *text) { QTest::newRow(text) << bytes; };
    const qint64 kilo = 1024;
    row(-1, "-1 bytes");
    row(0, "0 bytes");
    row(1023, "1023 bytes");
    row(1536, "1 KB");
    row(kilo * kilo - 1, "1023 KB");
    row(kilo * kilo, "1.0 MB");
    row(kilo * kilo * kilo - 1, "1024.0 MB");
    row(kilo * kilo * kilo, "1.00 GB");
    row(kilo * kilo * kilo * kilo, "1.000 TB");
    row(std::numeric_limits<qint64>::max(), "8388608.000 TB");
}

void tst_RemoteFileSystemModel::sizesAreCutOffAtTheirUnit()
{
    QFETCH(qint64, bytes);
    const QString text = tul::sizeText(bytes, QLocale(QLocale::English));
    QCOMPARE(text, QString::fromUtf8(QTest::currentDataTag()));
}

void tst_RemoteFileSystemModel::renamingMovesTheNode_data()
{
    QTest::addColumn<bool>("isServed");
    QTest::newRow("local") << false;
    QTest::newRow("served") << true;
}

void tst_RemoteFileSystemModel::renamingMovesTheNode()
{
    QFETCH(bool, isServed);
    Fixture f("a b c", isServed);
    QVERIFY(f.show());
    QSignalSpy renamed(f.model.get(), &RemoteFileSystemModel::fileRenamed);
    const QPersistentModelIndex index = f.index("a");
    QVERIFY(f.model->setData(index, "a"_s)); // nothing to do
    QVERIFY(!f.model->setData(index, "x"_s, Qt::DisplayRole));
    QVERIFY(!f.model->setData(index.sibling(0, 1), "x"_s));
    QVERIFY(f.model->setData(index, "z"_s));
    QCOMPARE(renamed.takeFirst(), (QVariantList{f.model->filePath(f.index()), "a"_s, "z"_s}));
    QTRY_COMPARE(f.rows(), "b c z"_s);
    QCOMPARE(index.data().toString(), "z"_s);
    QCOMPARE(index.row(), 2);
    QVERIFY(QFile::exists(f.folder.local("z"_s)));
    QVERIFY(!f.index("a").isValid());
    QCOMPARE(f.model->fileInfo(index).fileName(), "z"_s);
}

void tst_RemoteFileSystemModel::unusableNamesAreRefusedWithABox_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isTop");
    QTest::newRow("empty") << QString() << false;
    QTest::newRow("slash") << "x/y"_s << false;
    QTest::newRow("taken") << "b"_s << false;
    QTest::newRow("top") << "x"_s << true;
}

void tst_RemoteFileSystemModel::unusableNamesAreRefusedWithABox()
{
    QFETCH(QString, name);
    QFETCH(bool, isTop);
    Fixture f("a b", true);
    QVERIFY(f.show());
    const BoxReader box;
    QVERIFY(!f.model->setData(f.index(isTop ? "" : "a"), name));
    QCOMPARE(box.said.section(QLatin1Char('|'), 0, 0), "Invalid filename"_s);
    QVERIFY(box.said.contains("<b>The name \"%1\" can not be used.</b><p>Try"_s.arg(name)));
    QCOMPARE(f.rows(), "a b"_s);
    QCOMPARE(QFileInfo(f.folder.local("b"_s)).size(), 1);
}

void tst_RemoteFileSystemModel::renamingADirectoryListsItsChildrenAnew()
{
    Fixture f("d/x");
    QVERIFY(f.show());
    QTRY_COMPARE(f.rows(f.index("d")), "x"_s); // fetched by the tester
    QVERIFY(f.model->setData(f.index("d"), "e"_s));
    QTRY_COMPARE(f.rows(f.index("e")), "x"_s);
    QCOMPARE(f.model->fileInfo(f.index("e/x")).filePath(), f.path("e/x"_s));
    QVERIFY(f.gatherer().unwatched.contains(f.path("d"_s)));
}

void tst_RemoteFileSystemModel::draggedUrlsLeadBack_data()
{
    QTest::addColumn<QString>("url");
    QTest::newRow("/usr") << "file:///usr"_s;
    QTest::newRow("/usr/lib") << "file://usr/lib"_s; // by design
    QTest::newRow("remote:") << "file:remote:"_s;
    QTest::newRow("remote:/D/50% a#b?c") << "file:remote:/D/50%25 a%23b%3Fc"_s;
}

void tst_RemoteFileSystemModel::draggedUrlsLeadBack()
{
    const QString path = QString::fromUtf8(QTest::currentDataTag());
    Fixture f;
    f.make("D/50% a#b?c"_s);
    const QModelIndex index = f.model->index(path);
    const std::unique_ptr<QMimeData> data(f.model->mimeData({index, index.siblingAtColumn(1)}));
    QCOMPARE(data->formats(), f.model->mimeTypes());
    QCOMPARE(data->urls().size(), 1);
    QTEST(data->urls().constFirst().toString(), "url");
    QCOMPARE(QDir::cleanPath(data->urls().constFirst().toLocalFile()), path);
}

void tst_RemoteFileSystemModel::droppedFilesAreCopiedMovedAndLinked_data()
{
    QTest::addColumn<int>("action");
    QTest::addColumn<QString>("dropped");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QString>("top");
    QTest::addColumn<QString>("target");
    const auto row = [](const char *name, Qt::DropAction action, const char *dropped, bool result,
                        const char *top, const char *target) {
        QTest::newRow(name) << int(action) << QString::fromUtf8(dropped) << result
                            << QString::fromUtf8(top) << QString::fromUtf8(target);
    };
    row("copy", Qt::CopyAction, "a b", true, "d a b", "a b c");
    row("move", Qt::MoveAction, "a b", true, "d", "a b c");
    row("link", Qt::LinkAction, "a", true, "d a b", "a c");
    row("taken, missing, directory", Qt::CopyAction, "d/c none d b", false, "d a b", "b c");
    row("refused", Qt::IgnoreAction, "a", false, "d a b", "c");
}

void tst_RemoteFileSystemModel::droppedFilesAreCopiedMovedAndLinked()
{
    QFETCH(int, action);
    QFETCH(QString, dropped);
    QFETCH(bool, result);
    QFETCH(QString, top);
    QFETCH(QString, target);
    for (const bool isServed : {false, true}) {
        Fixture f("d/c a b", isServed);
        QVERIFY(f.show());
        QList<QUrl> urls;
        for (const QString &name : dropped.split(QLatin1Char(' ')))
            urls.append(QUrl::fromLocalFile(f.path(name)));
        QMimeData data;
        data.setUrls(urls);
        const auto drop = [&](const QModelIndex &parent) {
            return f.model->dropMimeData(&data, Qt::DropAction(action), 3, 2, parent);
        };
        QCOMPARE(drop(f.index("d")), result);
        QTRY_COMPARE(f.rows(f.index("d")), target);
        QTRY_COMPARE(f.rows(), top);
        QVERIFY(!drop({}));
        f.model->setReadOnly(true);
        QVERIFY(!drop(f.index("d")));
    }
}

void tst_RemoteFileSystemModel::directoriesAreMadeAndRemoved_data()
{
    renamingMovesTheNode_data();
}

void tst_RemoteFileSystemModel::directoriesAreMadeAndRemoved()
{
    QFETCH(bool, isServed);
    Fixture f("d/e/x d/y k", isServed);
    QVERIFY(f.show());
    const QModelIndex made = f.model->mkdir(f.index(), "new"_s);
    QCOMPARE(f.model->filePath(made), f.model->filePath(f.index()) + "/new"_s);
    QVERIFY(f.model->isDir(made));
    QTRY_COMPARE(f.rows(), "d new k"_s);
    QVERIFY(!f.model->mkdir(f.index(), "new"_s).isValid());
    QVERIFY(!f.model->mkdir(f.index(), QString()).isValid());
    QVERIFY(!f.model->mkdir({}, "x"_s).isValid());
    QCOMPARE(f.model->mkdir(f.index(), "new/sub"_s).parent(), f.index("new"));

    QVERIFY(!f.model->rmdir(f.index("d"))); // not empty
    QVERIFY(f.model->rmdir(f.index("new/sub")) && f.model->rmdir(f.index("new")));
    QTRY_COMPARE(f.rows(), "d k"_s);
    QVERIFY(f.model->remove(f.index("d")));
    QVERIFY(f.model->remove(f.index("k")));
    QTRY_COMPARE(f.rows(), QString());
    QVERIFY(!QFile::exists(f.folder.local("d"_s)));
    QVERIFY(!f.model->remove({}) && !f.model->rmdir({}));
    QVERIFY(f.gatherer().unwatched.contains(f.path("d/e"_s)));
}

void tst_RemoteFileSystemModel::removingALinkSparesItsTarget()
{
    Fixture f("target/x d/y kept/e/.hidden kept/f", true);
    const QString target = f.folder.local("target"_s);
    QVERIFY(QFile::link(target, f.folder.local("d/below"_s)));
    QVERIFY(QFile::link(target, f.folder.local("link"_s)));
    QVERIFY(f.show());
    QVERIFY(f.model->remove(f.index("link")) && f.model->remove(f.index("d")));
    QVERIFY(f.model->remove(f.index("kept"))); // of what is in it only a part can be removed
    QVERIFY(!f.model->remove(f.index("kept")));
    QTRY_COMPARE(f.rows(), "kept target"_s);
    QTRY_COMPARE(f.rows(f.index("kept")), "e"_s);
    QVERIFY(QFile::exists(target + "/x"_s));
}

void tst_RemoteFileSystemModel::persistentIndexesFollowTheirFiles()
{
    Fixture f("d/x b c a10 a2");
    QVERIFY(f.show());
    QTRY_VERIFY(f.model->rowCount(f.index("d")) == 1);
    const QPersistentModelIndex file = f.index("c");
    const QPersistentModelIndex cell = f.index("b").siblingAtColumn(2);
    const QPersistentModelIndex below = f.index("d/x");
    QSignalSpy layouts(f.model.get(), &QAbstractItemModel::layoutChanged);
    f.model->sort(0, Qt::DescendingOrder);
    QCOMPARE(layouts.size(), 1);
    f.model->sort(0, Qt::DescendingOrder);
    f.model->sort(4, Qt::AscendingOrder);
    QCOMPARE(layouts.size(), 1);
    QCOMPARE(f.rows().section(QLatin1Char(' '), -1), "d"_s);
    QCOMPARE(file.data().toString(), "c"_s);
    QCOMPARE(QModelIndex(cell), f.index("b").siblingAtColumn(2));

    f.model->setFilter(QDir::Files); // the directory goes, and what is below with it
    QTRY_COMPARE(f.rows().count(QLatin1Char(' ')), 3);
    QVERIFY(!below.isValid());
    QCOMPARE(file, f.index("c"));
    f.model->setNameFilters({"A*"_s});
    QCOMPARE(f.model->rowCount(f.index()), 4); // greyed
    f.model->setNameFilterDisables(false);
    QTRY_COMPARE(f.model->rowCount(f.index()), 2);
    QVERIFY(!file.isValid());
    f.model->setFilter(QDir::Files | QDir::CaseSensitive);
    QTRY_COMPARE(f.rows(), QString());
    f.model->setNameFilters({});
    QTRY_COMPARE(f.model->rowCount(f.index()), 4);
}

void tst_RemoteFileSystemModel::changesAreAnnouncedInRuns()
{
    Fixture f("a b c d e");
    QVERIFY(f.show());
    f.gatherer().works = false;
    QSignalSpy changed(f.model.get(), &QAbstractItemModel::dataChanged);
    f.report(words("a b c d e"));
    QCOMPARE(changed.size(), 0);
    for (const char *const name : {"b", "c", "e"})
        f.folder.make(QString::fromLatin1(name), "longer");
    f.report(words("e d c b a c"));
    QCOMPARE(changed.size(), 2);
    QCOMPARE(changed.at(0).at(0).toModelIndex(), f.index("b"));
    QCOMPARE(changed.at(0).at(1).toModelIndex(), f.index("c").siblingAtColumn(3));
    QCOMPARE(changed.at(1).at(0).toModelIndex(), f.index("e"));
    QCOMPARE(f.model->size(f.index("e")), 6);
    QVERIFY(QFile::remove(f.folder.local("b"_s)));
    f.make("b/"_s);
    f.report(words("b"));
    QTRY_COMPARE(f.rows(), "b a c d e"_s);
}

void tst_RemoteFileSystemModel::permissionsAskedForMustBeThere()
{
    Fixture f("a b d/");
    QVERIFY(QFile::setPermissions(f.folder.local("b"_s), QFileDevice::Permissions(0x7700)));
    f.model->setFilter(f.model->filter() | QDir::Executable);
    QVERIFY(f.show());
    QCOMPARE(f.rows(), "d b"_s);
    f.model->setFilter(f.model->filter() | QDir::Readable | QDir::Writable); // all are none
    QTRY_COMPARE(f.rows(), "d a b"_s);
}

void tst_RemoteFileSystemModel::manyScatteredRowsVanishTogether()
{
    Fixture f;
    QStringList odd;
    for (int i = 0; i < 200; ++i) {
        const QString name = "f%1"_s.arg(1000 + i);
        f.make(name);
        if (i % 2 == 1)
            odd += name;
    }
    QVERIFY(f.show());
    f.gatherer().works = false;
    const QPersistentModelIndex stays = f.index("f1151");
    const QPersistentModelIndex goes = f.index("f1150");
    QSignalSpy layouts(f.model.get(), &QAbstractItemModel::layoutChanged);
    Q_EMIT f.gatherer().newListOfFiles(f.base, odd);
    QCOMPARE(f.rows(), odd.join(QLatin1Char(' ')));
    QCOMPARE(layouts.size(), 1);
    QCOMPARE(stays.row(), 75);
    QVERIFY(!goes.isValid());
}

void tst_RemoteFileSystemModel::hugeBatchesArriveInSlicesBeforeTheEnd()
{
    Fixture f("x");
    f.tester.reset(); // looks at all rows for each slice
    QVERIFY(f.show());
    f.gatherer().works = false;
    const QFileInfo info(f.folder.local("x"_s));
    Updates updates;
    QStringList names;
    for (int i = 0; i < 100000; ++i) {
        names += "n%1"_s.arg((i * 7919) % 100000);
        updates.append({names.last(), info});
    }
    QSignalSpy inserted(f.model.get(), &QAbstractItemModel::rowsInserted);
    Q_EMIT f.gatherer().updates(f.base, updates);
    Q_EMIT f.gatherer().directoryLoaded(f.base);
    Q_EMIT f.gatherer().newListOfFiles(f.base, names);
    QVERIFY(f.model->rowCount(f.index()) < 100000);
    QVERIFY(f.loaded.isEmpty());
    f.model->sort(0, Qt::DescendingOrder);
    QTRY_COMPARE(f.loaded.size(), 1);
    QVERIFY(inserted.size() > 1);
    QTRY_COMPARE(f.model->index(0, 0, f.index()).data().toString(), "n99999"_s);
    QCOMPARE(f.model->rowCount(f.index()), 100000); // "x" is not in the list
}

void tst_RemoteFileSystemModel::strangeReportsAreSurvived()
{
    Fixture f("a b sub/x");
    QVERIFY(f.show());
    f.gatherer().works = false;
    f.report({"a"_s, "a"_s, QString(), "sub/x"_s, "none"_s});
    f.report(words("a"), "/nowhere"_s);
    QCOMPARE(f.rows(), "sub a b"_s);
    QVERIFY(QFile::remove(f.folder.local("b"_s)));
    f.report(words("b b")); // has vanished before it was inspected
    QCOMPARE(f.rows(), "sub a"_s);
    f.make("b"_s);
    f.report(words("b b"));
    QCOMPARE(f.rows(), "sub a b"_s);

    // A receiver that makes rows and drops others.
    connect(f.model.get(), &QAbstractItemModel::rowsInserted, f.model.get(), [&] {
        f.index("late");
        Q_EMIT f.gatherer().newListOfFiles(f.base, words("new late"));
    });
    f.make("new"_s);
    f.make("late"_s);
    f.report(words("new a b"));
    QTRY_COMPARE(f.rows(), "late new"_s);
    Q_EMIT f.gatherer().nameResolved(f.path(), "x"_s);

    // A receiver that deletes the model.
    auto *const model = new RemoteFileSystemModel;
    connect(model, &RemoteFileSystemModel::directoryLoaded, model, [model] { delete model; });
    Q_EMIT f.gatherer().directoryLoaded(f.base);
}

void tst_RemoteFileSystemModel::servedListingsCostNoCallsHere()
{
    Fixture f("d/ a.txt b noext", true);
    QVERIFY(f.show());
    QCOMPARE(f.rows(), "d a.txt b noext"_s);
    f.folder.forgetCalls();
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            const QModelIndex index = f.model->index(row, column, f.index());
            QVERIFY(index.data().isValid());
            QVERIFY(index.flags().testFlag(Qt::ItemIsEnabled));
            QCOMPARE(index.data(Qt::DecorationRole).isValid(), column == 0);
        }
    }
    f.model->sort(3, Qt::DescendingOrder);
    f.model->setFilter(f.model->filter() | QDir::Writable);
    f.model->sort(2);
    QCOMPARE(f.folder.calls(true), 0);
}

void tst_RemoteFileSystemModel::refreshingShowsWhatNobodyReports()
{
    Fixture f("a", true);
    QVERIFY(f.show());
    f.make("b"_s);
    f.model->refresh(f.index());
    QTRY_COMPARE(f.rows(), "a b"_s);
    QVERIFY(QFile::remove(f.folder.local("a"_s)));
    f.model->refresh(f.index("b")); // no directory
    f.model->refresh(f.index());
    QTRY_COMPARE(f.rows(), "b"_s);
    f.model->refresh({});
    QCOMPARE(f.gatherer().requests.last(), "|"_s);
}

void tst_RemoteFileSystemModel::iconsAndTypesAreThoseOfTheProvider()
{
    Fixture f("d/ a.txt B.TXT c.C c.c README noext x.tar.gz odd.xyzzy .txt CMakeLists.txt");
    QVERIFY(QFile::link(f.folder.local("a.txt"_s), f.folder.local("l.txt"_s)));
    QVERIFY(QFile::link("/none"_s, f.folder.local("broken"_s)));
    f.model->setFilter(QDir::AllEntries | QDir::System | QDir::Hidden);
    QVERIFY(f.show());
    const QFileIconProvider provider;
    QCOMPARE(f.model->rowCount(f.index()), 15); // with the dots
    for (int row = 0; row < 15; ++row) {
        const QModelIndex index = f.model->index(row, 0, f.index());
        const QFileInfo info = f.model->fileInfo(index);
        QCOMPARE(f.model->type(index), provider.type(info));
        const QIcon own = provider.icon(info);
        const QIcon icon = own.isNull() ? provider.icon(QFileIconProvider::File) : own;
        QCOMPARE(f.model->fileIcon(index).pixmap(16).toImage(), icon.pixmap(16).toImage());
    }
}

void tst_RemoteFileSystemModel::hostsProvidersAreAskedForEachFile()
{
    class Provider : public QFileIconProvider
    {
    public:
        QString type(const QFileInfo &info) const override { return info.fileName().toUpper(); }
        QIcon icon(const QFileInfo &) const override { return {}; }
    } provider;
    Fixture f("a.txt b.txt");
    QVERIFY(f.show());
    QVERIFY(f.model->type(f.index("a.txt")) != "A.TXT"_s);
    f.model->setIconProvider(&provider);
    QCOMPARE(f.model->type(f.index("a.txt")), "A.TXT"_s);
    QCOMPARE(f.model->type(f.index("b.txt")), "B.TXT"_s);
    f.model->setIconProvider(nullptr);
    QVERIFY(f.model->fileIcon(f.index("a.txt")).isNull());
    QVERIFY(!f.model->myComputer(Qt::DecorationRole).isValid());
}

void tst_RemoteFileSystemModel::unrulyEnginesDoNoHarm_data()
{
    QTest::addColumn<QString>("files");
    QTest::newRow("ghosts") << "a b"_s;
    QTest::newRow("broken") << "a b"_s;
    QTest::newRow("odd names") << "%n %s back\\slash new\nline ä"_s;
    QTest::newRow("endless") << QString();
}

void tst_RemoteFileSystemModel::unrulyEnginesDoNoHarm()
{
    const auto isKind = [](const char *tag) { return qstrcmp(tag, QTest::currentDataTag()) == 0; };
    QFETCH(QString, files);
    Fixture f("", true);
    for (const QString &name : files.split(QLatin1Char(' '), Qt::SkipEmptyParts))
        f.make(name);
    if (isKind("endless")) {
        f.tester.reset();
        f.folder.endless = true;
        f.model->setRootPath(remote);
        QTRY_VERIFY(f.gatherer().added.available() > 0);
        return; // the model goes while the listing runs
    }
    if (isKind("ghosts"))
        f.folder.setGhosts({"ghost"_s, "a"_s, "x/y"_s, "."_s});
    QVERIFY(f.show());
    if (isKind("broken")) {
        f.folder.broken = true;
        f.model->refresh(f.index());
        QVERIFY(f.waitForLoaded());
        QVERIFY(!f.model->remove(f.index("a")));
        QVERIFY(!f.model->mkdir(f.index(), "c"_s).isValid());
    }
    QStringList found = f.rows().split(QLatin1Char(' '));
    found.sort();
    QCOMPARE(found.join(QLatin1Char(' ')), files);
    for (int row = 0; row < f.model->rowCount(f.index()); ++row) {
        const QModelIndex index = f.model->index(row, 0, f.index());
        QCOMPARE(f.model->index(f.model->filePath(index)), index);
    }
}

QTEST_MAIN(tst_RemoteFileSystemModel)

#include "tst_remotefilesystemmodel.moc"
