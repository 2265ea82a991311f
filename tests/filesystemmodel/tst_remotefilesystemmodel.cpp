#include <support/faultyfolder.h>
#include <support/literal.h>
#include <support/modalsteps.h>
#include <support/testcase.h>
#include <support/testgatherer.h>
#include <tul-util-gui/filesystemmodel/sizetext_p.h>

#include <QAbstractItemModelTester>
#include <QDir>
#include <QFile>
#include <QFileIconProvider>
#include <QFileSystemWatcher>
#include <QLocale>
#include <QMessageBox>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include <filesystem>
#include <functional>
#include <memory>
#include <utility>

using Updates = QList<QPair<QString, QFileInfo>>;

namespace
{

// Names written as in "a b/c", for the many lists of them here.
QStringList words(const char *text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

// A model under the item-model tester, on a folder that is also served.
struct Fixture {
    explicit Fixture(const char *files = "", bool isServed = false)
        : base(isServed ? "remote:"_s : folder.local())
        , tester(std::make_unique<QAbstractItemModelTester>(
              model.get(), QAbstractItemModelTester::FailureReportingMode::QtTest))
    {
        for (const QString &file : words(files))
            make(file);
        model->setReadOnly(false);
    }

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
        return waitForLoaded(base);
    }
    // The tester has other directories listed as well, at any time.
    bool waitForLoaded(const QString &directory)
    {
        while (!loaded.contains({directory})) {
            if (!loaded.wait())
                return false;
        }
        loaded.clear();
        for (int turn = 0; turn < 5; ++turn)
            QCoreApplication::processEvents();
        return true;
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
    const TestGathererFactory factory{base};
    std::unique_ptr<RemoteFileSystemModel> model = std::make_unique<RemoteFileSystemModel>();
    std::unique_ptr<QAbstractItemModelTester> tester;
    QSignalSpy loaded{model.get(), &RemoteFileSystemModel::directoryLoaded};
};

// One that shows its folder already.
struct Shown : Fixture {
    explicit Shown(const char *files, bool isServed = false)
        : Fixture(files, isServed)
    {
        QVERIFY(show());
    }
};

// One that hears of its folder only what the test reports from now on.
struct Frozen : Shown {
    explicit Frozen(const char *files, bool isServed = false)
        : Shown(files, isServed)
    {
        gatherer().works = false;
    }
};

} // namespace

class tst_RemoteFileSystemModel : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void pathsBecomeNodesAndNodesPaths();
    void settingTheRootMovesListingAndWatch();
    void directoriesThatWereLeftAreNotWatched();
    void filteredNodesAppearOnlyWhenTheyBecomeTheRoot();
    void cellsShowNameSizeTypeAndDate();
    void sizesAreCutOffAtTheirUnit();
    void renamingMovesTheNode();
    void unusableNamesAreRefusedWithABox();
    void draggedUrlsLeadBack();
    void droppedFilesAreCopiedMovedAndLinked();
    void directoriesAreMadeAndRemoved();
    void listingsBegunBeforeLeaveAloneWhatTheModelMade();
    void removingALinkSparesItsTarget();
    void persistentIndexesFollowTheirFiles();
    void changesAreAnnouncedInRuns();
    void aDirectoryOfTheSameNameIsListedAnew();
    void aDirectoryListedAnewMissesNothingAndIsTheOnlyOne();
    void permissionsAskedForMustBeThere();
    void manyScatteredRowsVanishTogether();
    void hugeBatchesArriveInSlicesBeforeTheEnd();
    void strangeReportsAreSurvived();
    void receiversMayBringBackWhatGoesAndSortTheRest();
    void receiversMayDeleteTheModel();
    void servedListingsCostNoCallsHere();
    void iconsAndTypesAreThoseOfTheProvider();
    void hostsProvidersAreAskedForEachFile();
    void unrulyEnginesDoNoHarm();
};

void tst_RemoteFileSystemModel::initTestCase()
{
    qRegisterMetaType<QList<QPersistentModelIndex>>();
    qRegisterMetaType<QAbstractItemModel::LayoutChangeHint>();
}

void tst_RemoteFileSystemModel::pathsBecomeNodesAndNodesPaths()
{
    const struct {
        const char *path;
        const char *expected; // the path again; empty for an invalid index
        int depth;
    } cases[] = {{"", "", 0},
                 {"My Computer", "", 0},
                 {":/a", "", 0},
                 {"/none/a", "", 0},
                 {"remote:/none", "", 0},
                 {"remote:/D", "", 0},
                 {"/", "/", 1},
                 {"//usr//lib/", "//usr/lib", 3},
                 {"remote:/", "remote:", 1},
                 {"remote:/../..", "remote:", 1}, // no way to this machine
                 {"remote:/../d/x/../e", "remote:/d/e", 3},
                 {"remote:/d/e", "remote:/d/e", 3}};
    for (const auto &each : cases) {
        const Fixture f("d/e/");
        const QString expected = QString::fromUtf8(each.expected);
        QModelIndex index = f.model->index(QString::fromUtf8(each.path), 0);
        QCOMPARE(f.model->filePath(index), expected);
        QCOMPARE(f.model->index(expected, 2).column(), expected.isEmpty() ? -1 : 2);
        QCOMPARE(f.model->index(expected), index);
        for (int depth = each.depth; depth > 0; --depth)
            index = index.parent();
        QVERIFY(!index.isValid());
        QCOMPARE(f.model->rowCount(), expected.isEmpty() ? 0 : 1);
    }
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
    QVERIFY(f.waitForLoaded(f.path("d"_s)));
    QCOMPARE(f.model->setRootPath({}), QModelIndex());
    f.model->setRootPath({});
    QCOMPARE(f.model->rootPath(), QString());
    QVERIFY(f.gatherer().requests.contains("|"_s));
    QCOMPARE(changed.size(), 3);
    QVERIFY(f.show());
    QCOMPARE(f.gatherer().unwatched.size(), 2); // none for the level of the drives
}

void tst_RemoteFileSystemModel::directoriesThatWereLeftAreNotWatched()
{
    Fixture f("a/ b/");
    f.tester.reset(); // would have others listed
    QVERIFY(QDir::setCurrent(f.base));
    for (const QString &left : {f.path("a"_s), "a"_s}) {
        f.model->setRootPath(left); // is listed after it was left
        f.model->setRootPath(f.path("b"_s));
        QVERIFY(f.waitForLoaded(f.path("b"_s)));
        QCOMPARE(f.gatherer().findChild<QFileSystemWatcher *>()->directories(),
                 QStringList{f.path("b"_s)});
        QVERIFY(f.model->canFetchMore(f.index("a")));
    }
    QVERIFY(QDir::setCurrent(QDir::rootPath()));
}

void tst_RemoteFileSystemModel::filteredNodesAppearOnlyWhenTheyBecomeTheRoot()
{
    Fixture f(".hidden/x .other/ b");
    QVERIFY(f.index(".other").isValid()); // was not known to be hidden
    QVERIFY(f.show());
    QCOMPARE(f.rows(), ".other b"_s);
    QVERIFY(!f.index(".hidden").isValid());
    QCOMPARE(f.model->setRootPath(f.path(".hidden"_s)).data().toString(), ".hidden"_s);
    QVERIFY(f.waitForLoaded(f.path(".hidden"_s)));
    QCOMPARE(f.rows(f.index(".hidden")), "x"_s);
    QCOMPARE(f.rows(), ".hidden .other b"_s);
    f.model->setNameFilterDisables(false);
    f.model->setNameFilters({"none"_s}); // what was asked for before is filtered again
    QTRY_COMPARE(f.rows(), ".hidden"_s);
}

void tst_RemoteFileSystemModel::cellsShowNameSizeTypeAndDate()
{
    Shown f("d/ a.txt");
    const QModelIndex file = f.index("a.txt");
    const auto data = [&](int column, int role) { return file.siblingAtColumn(column).data(role); };
    QCOMPARE(data(1, Qt::DisplayRole).toString(), "5 bytes"_s);
    QCOMPARE(f.index("d").siblingAtColumn(1).data().toString(), QString());
    QCOMPARE(data(1, Qt::TextAlignmentRole).toInt(), int(Qt::AlignRight));
    QCOMPARE(data(3, 257).toString(), QLatin1Char('/') + f.path("a.txt"_s));
    QCOMPARE(data(3, 258).toString(), "a.txt"_s);
    for (const int role : {int(Qt::TextAlignmentRole), int(Qt::ToolTipRole), 256, 260})
        QVERIFY(!data(0, role).isValid());
    QVERIFY(f.model->isDir({}) && !f.model->lastModified({}).isValid());
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

void tst_RemoteFileSystemModel::sizesAreCutOffAtTheirUnit()
{
    const qint64 kilo = 1024;
    const QVector<QPair<qint64, QString>> sizes{
        {1023, "1023 bytes"_s},
        {1536, "1 KB"_s},
        {kilo * kilo - 1, "1023 KB"_s},
        {kilo * kilo, "1.0 MB"_s},
        {kilo * kilo * kilo - 1, "1024.0 MB"_s},
        {kilo * kilo * kilo, "1.00 GB"_s},
        {kilo * kilo * kilo * kilo, "1.000 TB"_s},
        {std::numeric_limits<qint64>::max(), "8388608.000 TB"_s}};
    for (const auto &[bytes, text] : sizes)
        QCOMPARE(tul::sizeText(bytes, QLocale(QLocale::English)), text);
}

void tst_RemoteFileSystemModel::renamingMovesTheNode()
{
    for (const bool isServed : {false, true}) {
        Shown f("a/x b c", isServed);
        QTRY_COMPARE(f.rows(f.index("a")), "x"_s); // fetched by the tester
        QSignalSpy renamed(f.model.get(), &RemoteFileSystemModel::fileRenamed);
        const QPersistentModelIndex index = f.index("c");
        QVERIFY(f.model->setData(index, "c"_s)); // nothing to do
        QVERIFY(!f.model->setData(index, "x"_s, Qt::DisplayRole));
        QVERIFY(!f.model->setData(index.sibling(0, 1), "x"_s));
        QVERIFY(f.model->setData(index, "0"_s) && f.model->setData(f.index("a"), "z"_s));
        QCOMPARE(renamed.takeFirst(), (QVariantList{f.model->filePath(f.index()), "c"_s, "0"_s}));
        QTRY_COMPARE(f.rows(), "z 0 b"_s);
        QCOMPARE(index.data().toString(), "0"_s);
        QCOMPARE(index.row(), 1);
        QVERIFY(QFile::exists(f.folder.local("0"_s)) && !f.index("c").isValid());
        QCOMPARE(f.model->fileInfo(index).fileName(), "0"_s);
        QTRY_COMPARE(f.rows(f.index("z")), "x"_s); // listed anew
        QCOMPARE(f.model->fileInfo(f.index("z/x")).filePath(), f.path("z/x"_s));
        QVERIFY(f.gatherer().unwatched.contains(f.path("a"_s)));
    }
}

void tst_RemoteFileSystemModel::unusableNamesAreRefusedWithABox()
{
    Shown f("a b", true);
    for (const QString &name : {QString(), "x/y"_s, "b"_s, "top"_s}) {
        QString said;
        const ModalSteps box({ModalSteps::with<QMessageBox>([&](QMessageBox *shown) {
            said = shown->windowTitle() + shown->text();
            shown->accept();
        })});
        QVERIFY(!f.model->setData(f.index(name == "top"_s ? "" : "a"), name));
        const QString text = "Invalid filename<b>The name \"%1\" can not be used.</b><p>Try using "
                             "another name, with fewer characters or no punctuations marks."_s;
        QCOMPARE(said, text.arg(name));
        QCOMPARE(f.rows(), "a b"_s);
    }
    QCOMPARE(QFileInfo(f.folder.local("b"_s)).size(), 1);
}

void tst_RemoteFileSystemModel::draggedUrlsLeadBack()
{
    Fixture f;
    f.make("D/50% a#b?c"_s);
    const QVector<QPair<QString, QString>> paths{
        {"/usr"_s, "file:///usr"_s},
        {"/usr/lib"_s, "file://usr/lib"_s}, // by design
        {"remote:"_s, "file:remote:"_s},
        {"remote:/D/50% a#b?c"_s, "file:remote:/D/50%25 a%23b%3Fc"_s}};
    for (const auto &[path, url] : paths) {
        const QModelIndex index = f.model->index(path);
        const std::unique_ptr<QMimeData> data(f.model->mimeData({index, index.siblingAtColumn(1)}));
        QCOMPARE(data->formats(), f.model->mimeTypes());
        QCOMPARE(data->urls().size(), 1);
        QCOMPARE(data->urls().constFirst().toString(), url);
        QCOMPARE(QDir::cleanPath(data->urls().constFirst().toLocalFile()), path);
    }
}

void tst_RemoteFileSystemModel::droppedFilesAreCopiedMovedAndLinked()
{
    const struct {
        Qt::DropAction action;
        const char *dropped;
        bool result;
        QString top;
        QString target;
    } cases[] = {{Qt::CopyAction, "a b", true, "d e a b"_s, "a b c"_s},
                 {Qt::MoveAction, "a b e//", true, "d"_s, "e a b c"_s},
                 {Qt::LinkAction, "a", true, "d e a b"_s, "a c"_s},
                 {Qt::CopyAction, "d/c none d b", false, "d e a b"_s, "b c"_s},
                 {Qt::MoveAction, "e/x/.. e/. . /", false, "d e a b"_s, "c"_s},
                 {Qt::IgnoreAction, "a", false, "d e a b"_s, "c"_s}};
    for (int i = 0; i < 12; ++i) {
        const auto &each = cases[i / 2];
        Shown f("d/c e/x/ a b", i % 2 == 1);
        QList<QUrl> urls;
        for (const QString &name : words(each.dropped))
            urls.append(QUrl::fromLocalFile(f.path(name)));
        QMimeData data;
        data.setUrls(urls);
        const auto drop = [&](const QModelIndex &parent) {
            return f.model->dropMimeData(&data, each.action, 3, 2, parent);
        };
        QCOMPARE(drop(f.index("d")), each.result);
        QTRY_COMPARE(f.rows(f.index("d")), each.target);
        QTRY_COMPARE(f.rows(), each.top);
        QVERIFY(!drop({}));
        f.model->setReadOnly(true);
        QVERIFY(!drop(f.index("d")));
    }
}

void tst_RemoteFileSystemModel::directoriesAreMadeAndRemoved()
{
    for (const bool isServed : {false, true}) {
        Shown f("d/e/x d/y k", isServed);
        const QModelIndex made = f.model->mkdir(f.index(), "new"_s);
        QCOMPARE(f.model->filePath(made), f.model->filePath(f.index()) + "/new"_s);
        QVERIFY(f.model->isDir(made));
        QTRY_COMPARE(f.rows(), "d new k"_s);
        for (const QString &unusable : {"new"_s, QString()})
            QVERIFY(!f.model->mkdir(f.index(), unusable).isValid());
        QVERIFY(!f.model->mkdir({}, "x"_s).isValid());
        QCOMPARE(f.model->mkdir(f.index(), "new/sub"_s).parent(), f.index("new"));

        f.loaded.clear();
        QVERIFY(!f.model->rmdir(f.index("d"))); // not empty
        QVERIFY(f.waitForLoaded(f.path("d"_s))); // and watched again
        QVERIFY(f.model->rmdir(f.index("new/sub")) && f.model->rmdir(f.index("new")));
        QTRY_COMPARE(f.rows(), "d k"_s);
        QVERIFY(f.model->remove(f.index("d")) && f.model->remove(f.index("k")));
        QTRY_COMPARE(f.rows(), QString());
        QVERIFY(!QFile::exists(f.folder.local("d"_s)));
        QVERIFY(!f.model->remove({}) && !f.model->rmdir({}));
        QVERIFY(f.gatherer().unwatched.contains(f.path("d/e"_s)));
    }
}

// What is reported late was found before the model made, renamed and removed files.
void tst_RemoteFileSystemModel::listingsBegunBeforeLeaveAloneWhatTheModelMade()
{
    Frozen f("a b old", true);
    Updates early;
    for (const char *const name : {"a", "b", "old"})
        early.append({QString::fromLatin1(name), f.model->fileInfo(f.index(name))});
    const QPersistentModelIndex made = f.model->mkdir(f.index(), ".made"_s);
    const QPersistentModelIndex renamed = f.index("old");
    QVERIFY(f.model->setData(renamed, "new"_s));
    QVERIFY(f.model->remove(f.index("b")));
    Q_EMIT f.gatherer().newListOfFiles(f.base, words("a b old"));
    Q_EMIT f.gatherer().updates(f.base, early);
    QCOMPARE(made.data().toString(), ".made"_s);
    QCOMPARE(renamed.data().toString(), "new"_s);
    QVERIFY(f.gatherer().requests.endsWith("remote:|"_s)); // sees to the other ones
    Q_EMIT f.gatherer().newListOfFiles(f.base, words("a .made new"));
    f.report({".made"_s}); // is shown although it is hidden
    QTRY_COMPARE(f.rows(), ".made a new"_s);
    QVERIFY(QDir(f.folder.local()).rmdir(".made"_s));
    Q_EMIT f.gatherer().newListOfFiles(f.base, words("a new"));
    QVERIFY(!made.isValid() && f.rows() == "a new"_s);
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
    f.tester.reset(); // would go down the dots without end
    f.model->setFilter(QDir::AllEntries);
    QTRY_COMPARE(f.rows().left(5), ". .. "_s);
    QVERIFY(!f.model->remove(f.model->index(1, 0, f.index()))); // would take all there is
    f.model->setFilter(QDir::AllEntries | QDir::NoDotAndDotDot);
    QTRY_COMPARE(f.rows(), "kept target"_s);
    QTRY_COMPARE(f.rows(f.index("kept")), "e"_s);
    QVERIFY(QFile::exists(target + "/x"_s));
}

void tst_RemoteFileSystemModel::persistentIndexesFollowTheirFiles()
{
    Shown f("d/x b c a10 a2");
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
}

void tst_RemoteFileSystemModel::changesAreAnnouncedInRuns()
{
    Frozen f("a b c d e");
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

void tst_RemoteFileSystemModel::aDirectoryOfTheSameNameIsListedAnew()
{
    Fixture f("d/old");
    std::error_code error; // one made in the same moment would pass for it
    std::filesystem::last_write_time(f.folder.local("d"_s).toStdString(), {}, error);
    QVERIFY(!error && f.show());
    QTRY_COMPARE(f.rows(f.index("d")), "old"_s);
    for (const bool wasFile : {false, true}) {
        QVERIFY(QDir(f.base).rename("d"_s, "e%1"_s.arg(int(wasFile))));
        if (wasFile) {
            f.make("d"_s);
            QTRY_VERIFY(!f.model->isDir(f.index("d")));
            QVERIFY(QFile::remove(f.path("d"_s)));
        }
        f.make("d/first"_s);
        QTRY_COMPARE(f.rows(f.index("d")), "first"_s);
        f.make("d/later"_s); // the new one is watched
        QTRY_COMPARE(f.rows(f.index("d")), "first later"_s);
    }
}

void tst_RemoteFileSystemModel::aDirectoryListedAnewMissesNothingAndIsTheOnlyOne()
{
    QSemaphore listed;
    Shown f("d/s/x");
    QTRY_COMPARE(f.rows(f.index("d/s")), "x"_s);
    const QString directory = f.path("d"_s);
    const auto note = [&listed, directory](const QString &path) {
        if (path == directory)
            listed.release();
    };
    connect(&f.gatherer(), &RemoteFileInfoGatherer::directoryLoaded, &f.gatherer(), note,
            Qt::DirectConnection);
    f.gatherer().requests.clear();
    Q_EMIT f.gatherer().updates(f.base, {{"d"_s, QFileInfo(QDir::rootPath())}}); // another date
    QVERIFY(listed.tryAcquire(1, 5000));
    f.make("d/late"_s); // before the event loop has run
    QTRY_COMPARE(f.rows(f.index("d")), "s late"_s);
    QVERIFY(!f.gatherer().requests.contains(f.path("d/s|"_s)));
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
    QStringList odd;
    QByteArray all;
    for (int i = 1000; i < 1200; i += 2) {
        odd += "f%1"_s.arg(i + 1);
        all += "f%1 f%2 "_s.arg(i).arg(i + 1).toLatin1();
    }
    Frozen f(all.constData());
    f.make("e"_s);
    f.report({"e"_s}); // waits for being sorted
    odd.prepend("e"_s);
    const QPersistentModelIndex stays = f.index("f1151");
    const QPersistentModelIndex goes = f.index("f1150");
    const QSignalSpy removed(f.model.get(), &QAbstractItemModel::rowsRemoved);
    Q_EMIT f.gatherer().newListOfFiles(f.base, odd);
    QTRY_COMPARE(f.model->rowCount(f.index()), odd.size());
    QCOMPARE(removed.size(), 0); // by one new layout
    QTRY_COMPARE(f.rows(), odd.join(QLatin1Char(' ')));
    QCOMPARE(stays.row(), 76);
    QVERIFY(!goes.isValid());
}

void tst_RemoteFileSystemModel::hugeBatchesArriveInSlicesBeforeTheEnd()
{
    Frozen f("x");
    f.tester.reset(); // looks at all rows for each slice
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
    Frozen f("a b sub/x");
    f.report({"a"_s, "a"_s, QString(), "sub/x"_s, "none"_s});
    f.report(words("a"), "/nowhere"_s);
    Q_EMIT f.gatherer().updates(""_s, {{f.base, QFileInfo(f.base)}}); // is no drive
    QCOMPARE(f.model->rowCount(), 1);
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
}

void tst_RemoteFileSystemModel::receiversMayBringBackWhatGoesAndSortTheRest()
{
    Frozen f("a b c d e f");
    bool isFirst = true;
    connect(f.model.get(), &QAbstractItemModel::rowsRemoved, f.model.get(), [&] {
        if (!std::exchange(isFirst, false))
            return;
        f.report({"f"_s});
        f.model->sort(0, Qt::DescendingOrder);
    });
    Q_EMIT f.gatherer().newListOfFiles(f.base, words("a c e"));
    QTRY_COMPARE(f.rows(), "f e c a"_s);
}

void tst_RemoteFileSystemModel::receiversMayDeleteTheModel()
{
    const std::function<void(Fixture &)> triggers[]{
        [](Fixture &f) { f.report({"changed"_s}); },
        [](Fixture &f) { f.report({"new"_s}); },
        [](Fixture &f) { f.index("new"); },
        [](Fixture &f) { Q_EMIT f.gatherer().directoryLoaded(f.base); },
        [](Fixture &f) { Q_EMIT f.gatherer().newListOfFiles(f.base, words("a changed")); },
        [](Fixture &f) { f.model->sort(0, Qt::DescendingOrder); },
        [](Fixture &f) { f.model->mkdir(f.index(), "made"_s); },
        [](Fixture &f) { f.model->setData(f.index("a"), "renamed"_s); }};
    for (const auto &trigger : triggers) {
        Frozen f("a b changed");
        f.tester.reset();
        f.make("new/"_s);
        f.folder.make("changed"_s, "longer");
        const auto *const model = f.model.get();
        const QObject context;
        const auto die = [&f] { f.model.reset(); };
        connect(model, &QAbstractItemModel::dataChanged, &context, die);
        connect(model, &QAbstractItemModel::rowsInserted, &context, die);
        connect(model, &QAbstractItemModel::rowsRemoved, &context, die);
        connect(model, &QAbstractItemModel::layoutChanged, &context, die);
        connect(model, &RemoteFileSystemModel::directoryLoaded, &context, die);
        trigger(f);
        QVERIFY(!f.model);
    }
}

void tst_RemoteFileSystemModel::servedListingsCostNoCallsHere()
{
    Shown f("d/ a.txt b noext", true);
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
    f.model->refresh(f.index());
    QVERIFY(f.waitForLoaded(f.base));
    QCOMPARE(f.folder.calls(true), 0);
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
    Shown f("a.txt b.txt");
    QVERIFY(f.model->type(f.index("a.txt")) != "A.TXT"_s);
    f.model->setIconProvider(&provider);
    QCOMPARE(f.model->type(f.index("a.txt")), "A.TXT"_s);
    QCOMPARE(f.model->type(f.index("b.txt")), "B.TXT"_s);
    QSignalSpy changed(f.model.get(), &QAbstractItemModel::dataChanged);
    QEvent languageChange(QEvent::LanguageChange);
    QCoreApplication::sendEvent(f.model.get(), &languageChange);
    QCOMPARE(changed.last().at(0).toModelIndex(), f.index("a.txt").siblingAtColumn(1));
    QCOMPARE(changed.last().at(1).toModelIndex(), f.index("b.txt").siblingAtColumn(2));
    f.model->setIconProvider(nullptr);
    QVERIFY(f.model->fileIcon(f.index("a.txt")).isNull());
    QVERIFY(!f.model->myComputer(Qt::DecorationRole).isValid());
}

void tst_RemoteFileSystemModel::unrulyEnginesDoNoHarm()
{
    Fixture f("", true);
    QStringList names{"%n"_s, "%s"_s, "a"_s, "back\\slash"_s, "new\nline"_s};
    for (const QString &name : names)
        f.make(name);
    f.folder.setGhosts({"ghost"_s, "a"_s, "x/y"_s, "."_s});
    QVERIFY(f.show());
    names.sort();
    for (const bool isBroken : {false, true}) {
        f.folder.broken = isBroken;
        QStringList found;
        for (int row = 0; row < f.model->rowCount(f.index()); ++row) {
            const QModelIndex index = f.model->index(row, 0, f.index());
            QCOMPARE(f.model->index(f.model->filePath(index)), index);
            found += index.data().toString();
        }
        found.sort();
        QCOMPARE(found, names);
        f.model->refresh(f.index());
        QVERIFY(f.waitForLoaded(f.base));
    }
    QVERIFY(!f.model->remove(f.index("a")));
    QVERIFY(!f.model->mkdir(f.index(), "c"_s).isValid());
}

QTEST_MAIN(tst_RemoteFileSystemModel)

#include "tst_remotefilesystemmodel.moc"
