#include <support/literal.h>
#include <support/testcase.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileSystemModel>
#include <QLocale>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace
{

// What a model shows of a folder: one line a row, without what differs by design. That is the text
// of the size, -1 for the size of what is missing, and a flag by which the toolkit marks files. The
// filters do without single permissions, by which the toolkit hides whatever has others too.
template<typename Model> QStringList picture(const Model &model, const QString &folder)
{
    const QModelIndex parent = model.index(folder);
    QStringList lines;
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        QStringList cells{"\n"_s + index.data().toString(),
                          index.siblingAtColumn(2).data().toString(),
                          index.siblingAtColumn(3).data().toString()};
        for (int column = 0; column < 4; ++column)
            cells += QString::number(
                int(index.siblingAtColumn(column).flags() & ~Qt::ItemNeverHasChildren));
        cells += QString::number(qMax(qint64(0), model.size(index)));
        cells += QString::number(index.data(QFileSystemModel::FilePermissions).toInt());
        cells += model.isDir(index) ? "dir"_s : QString();
        lines += cells.join(QLatin1Char('|'));
    }
    return lines;
}

void makeFile(const QString &path, int size, int daysAgo)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadWrite) && file.resize(size));
    const QDateTime time = QDateTime::currentDateTime().addDays(-daysAgo);
    QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
}

void changeTheDisk(QDir dir)
{
    QVERIFY(dir.remove("a2.txt"_s) && dir.rename("sub"_s, "moved"_s) && dir.mkdir("added"_s));
    makeFile(dir.filePath("c.cpp"_s), 5000, 10);
    makeFile(dir.filePath("new.txt"_s), 7, 3);
    QVERIFY(QFile::setPermissions(dir.filePath("b.h"_s), QFileDevice::ReadOwner));
}

template<typename Model> void prepare(Model &model, const QString &folder)
{
    QFETCH(int, filters);
    QFETCH(QStringList, names);
    QFETCH(bool, disables);
    QFETCH(int, column);
    QFETCH(bool, descending);
    model.setResolveSymlinks(false);
    model.setFilter(QDir::Filters(filters));
    model.setNameFilters(names);
    model.setNameFilterDisables(disables);
    model.setReadOnly(descending); // as good as any
    model.setRootPath(folder);
    model.sort(column, descending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

} // namespace

/// The model beside the toolkit's, on the same folder of this machine.
class tst_FileSystemComparison : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void bothShowTheSame_data();
    void bothShowTheSame();
};

void tst_FileSystemComparison::bothShowTheSame_data()
{
    QTest::addColumn<int>("filters");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<bool>("disables");
    QTest::addColumn<int>("column");
    QTest::addColumn<bool>("descending");

    const QDir::Filters usual = QDir::AllEntries | QDir::NoDotAndDotDot | QDir::AllDirs;
    const QStringList none;
    const QStringList sources{"*.CPP"_s, "[ab]*"_s};
    const auto row = [](const char *name, QDir::Filters filters, const QStringList &names,
                        bool disables = true, int column = 0, bool descending = false) {
        QTest::newRow(name) << int(filters) << names << disables << column << descending;
    };
    row("usual", usual, none);
    row("by name, descending", usual, none, true, 0, true);
    for (const int column : {1, 2, 3}) {
        row(qPrintable("by column %1"_s.arg(column)), usual, none, true, column);
        row(qPrintable("by column %1, descending"_s.arg(column)), usual, none, true, column, true);
    }
    row("all there is", QDir::AllEntries | QDir::Hidden | QDir::System, none);
    row("no dot", QDir::AllEntries | QDir::Hidden | QDir::NoDot, none);
    row("directories", QDir::Dirs | QDir::NoDotAndDotDot, none);
    row("files", QDir::Files, none);
    row("no links", usual | QDir::NoSymLinks, none);
    row("all permissions", usual | QDir::PermissionMask, none);
    row("names grey", usual, sources);
    row("names hide", usual, sources, false);
    row("names hide directories", QDir::AllEntries | QDir::NoDotAndDotDot, sources, false);
    row("names by case", usual | QDir::CaseSensitive, sources, false);
}

void tst_FileSystemComparison::bothShowTheSame()
{
    // A locale that knows numbers in names.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    const QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir("in"_s)); // others change the date of the one above
    const QDir dir(folder.filePath("in"_s));
    const QStringList names{"a10.txt"_s, "a2.txt"_s,       "B.TXT"_s, "b.h"_s,
                            "c.cpp"_s,   ".hidden"_s,      "_x"_s,    "ab-c"_s,
                            "abd"_s,     "\xc3\xa4.txt"_s, "noext"_s, "tool.sh"_s};
    for (int i = 1; i <= names.size(); ++i)
        makeFile(dir.filePath(names.at(i - 1)), (i * 977) % 3000, (i * 7) % 12 * 10);
    QVERIFY(QFile::setPermissions(dir.filePath("tool.sh"_s), QFileDevice::Permissions(0x7755)));
    for (const char *const sub : {"sub", "Dir10", "dir9", ".cache"})
        QVERIFY(dir.mkdir(QString::fromLatin1(sub)));
    QVERIFY(QFile::link(dir.filePath("abd"_s), dir.filePath("link"_s)));
    QVERIFY(QFile::link(dir.filePath("dir9"_s), dir.filePath("dirlink"_s)));
    QVERIFY(QFile::link("/none"_s, dir.filePath("broken"_s)));

    QFileSystemModel theirs;
    RemoteFileSystemModel ours;
    const QSignalSpy theirsLoaded(&theirs, &QFileSystemModel::directoryLoaded);
    const QSignalSpy oursLoaded(&ours, &RemoteFileSystemModel::directoryLoaded);
    prepare(theirs, dir.path());
    prepare(ours, dir.path());
    QTRY_VERIFY(!theirsLoaded.isEmpty() && !oursLoaded.isEmpty());
    QTRY_COMPARE(picture(ours, dir.path()), picture(theirs, dir.path()));
    const QStringList before = picture(theirs, dir.path());
    QVERIFY(!before.isEmpty());
    changeTheDisk(dir);
    QTRY_VERIFY(picture(theirs, dir.path()) != before);
    QTRY_COMPARE(picture(ours, dir.path()), picture(theirs, dir.path()));
}

QTEST_MAIN(tst_FileSystemComparison)

#include "tst_filesystemcomparison.moc"
