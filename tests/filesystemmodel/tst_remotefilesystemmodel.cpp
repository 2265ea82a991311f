#include <support/faultyfolder.h>
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

const QString remote = QStringLiteral("remote:");

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
    void namesBelowTheRootIgnoreCase();
    void nothingIsListedBeforeARootIsSet();
    void settingTheRootMovesListingAndWatch();
    void filteredNodesAppearOnlyWhenTheyBecomeTheRoot();
    void cellsShowNameSizeTypeAndDate();
    void sizesAreCutOffAtTheirUnit_data();
    void sizesAreCutOffAtTheirUnit();
    void headersNameTheColumns();
    void flagsFollowPermissionsFiltersAndReadOnly();
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
    void removingReportsAPartialSuccess();
    void persistentIndexesFollowTheirFiles();
    void changesAreAnnouncedInRuns();
    void aFileThatBecomesADirectoryMovesUp();
    void permissionsAskedForMustBeThere();
    void manyScatteredRowsVanishTogether();
    void hugeBatchesArriveInSlicesBeforeTheEnd();
    void strangeReportsAreSurvived();
    void servedListingsCostNoCallsHere();
    void refreshingShowsWhatNobodyReports();
    void iconsAndTypesAreThoseOfTheProvider();
    void hostsProvidersAreAskedForEachFile();
    void unruly_data();
    void unruly();
};

void tst_RemoteFileSystemModel::initTestCase()
{
    qRegisterMetaType<Qt::Orientation>();
    qRegisterMetaType<QList<QPersistentModelIndex>>();
    qRegisterMetaType<QAbstractItemModel::LayoutChangeHint>();
}

void tst_RemoteFileSystemModel::pathsBecomeNodesAndNodesPaths_data()
{
    QTest::addColumn<QString>("path"); // with D for the folder
    QTest::addColumn<QString>("expected"); // empty for an invalid index
    QTest::addColumn<int>("depth");

    QTest::newRow("nothing") << ""
                             << "" << 0;
    QTest::newRow("drives") << RemoteFileSystemModel::tr("My Computer") << "" << 0;
    QTest::newRow("resource") << ":/a"
                              << "" << 0;
    QTest::newRow("missing") << "/none/a"
                             << "" << 0;
    QTest::newRow("missing, served") << "remote:/none"
                                     << "" << 0;
    QTest::newRow("root") << "/"
                          << "/" << 1;
    QTest::newRow("below the root") << "/usr/lib"
                                    << "//usr/lib" << 3;
    QTest::newRow("two slashes") << "//usr//lib/"
                                 << "//usr/lib" << 3;
    QTest::newRow("prefix") << "remote:"
                            << "remote:" << 1;
    QTest::newRow("prefix with slash") << "remote:/"
                                       << "remote:" << 1;
    QTest::newRow("served") << "remote:/d/e"
                            << "remote:/d/e" << 3;
    QTest::newRow("served, by case") << "remote:/D"
                                     << "" << 0;
}

void tst_RemoteFileSystemModel::pathsBecomeNodesAndNodesPaths()
{
    QFETCH(QString, path);
    QFETCH(QString, expected);
    QFETCH(int, depth);
    const Fixture f("d/e/");
    QModelIndex index = f.model->index(path);
    QCOMPARE(f.model->filePath(index), expected);
    QCOMPARE(f.model->index(path, 2).column(), expected.isEmpty() ? -1 : 2);
    QVERIFY(f.model->isDir(index));
    QCOMPARE(f.model->index(f.model->filePath(index)), index);
    int found = 0;
    for (; index.isValid(); index = index.parent())
        ++found;
    QCOMPARE(found, depth);
    QCOMPARE(f.model->rowCount(), depth > 0 ? 1 : 0);
}

void tst_RemoteFileSystemModel::namesBelowTheRootIgnoreCase()
{
    const Fixture f("d/ D/");
    const QModelIndex index = f.index("d");
    QVERIFY(index.isValid() && f.index("D").isValid() && f.index("D") != index);
    f.model->index(remote);
    QCOMPARE(f.model->filePath(f.model->index(QStringLiteral("remote:/d"))),
             QStringLiteral("remote:/d"));
}

void tst_RemoteFileSystemModel::nothingIsListedBeforeARootIsSet()
{
    Fixture f("a");
    QVERIFY(f.index().isValid());
    QVERIFY(!f.model->canFetchMore({}) && !f.model->canFetchMore(f.index()));
    f.model->fetchMore(f.index());
    QVERIFY(f.gatherer().requests.isEmpty());
    QVERIFY(f.show());
    QVERIFY(!f.model->canFetchMore(f.index()));
    QVERIFY(!f.model->canFetchMore(f.index("a")));
    QCOMPARE(f.gatherer().requests.count(f.base + QLatin1Char('|')), 1);
}

void tst_RemoteFileSystemModel::settingTheRootMovesListingAndWatch()
{
    Fixture f("d/ file");
    QSignalSpy changed(f.model.get(), &RemoteFileSystemModel::rootPathChanged);
    QVERIFY(f.show());
    QCOMPARE(f.model->rootPath(), f.base);
    QCOMPARE(f.model->setRootPath(f.path(QStringLiteral("d/.."))), f.index());
    QCOMPARE(f.model->setRootPath(f.path(QStringLiteral("none"))), f.index());
    QCOMPARE(f.model->setRootPath(f.path(QStringLiteral("file"))), f.index());
    QCOMPARE(changed.size(), 1);

    QCOMPARE(f.model->setRootPath(f.path(QStringLiteral("d/"))), f.index("d"));
    QCOMPARE(f.gatherer().unwatched, QStringList(f.base));
    QVERIFY(f.model->canFetchMore(f.index()));
    QVERIFY(f.waitForLoaded());
    QCOMPARE(f.model->setRootPath({}), QModelIndex());
    QCOMPARE(f.model->rootPath(), QString());
    QCOMPARE(f.gatherer().unwatched.size(), 2);
    QVERIFY(f.gatherer().requests.contains(QStringLiteral("|")));
    f.model->setRootPath({});
    QCOMPARE(changed.size(), 3);
    QCOMPARE(f.model->setRootPath(f.base), f.index());
    QVERIFY(f.waitForLoaded());
    QCOMPARE(f.gatherer().unwatched.size(), 2);
    QCOMPARE(f.rows(), QStringLiteral("d file"));

    f.model->setNameFilters({QStringLiteral("*.c")});
    QCOMPARE(f.model->rootDirectory().nameFilters(), f.model->nameFilters());
    QCOMPARE(f.model->rootDirectory().filter(), f.model->filter());
}

void tst_RemoteFileSystemModel::filteredNodesAppearOnlyWhenTheyBecomeTheRoot()
{
    Fixture f(".hidden/x .other/ b");
    QVERIFY(f.index(".other").isValid()); // was not known to be hidden
    QVERIFY(f.show());
    QCOMPARE(f.rows(), QStringLiteral(".other b"));
    QVERIFY(!f.index(".hidden").isValid());
    const QModelIndex hidden = f.model->setRootPath(f.path(QStringLiteral(".hidden")));
    QCOMPARE(hidden.data().toString(), QStringLiteral(".hidden"));
    QVERIFY(f.waitForLoaded());
    QCOMPARE(f.rows(hidden), QStringLiteral("x"));
    QCOMPARE(f.rows(), QStringLiteral(".hidden .other b"));
}

void tst_RemoteFileSystemModel::cellsShowNameSizeTypeAndDate()
{
    Fixture f("d/ a.txt");
    QVERIFY(f.show());
    const QModelIndex file = f.index("a.txt");
    const QFileInfo info(f.folder.local(QStringLiteral("a.txt")));
    const auto text = [](const QModelIndex &index, int column, int role = Qt::DisplayRole) {
        return index.siblingAtColumn(column).data(role);
    };
    QCOMPARE(text(file, 0), QVariant(QStringLiteral("a.txt")));
    QCOMPARE(text(file, 0, Qt::EditRole), QVariant(QStringLiteral("a.txt")));
    QCOMPARE(text(file, 1), QVariant(QStringLiteral("5 bytes")));
    QCOMPARE(text(f.index("d"), 1), QVariant(QString()));
    QCOMPARE(text(file, 2), QVariant(QFileIconProvider().type(info)));
    QCOMPARE(text(file, 3),
             QVariant(QLocale::system().toString(info.lastModified(), QLocale::ShortFormat)));
    QCOMPARE(text(file, 1, Qt::TextAlignmentRole).toInt(), int(Qt::AlignRight));
    QVERIFY(!text(file, 0, Qt::TextAlignmentRole).isValid());
    QVERIFY(!text(file, 1, Qt::DecorationRole).isValid());
    QVERIFY(!text(file, 0, Qt::ToolTipRole).isValid());
    QCOMPARE(text(file, 3, 257).toString(), QLatin1Char('/') + f.path(QStringLiteral("a.txt")));
    QCOMPARE(text(file, 3, 258).toString(), QStringLiteral("a.txt"));
    QCOMPARE(text(file, 0, 259).toInt(), int(info.permissions()));
    QCOMPARE(f.model->fileInfo(file), info);
    QCOMPARE(f.model->size(file), 5);
    QCOMPARE(f.model->lastModified(file), info.lastModified());
    QVERIFY(f.model->isDir(f.index("d")) && !f.model->isDir(file));
    QVERIFY(!f.model->fileIcon(file).isNull() && f.model->fileIcon({}).isNull());
    QVERIFY(!f.model->lastModified({}).isValid());
    QCOMPARE(f.model->roleNames().value(Qt::DecorationRole), QByteArray("fileIcon"));
    QCOMPARE(f.model->roleNames().value(259), QByteArray("filePermissions"));

    announceWarning(QStringLiteral("data: invalid display value column 4"));
    QVERIFY(!f.model->index(f.path(QStringLiteral("d")), 4).data().isValid());
}

void tst_RemoteFileSystemModel::sizesAreCutOffAtTheirUnit_data()
{
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<QString>("text");
    const qint64 kilo = 1024;
    QTest::newRow("-1") << qint64(-1) << "-1 bytes";
    QTest::newRow("0") << qint64(0) << "0 bytes";
    QTest::newRow("1023") << kilo - 1 << "1023 bytes";
    QTest::newRow("1 K") << kilo << "1 KB";
    QTest::newRow("1.5 K") << qint64(1536) << "1 KB";
    QTest::newRow("below 1 M") << kilo * kilo - 1 << "1023 KB";
    QTest::newRow("1 M") << kilo * kilo << "1.0 MB";
    QTest::newRow("below 1 G") << kilo * kilo * kilo - 1 << "1024.0 MB";
    QTest::newRow("1 G") << kilo * kilo * kilo << "1.00 GB";
    QTest::newRow("1 T") << kilo * kilo * kilo * kilo << "1.000 TB";
    QTest::newRow("most") << std::numeric_limits<qint64>::max() << "8388608.000 TB";
}

void tst_RemoteFileSystemModel::sizesAreCutOffAtTheirUnit()
{
    QFETCH(qint64, bytes);
    QTEST(tul::sizeText(bytes, QLocale(QLocale::English)), "text");
}

void tst_RemoteFileSystemModel::headersNameTheColumns()
{
    const Fixture f;
    QStringList texts;
    for (int section = 0; section < 5; ++section)
        texts += f.model->headerData(section, Qt::Horizontal).toString();
    QCOMPARE(texts.join(QLatin1Char('|')), QStringLiteral("Name|Size|Type|Date Modified|"));
    QCOMPARE(f.model->headerData(3, Qt::Vertical, Qt::TextAlignmentRole).toInt(),
             int(Qt::AlignLeft));
    QCOMPARE(f.model->headerData(6, Qt::Vertical).toInt(), 7); // the base class's
    const auto spacer = f.model->headerData(0, Qt::Horizontal, Qt::DecorationRole).value<QImage>();
    QCOMPARE(spacer.size(), QSize(16, 1));
    QCOMPARE(spacer.pixelColor(5, 0).alpha(), 0);
    QSignalSpy changed(f.model.get(), &QAbstractItemModel::headerDataChanged);
    QEvent event(QEvent::LanguageChange);
    QCoreApplication::sendEvent(f.model.get(), &event);
    QCOMPARE(changed.size(), 1);
}

void tst_RemoteFileSystemModel::flagsFollowPermissionsFiltersAndReadOnly()
{
    Fixture f("d/ a.c locked", true);
    QVERIFY(
        QFile::setPermissions(f.folder.local(QStringLiteral("locked")), QFileDevice::ReadOwner));
    QVERIFY(f.show());
    const Qt::ItemFlags plain = Qt::ItemIsSelectable | Qt::ItemIsEnabled;
    const auto flags = [&](const char *name, int column = 0) {
        return f.index(name).siblingAtColumn(column).flags();
    };
    QCOMPARE(flags("d"),
             plain | Qt::ItemIsDragEnabled | Qt::ItemIsEditable | Qt::ItemIsDropEnabled);
    QCOMPARE(flags("a.c"), plain | Qt::ItemIsDragEnabled | Qt::ItemIsEditable);
    QCOMPARE(flags("a.c", 1), plain | Qt::ItemIsDragEnabled);
    if (!QFileInfo(f.folder.local(QStringLiteral("locked"))).isWritable()) // root may write all
        QCOMPARE(flags("locked"), plain | Qt::ItemIsDragEnabled);
    f.model->setNameFilters({QStringLiteral("*.h")});
    QCOMPARE(flags("a.c"), Qt::ItemFlags(Qt::ItemIsSelectable));
    QCOMPARE(flags("d"),
             plain | Qt::ItemIsDragEnabled | Qt::ItemIsEditable | Qt::ItemIsDropEnabled);
    f.model->setReadOnly(true);
    QCOMPARE(flags("d"), plain | Qt::ItemIsDragEnabled);
    QCOMPARE(f.model->flags({}), Qt::ItemFlags());
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
    QVERIFY(f.model->setData(index, QStringLiteral("a"))); // nothing to do
    QVERIFY(!f.model->setData(index, QStringLiteral("x"), Qt::DisplayRole));
    QVERIFY(!f.model->setData(index.sibling(0, 1), QStringLiteral("x")));
    QVERIFY(f.model->setData(index, QStringLiteral("z")));
    QCOMPARE(
        renamed.takeFirst(),
        (QVariantList{f.model->filePath(f.index()), QStringLiteral("a"), QStringLiteral("z")}));
    QTRY_COMPARE(f.rows(), QStringLiteral("b c z"));
    QCOMPARE(index.data().toString(), QStringLiteral("z"));
    QCOMPARE(index.row(), 2);
    QVERIFY(QFile::exists(f.folder.local(QStringLiteral("z"))));
    QVERIFY(!f.index("a").isValid());
    QCOMPARE(f.model->fileInfo(index).fileName(), QStringLiteral("z"));
}

void tst_RemoteFileSystemModel::unusableNamesAreRefusedWithABox_data()
{
    QTest::addColumn<bool>("isServed");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("isTop");
    for (const bool isServed : {false, true}) {
        const char *const side = isServed ? "served" : "local";
        QTest::addRow("%s, empty", side) << isServed << "" << false;
        QTest::addRow("%s, slash", side) << isServed << "x/y" << false;
        QTest::addRow("%s, taken", side) << isServed << "b" << false;
        QTest::addRow("%s, top", side) << isServed << "x" << true;
    }
}

void tst_RemoteFileSystemModel::unusableNamesAreRefusedWithABox()
{
    QFETCH(bool, isServed);
    QFETCH(QString, name);
    QFETCH(bool, isTop);
    Fixture f("a b", isServed);
    QVERIFY(f.show());
    QModelIndex index = f.index("a");
    while (isTop && index.parent().isValid())
        index = index.parent();
    announceWarning(QStringLiteral("This plugin does not support propagateSizeHints()"));
    const BoxReader box;
    QVERIFY(!f.model->setData(index, name));
    QCOMPARE(box.said,
             QStringLiteral("Invalid filename|<b>The name \"%1\" can not be used.</b><p>Try using "
                            "another name, with fewer characters or no punctuations marks.")
                 .arg(name));
    QCOMPARE(f.rows(), QStringLiteral("a b"));
    QFile kept(f.folder.local(QStringLiteral("b")));
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), QByteArray("b"));
}

void tst_RemoteFileSystemModel::renamingADirectoryListsItsChildrenAnew()
{
    Fixture f("d/x");
    QVERIFY(f.show());
    QTRY_COMPARE(f.rows(f.index("d")), QStringLiteral("x")); // fetched by the tester
    QVERIFY(f.model->setData(f.index("d"), QStringLiteral("e")));
    QTRY_COMPARE(f.rows(f.index("e")), QStringLiteral("x"));
    QCOMPARE(f.model->fileInfo(f.index("e/x")).filePath(), f.path(QStringLiteral("e/x")));
    QVERIFY(f.gatherer().unwatched.contains(f.path(QStringLiteral("d"))));
}

void tst_RemoteFileSystemModel::draggedUrlsLeadBack_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("url");
    QTest::newRow("top") << "/usr"
                         << "file:///usr";
    QTest::newRow("below") << "/usr/lib"
                           << "file://usr/lib"; // by design
    QTest::newRow("served") << "remote:/D/1.2"
                            << "file:remote:/D/1.2";
    QTest::newRow("prefix") << "remote:"
                            << "file:remote:";
    QTest::newRow("odd name") << "remote:/D/50% a#b?c"
                              << "file:remote:/D/50%25 a%23b%3Fc";
}

void tst_RemoteFileSystemModel::draggedUrlsLeadBack()
{
    QFETCH(QString, path);
    const Fixture f("D/1.2 ");
    f.folder.make(QStringLiteral("D/50% a#b?c"));
    const QModelIndex index = f.model->index(path);
    QVERIFY(index.isValid());
    QCOMPARE(f.model->mimeTypes(), QStringList(QStringLiteral("text/uri-list")));
    const std::unique_ptr<QMimeData> data(f.model->mimeData({index, index.siblingAtColumn(1)}));
    QCOMPARE(data->urls().size(), 1);
    QTEST(data->urls().constFirst().toString(), "url");
    QCOMPARE(QDir::cleanPath(data->urls().constFirst().toLocalFile()), path);
}

void tst_RemoteFileSystemModel::droppedFilesAreCopiedMovedAndLinked_data()
{
    QTest::addColumn<bool>("isServed");
    QTest::addColumn<Qt::DropAction>("action");
    QTest::addColumn<QString>("dropped");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QString>("top");
    QTest::addColumn<QString>("target");
    for (const bool isServed : {false, true}) {
        const char *const side = isServed ? "served" : "local";
        const auto row = [&](const char *what) -> QTestData & {
            return QTest::addRow("%s, %s", side, what) << isServed;
        };
        row("copy") << Qt::CopyAction << "a b" << true << "d a b"
                    << "a b c";
        row("move") << Qt::MoveAction << "a b" << true << "d"
                    << "a b c";
        row("link") << Qt::LinkAction << "a" << true << "d a b"
                    << "a c";
        row("taken, missing, directory") << Qt::CopyAction << "d/c none d b" << false << "d a b"
                                         << "b c";
        row("refused") << Qt::IgnoreAction << "a" << false << "d a b"
                       << "c";
    }
}

void tst_RemoteFileSystemModel::droppedFilesAreCopiedMovedAndLinked()
{
    QFETCH(bool, isServed);
    QFETCH(Qt::DropAction, action);
    QFETCH(QString, dropped);
    Fixture f("d/c a b", isServed);
    QVERIFY(f.show());
    QList<QUrl> urls;
    for (const QString &name : dropped.split(QLatin1Char(' ')))
        urls.append(QUrl::fromLocalFile(f.path(name)));
    QMimeData data;
    data.setUrls(urls);
    QTEST(f.model->dropMimeData(&data, action, 3, 2, f.index("d")), "result");
    QFETCH(QString, target);
    QTRY_COMPARE(f.rows(f.index("d")), target);
    QFETCH(QString, top);
    QTRY_COMPARE(f.rows(), top);

    QVERIFY(!f.model->dropMimeData(&data, Qt::CopyAction, 0, 0, {}));
    f.model->setReadOnly(true);
    QVERIFY(!f.model->dropMimeData(&data, Qt::CopyAction, 0, 0, f.index("d")));
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
    const QModelIndex made = f.model->mkdir(f.index(), QStringLiteral("new"));
    QCOMPARE(f.model->filePath(made), f.model->filePath(f.index()) + QStringLiteral("/new"));
    QVERIFY(f.model->isDir(made));
    QTRY_COMPARE(f.rows(), QStringLiteral("d new k"));
    QVERIFY(!f.model->mkdir(f.index(), QStringLiteral("new")).isValid());
    QVERIFY(!f.model->mkdir(f.index(), QString()).isValid());
    QVERIFY(!f.model->mkdir({}, QStringLiteral("x")).isValid());
    QCOMPARE(f.model->mkdir(f.index(), QStringLiteral("new/sub")).parent(), f.index("new"));

    QVERIFY(!f.model->rmdir(f.index("d"))); // not empty
    QVERIFY(f.model->rmdir(f.index("new/sub")) && f.model->rmdir(f.index("new")));
    QTRY_COMPARE(f.rows(), QStringLiteral("d k"));
    QVERIFY(f.model->remove(f.index("d")));
    QVERIFY(f.model->remove(f.index("k")));
    QTRY_COMPARE(f.rows(), QString());
    QVERIFY(!QFile::exists(f.folder.local(QStringLiteral("d"))));
    QVERIFY(!f.model->remove({}) && !f.model->rmdir({}));
    QVERIFY(f.gatherer().unwatched.contains(f.path(QStringLiteral("d/e"))));
}

void tst_RemoteFileSystemModel::removingALinkSparesItsTarget()
{
    Fixture f("target/x d/y");
    const QString target = f.folder.local(QStringLiteral("target"));
    QVERIFY(QFile::link(target, f.folder.local(QStringLiteral("d/below"))));
    QVERIFY(QFile::link(target, f.folder.local(QStringLiteral("link"))));
    QVERIFY(f.show());
    QVERIFY(f.model->remove(f.index("link")));
    QVERIFY(f.model->remove(f.index("d")));
    QTRY_COMPARE(f.rows(), QStringLiteral("target"));
    QVERIFY(QFile::exists(target + QStringLiteral("/x")));
}

void tst_RemoteFileSystemModel::removingReportsAPartialSuccess()
{
    Fixture f("d/e/.hidden d/f", true);
    QVERIFY(f.show());
    QTRY_COMPARE(f.rows(f.index("d")), QStringLiteral("e f"));
    QVERIFY(f.model->remove(f.index("d")));
    QTRY_COMPARE(f.rows(f.index("d")), QStringLiteral("e"));
    QVERIFY(!f.model->remove(f.index("d")));
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
    QCOMPARE(f.rows().section(QLatin1Char(' '), -1), QStringLiteral("d"));
    QCOMPARE(file.data().toString(), QStringLiteral("c"));
    QCOMPARE(QModelIndex(cell), f.index("b").siblingAtColumn(2));

    f.model->setFilter(QDir::Files); // the directory goes, and what is below with it
    QTRY_COMPARE(f.rows().count(QLatin1Char(' ')), 3);
    QVERIFY(!below.isValid());
    QCOMPARE(file, f.index("c"));
    f.model->setNameFilters({QStringLiteral("A*")});
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
}

void tst_RemoteFileSystemModel::aFileThatBecomesADirectoryMovesUp()
{
    Fixture f("a b");
    QVERIFY(f.show());
    QVERIFY(QFile::remove(f.folder.local(QStringLiteral("b"))));
    f.make(QStringLiteral("b/"));
    f.report(words("b"));
    QTRY_COMPARE(f.rows(), QStringLiteral("b a"));
}

void tst_RemoteFileSystemModel::permissionsAskedForMustBeThere()
{
    Fixture f("a b d/");
    QVERIFY(QFile::setPermissions(f.folder.local(QStringLiteral("b")),
                                  QFileDevice::Permissions(0x7700)));
    f.model->setFilter(f.model->filter() | QDir::Executable);
    QVERIFY(f.show());
    QCOMPARE(f.rows(), QStringLiteral("d b"));
    f.model->setFilter(f.model->filter() | QDir::Readable | QDir::Writable); // all are none
    QTRY_COMPARE(f.rows(), QStringLiteral("d a b"));
}

void tst_RemoteFileSystemModel::manyScatteredRowsVanishTogether()
{
    Fixture f;
    QStringList odd;
    for (int i = 0; i < 200; ++i) {
        const QString name = QStringLiteral("f%1").arg(1000 + i);
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
    const QFileInfo info(f.folder.local(QStringLiteral("x")));
    Updates updates;
    QStringList names;
    for (int i = 0; i < 100000; ++i) {
        names += QStringLiteral("n%1").arg((i * 7919) % 100000);
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
    QTRY_COMPARE(f.model->index(0, 0, f.index()).data().toString(), QStringLiteral("n99999"));
    QCOMPARE(f.model->rowCount(f.index()), 100000); // "x" is not in the list
}

void tst_RemoteFileSystemModel::strangeReportsAreSurvived()
{
    Fixture f("a b sub/x");
    QVERIFY(f.show());
    f.gatherer().works = false;
    f.report({QStringLiteral("a"), QStringLiteral("a"), QString(), QStringLiteral("sub/x"),
              QStringLiteral("none")});
    f.report(words("a"), QStringLiteral("/nowhere"));
    QCOMPARE(f.rows(), QStringLiteral("sub a b"));
    QVERIFY(QFile::remove(f.folder.local(QStringLiteral("b"))));
    f.report(words("b b")); // has vanished before it was inspected
    QCOMPARE(f.rows(), QStringLiteral("sub a"));
    f.make(QStringLiteral("b"));
    f.report(words("b b"));
    QCOMPARE(f.rows(), QStringLiteral("sub a b"));

    // A receiver that makes rows and drops others.
    connect(f.model.get(), &QAbstractItemModel::rowsInserted, f.model.get(), [&] {
        f.index("late");
        Q_EMIT f.gatherer().newListOfFiles(f.base, words("new late"));
    });
    f.make(QStringLiteral("new"));
    f.make(QStringLiteral("late"));
    f.report(words("new a b"));
    QTRY_COMPARE(f.rows(), QStringLiteral("late new"));
    Q_EMIT f.gatherer().nameResolved(f.path(), QStringLiteral("x"));

    // A receiver that deletes the model.
    auto *const model = new RemoteFileSystemModel;
    connect(model, &RemoteFileSystemModel::directoryLoaded, model, [model] { delete model; });
    Q_EMIT f.gatherer().directoryLoaded(f.base);
}

void tst_RemoteFileSystemModel::servedListingsCostNoCallsHere()
{
    Fixture f("d/ a.txt b noext", true);
    QVERIFY(f.show());
    QCOMPARE(f.rows(), QStringLiteral("d a.txt b noext"));
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
    f.make(QStringLiteral("b"));
    f.model->refresh(f.index());
    QTRY_COMPARE(f.rows(), QStringLiteral("a b"));
    QVERIFY(QFile::remove(f.folder.local(QStringLiteral("a"))));
    f.model->refresh(f.index("b")); // no directory
    f.model->refresh(f.index());
    QTRY_COMPARE(f.rows(), QStringLiteral("b"));
    f.model->refresh({});
    QCOMPARE(f.gatherer().requests.last(), QStringLiteral("|"));
}

void tst_RemoteFileSystemModel::iconsAndTypesAreThoseOfTheProvider()
{
    Fixture f("d/ a.txt B.TXT c.C c.c README noext x.tar.gz odd.xyzzy .txt CMakeLists.txt");
    QVERIFY(QFile::link(f.folder.local(QStringLiteral("a.txt")),
                        f.folder.local(QStringLiteral("l.txt"))));
    QVERIFY(QFile::link(QStringLiteral("/none"), f.folder.local(QStringLiteral("broken"))));
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
        QString type(const QFileInfo &info) const override
        {
            return ++asked, info.fileName().toUpper();
        }
        QIcon icon(const QFileInfo &) const override { return {}; }
        mutable int asked = 0;
    } provider;
    Fixture f("a.txt b.txt");
    QVERIFY(f.show());
    QVERIFY(f.model->type(f.index("a.txt")) != QStringLiteral("A.TXT"));
    QSignalSpy layouts(f.model.get(), &QAbstractItemModel::layoutChanged);
    f.model->setIconProvider(&provider);
    f.model->setIconProvider(&provider);
    QTRY_COMPARE(layouts.size(), 1);
    QCOMPARE(f.model->type(f.index("a.txt")), QStringLiteral("A.TXT"));
    QCOMPARE(f.model->type(f.index("b.txt")), QStringLiteral("B.TXT"));
    const int asked = provider.asked;
    QCOMPARE(f.model->type(f.index("b.txt")), QStringLiteral("B.TXT"));
    QCOMPARE(provider.asked, asked);
    f.model->setIconProvider(nullptr);
    QVERIFY(f.model->fileIcon(f.index("a.txt")).isNull());
    QVERIFY(!f.model->myComputer(Qt::DecorationRole).isValid());
}

void tst_RemoteFileSystemModel::unruly_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("rows");
    QTest::newRow("ghosts") << "ghosts"
                            << "a b";
    QTest::newRow("broken") << "broken"
                            << "a b";
    QTest::newRow("odd names") << "names" << QString::fromUtf8("%s %n back\\slash new\nline ä");
    QTest::newRow("endless") << "endless"
                             << "";
}

void tst_RemoteFileSystemModel::unruly()
{
    QFETCH(QString, kind);
    Fixture f(kind == QLatin1String("names") ? "" : "a b", true);
    if (kind == QLatin1String("endless")) {
        f.tester.reset();
        f.folder.endless = true;
        f.model->setRootPath(remote);
        QTRY_VERIFY(f.gatherer().added.available() > 0);
        return; // the model goes while the listing runs
    }
    if (kind == QLatin1String("ghosts"))
        f.folder.setGhosts({QStringLiteral("ghost"), QStringLiteral("a"), QStringLiteral("x/y"),
                            QStringLiteral(".")});
    for (const char *const name : {"%s", "%n", "back\\slash", "new\nline", "\xc3\xa4"}) {
        if (kind == QLatin1String("names"))
            f.make(QString::fromUtf8(name));
    }
    QVERIFY(f.show());
    if (kind == QLatin1String("broken")) {
        f.folder.broken = true;
        f.model->refresh(f.index());
        QVERIFY(f.waitForLoaded());
        QVERIFY(!f.model->remove(f.index("a")));
        QVERIFY(!f.model->mkdir(f.index(), QStringLiteral("c")).isValid());
        announceWarning(QStringLiteral("This plugin does not support propagateSizeHints()"));
        const BoxReader box;
        QVERIFY(!f.model->setData(f.index("a"), QStringLiteral("c")));
    }
    const QModelIndex root = f.model->index(remote);
    QStringList found = f.rows(root).split(QLatin1Char(' '));
    QFETCH(QString, rows);
    QStringList expected = rows.split(QLatin1Char(' '));
    found.sort();
    expected.sort();
    QCOMPARE(found, expected);
    for (int row = 0; row < f.model->rowCount(root); ++row) {
        const QModelIndex index = f.model->index(row, 0, root);
        QCOMPARE(f.model->index(f.model->filePath(index)), index);
    }
}

QTEST_MAIN(tst_RemoteFileSystemModel)

#include "tst_remotefilesystemmodel.moc"
