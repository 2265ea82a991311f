#include <support/faultyfolder.h>
#include <support/testcase.h>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QTest>

namespace
{

QString q(const char *text)
{
    return QString::fromUtf8(text);
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

} // namespace

class TestFolderEngine : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void pathsKeepTheirPrefix();
    void informationIsThatOfTheFolderInOneCall();
    void filesAreReadWrittenAndChanged();
    void nothingLeadsOutOfTheFolder();
    void faultsAreReportedAndNothingHangs();
};

void TestFolderEngine::pathsKeepTheirPrefix()
{
    const FaultyFolder far;
    QVERIFY(far.make(q("a/b/x.c")));
    QVERIFY(QDir::isAbsolutePath(q("remote:/a")));
    QCOMPARE(QDir(q("remote:/a")).absolutePath(), q("remote:/a"));
    QCOMPARE(QDir(q("remote:")).filePath(q("a")), q("remote:/a"));
    QCOMPARE(QFileInfo(q("remote:/a/b/x.c")).absolutePath(), q("remote:/a/b"));
    QCOMPARE(QFileInfo(q("remote:/a/b/x.c")).canonicalFilePath(), q("remote:/a/b/x.c"));
    QDirIterator iterator(q("remote:"), QDir::Files, QDirIterator::Subdirectories);
    QVERIFY(iterator.hasNext());
    QCOMPARE(iterator.next(), q("remote:/a/b/x.c"));
    QVERIFY(!iterator.hasNext());
    QVERIFY(!QFileInfo::exists(q("REMOTE:/a")));
    QVERIFY(QFileInfo(q("remote:")).isRoot());
    QVERIFY(!QFileInfo(q("remote:/a")).isRoot());
}

void TestFolderEngine::informationIsThatOfTheFolderInOneCall()
{
    FaultyFolder far;
    QVERIFY(far.make(q(".hidden"), "12345"));
    QVERIFY(QFile::link(far.local(q(".hidden")), far.local(q("link"))));
    QVERIFY(QFile::link(q("/nowhere"), far.local(q("broken"))));
    QVERIFY(QFile::setPermissions(far.local(q(".hidden")), QFile::ReadOwner | QFile::ReadUser));
    const QFileInfo here(far.local(q(".hidden")));
    far.forgetCalls();
    const QFileInfo there(q("remote:/.hidden"));
    QVERIFY(there.exists() && there.isFile() && there.isHidden() && !there.isSymLink());
    QCOMPARE(there.size(), 5);
    QCOMPARE(there.permissions(), here.permissions());
    QCOMPARE(there.lastModified(), here.lastModified());
    QCOMPARE(there.owner(), here.owner());
    QCOMPARE(far.calls(true), 1);
    QVERIFY(QFileInfo(q("remote:/link")).isSymLink());
    QCOMPARE(QFileInfo(q("remote:/link")).symLinkTarget(), q("remote:/.hidden"));
    QVERIFY(QFileInfo(q("remote:/broken")).isSymLink());
    QVERIFY(!QFileInfo::exists(q("remote:/broken")));
    QCOMPARE(QDir(q("remote:")).entryList(QDir::Files | QDir::Hidden).size(), 2);
}

void TestFolderEngine::filesAreReadWrittenAndChanged()
{
    const FaultyFolder far;
    QVERIFY(far.make(q("a.txt"), "one\ntwo\n"));
    QVERIFY(far.make(q("b.txt"), "b"));
    QFile file(q("remote:/a.txt"));
    QVERIFY(file.open(QIODevice::ReadWrite));
    QCOMPARE(file.readLine(), QByteArray("one\n"));
    QVERIFY(file.seek(8) && file.atEnd());
    QCOMPARE(file.write("three"), 5);
    file.close();
    QCOMPARE(contentOf(far.local(q("a.txt"))), QByteArray("one\ntwo\nthree"));

    QVERIFY(QFile::copy(q("remote:/b.txt"), q("remote:/c.txt")));
    QVERIFY(QFile::copy(q("remote:/b.txt"), far.local(q("streamed"))));
    QCOMPARE(contentOf(q("remote:/c.txt")) + contentOf(q("remote:/streamed")), QByteArray("bb"));
    QVERIFY(QFile::rename(q("remote:/c.txt"), q("remote:/d.txt")));
    QVERIFY(QFile::link(q("remote:/d.txt"), q("remote:/link")));
    QVERIFY(QFile::setPermissions(q("remote:/d.txt"), QFile::ReadOwner));
    QVERIFY(!QFileInfo(far.local(q("d.txt"))).permissions().testFlag(QFile::WriteOwner));
    QVERIFY(QFile::remove(q("remote:/link")) && QFileInfo::exists(q("remote:/d.txt")));

    QDir root(q("remote:/"));
    QVERIFY(root.mkdir(q("dir")) && root.mkpath(q("deep/er/est")));
    QVERIFY(root.rename(q("dir"), q("moved")));
    QVERIFY(QFileInfo(far.local(q("moved"))).isDir());
    QVERIFY(root.rmdir(q("moved")) && root.rmpath(q("deep/er/est")));
    QVERIFY(!root.rmdir(q("moved")));
    QCOMPARE(root.entryList(QDir::Dirs | QDir::NoDotAndDotDot), QStringList());
}

void TestFolderEngine::nothingLeadsOutOfTheFolder()
{
    const FaultyFolder far;
    QVERIFY(far.make(q("x")));
    QVERIFY(QFileInfo::exists(q("remote:/../../x")));
    QVERIFY(QFileInfo::exists(q("remote:x")));
    QVERIFY(!QDir(q("remote:/")).mkpath(far.local(q("junk")))); // no path of this engine
    QVERIFY(!QFile::copy(far.local(q("x")), q("remote:/y")));
    QVERIFY(!QDir(q("remote:")).rmdir(q("..")));
}

void TestFolderEngine::faultsAreReportedAndNothingHangs()
{
    FaultyFolder far;
    QVERIFY(far.make(q("x"), "x"));
    far.setGhosts({q("gone")});
    QCOMPARE(QDir(q("remote:")).entryList(QDir::AllEntries | QDir::System, QDir::Name),
             QStringList({q("."), q(".."), q("gone"), q("x")}));
    QVERIFY(!QFileInfo::exists(q("remote:/gone")));
    far.endless = true;
    QDirIterator iterator(q("remote:"), QDir::AllEntries | QDir::System);
    for (int i = 0; i < 1000; ++i)
        QVERIFY(!iterator.next().isEmpty());
    far.forgetCalls();
    far.broken = true;
    QVERIFY(!QFileInfo::exists(q("remote:/x")));
    QCOMPARE(contentOf(q("remote:/x")), QByteArray("unreadable"));
    QVERIFY(!QFile::remove(q("remote:/x")) && !QDir(q("remote:")).mkdir(q("new")));
    QVERIFY(QFileInfo::exists(far.local(q("x"))));
    QCOMPARE(far.calls(FolderEngine::Call::Change), 2);
}

QTEST_GUILESS_MAIN(TestFolderEngine)
#include "tst_folderengine.moc"
