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
    void namesKeepThePrefixAndInformationTakesOneCall();
    void filesAreReadWrittenAndChanged();
    void faultsAreReportedAndNothingLeadsOut();
};

void TestFolderEngine::namesKeepThePrefixAndInformationTakesOneCall()
{
    FaultyFolder far;
    QVERIFY(far.make(q("a/.x"), "12345"));
    QVERIFY(QFile::link(far.local(q("a/.x")), far.local(q("a/link"))));
    QVERIFY(QFile::link(q("/nowhere"), far.local(q("a/broken"))));
    QVERIFY(QDir::isAbsolutePath(q("remote:/a")));
    QCOMPARE(QDir(q("remote:/a")).absolutePath(), q("remote:/a"));
    QCOMPARE(QFileInfo(q("remote:/a/.x")).canonicalFilePath(), q("remote:/a/.x"));
    QDirIterator iterator(q("remote:"), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    QVERIFY(iterator.next().startsWith(q("remote:/a/")));
    QVERIFY(QFileInfo(q("remote:")).isRoot() && !QFileInfo::exists(q("REMOTE:/a")));

    const QFileInfo here(far.local(q("a/.x")));
    far.forgetCalls();
    const QFileInfo there(q("remote:/a/.x"));
    QVERIFY(there.exists() && there.isFile() && there.isHidden() && !there.isSymLink());
    QVERIFY(there.size() == 5 && there.permissions() == here.permissions());
    QCOMPARE(there.lastModified(), here.lastModified());
    QCOMPARE(far.calls(true), 1);
    QCOMPARE(QFileInfo(q("remote:/a/link")).symLinkTarget(), q("remote:/a/.x"));
    const QFileInfo broken(q("remote:/a/broken"));
    QVERIFY(broken.isSymLink() && !broken.exists());
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

void TestFolderEngine::faultsAreReportedAndNothingLeadsOut()
{
    FaultyFolder far;
    QVERIFY(far.make(q("x"), "x"));
    QVERIFY(QFileInfo::exists(q("remote:/../../x")));
    QVERIFY(!QDir(q("remote:/")).mkpath(far.local(q("junk")))); // no path of this engine
    QVERIFY(!QFile::copy(far.local(q("x")), q("remote:/y")) && !QDir(q("remote:")).rmdir(q("..")));
    far.setGhosts({q("gone")});
    far.endless = true;
    QDirIterator iterator(q("remote:"), QDir::AllEntries | QDir::System);
    for (int i = 0; i < 1000; ++i)
        QVERIFY(!iterator.next().isEmpty());
    QVERIFY(!QFileInfo::exists(q("remote:/gone")));
    far.forgetCalls();
    far.broken = true;
    QVERIFY(!QFileInfo::exists(q("remote:/x")));
    QCOMPARE(contentOf(q("remote:/x")), QByteArray("unreadable"));
    QVERIFY(!QFile::remove(q("remote:/x")) && !QDir(q("remote:")).mkdir(q("new")));
    QCOMPARE(far.calls(FolderEngine::Call::Change), 2);
    QVERIFY(QFileInfo::exists(far.local(q("x"))));
}

QTEST_GUILESS_MAIN(TestFolderEngine)
#include "tst_folderengine.moc"
