#include <support/testcase.h>
#include <tul-util-gui/filedialog/remotesettings_p.h>

#include <QTest>

namespace
{

QString q(const char *text)
{
    return QString::fromLatin1(text);
}

QString prefix()
{
    return QStringLiteral("remote:");
}

} // namespace

class TestRemoteSettings : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void prefixIsAddedAndTaken_data();
    void prefixIsAddedAndTaken();
    void everyPathHasAnEmptyPrefix();
    void pathsWithAColonAreLocalOnlyOnADrive_data();
    void pathsWithAColonAreLocalOnlyOnADrive();
    void tildeIsTheRemoteHomeAsItWasSet();
    void typedPathsFromTheRootGetThePrefix();
};

void TestRemoteSettings::prefixIsAddedAndTaken_data()
{
    QTest::addColumn<QString>("added");
    QTest::addColumn<QString>("taken");

    QTest::newRow("/a") << q("remote:/a") << q("/a");
    QTest::newRow("src") << q("remote:src") << q("src");
    QTest::newRow("remote:/a") << q("remote:/a") << q("/a");
    QTest::newRow("remote:") << q("remote:") << QString();
    QTest::newRow("REMOTE:/100%s") << q("remote:REMOTE:/100%s") << q("REMOTE:/100%s");
    QTest::newRow("") << QString() << QString();
}

void TestRemoteSettings::prefixIsAddedAndTaken()
{
    QFETCH(QString, added);
    QFETCH(QString, taken);

    const QString path = q(QTest::currentDataTag());
    QCOMPARE(tul::addPrefix(path, prefix()), added);
    QCOMPARE(tul::stripPrefix(path, prefix()), taken);
    QCOMPARE(tul::hasPrefix(path, prefix()), path.startsWith(q("remote:")));
    if (path == taken && !path.isEmpty())
        announceWarning(q("Path is not remote: ") + path);
    QCOMPARE(tul::unmungedPath(path, prefix()), taken);
}

void TestRemoteSettings::everyPathHasAnEmptyPrefix()
{
    QVERIFY(tul::hasPrefix(QString(), q("")));
    QCOMPARE(tul::addPrefix(q("/a"), QString()), q("/a"));
    QCOMPARE(tul::unmungedPath(q("/a"), QString()), q("/a"));
    QCOMPARE(tul::lockedCopy(&tul::RemoteSettings::prefix), prefix());
}

void TestRemoteSettings::pathsWithAColonAreLocalOnlyOnADrive_data()
{
    QTest::addColumn<QString>("local"); // on Windows, here, and without drives

    QTest::newRow("C:/x") << q("ynn");
    QTest::newRow("c:/x") << q("nnn");
    QTest::newRow("C:x") << q("nnn");
    QTest::newRow("C:\\x") << q("nnn");
    QTest::newRow("remote:/x") << q("nnn");
    QTest::newRow("/a:b") << q("nyn");
    QTest::newRow("a:b") << q("nnn");
    QTest::newRow("/a") << q("yyy");
    QTest::newRow("") << q("yyy");
}

void TestRemoteSettings::pathsWithAColonAreLocalOnlyOnADrive()
{
    QFETCH(QString, local);

    const QString path = q(QTest::currentDataTag());
    const QList<QStringList> systems{{q("A:/"), q("C:/")}, {q("/")}, {}};
    for (int i = 0; i < systems.size(); ++i)
        QCOMPARE(tul::isLocalPath(path, systems.at(i)), local.at(i) == QLatin1Char('y'));
    if (tul::localDrives() == systems.at(1))
        QVERIFY(tul::isLocalPath(q("/a:b"), tul::localDrives()));
}

void TestRemoteSettings::tildeIsTheRemoteHomeAsItWasSet()
{
    const QString home = q("remote:/home/");
    bool expanded = false;
    QCOMPARE(tul::expandedRemoteTilde(q("~"), home, &expanded), home);
    QVERIFY(expanded);
    QCOMPARE(tul::expandedRemoteTilde(q("~x"), home, &expanded), q("~x"));
    QVERIFY(!expanded);
    QCOMPARE(tul::expandedRemoteTilde(q("~/src"), home, nullptr), q("remote:/home//src"));
    QCOMPARE(tul::expandedRemoteTilde(q("~"), QString(), &expanded), QString());
    QVERIFY(expanded);
}

void TestRemoteSettings::typedPathsFromTheRootGetThePrefix()
{
    QCOMPARE(tul::prefixedTypedFiles({q("/etc"), q("remote:/a"), q("\\x"), q("b")}, prefix()),
             QStringList({q("remote:/etc"), q("remote:/a"), q("remote:\\x"), q("b")}));
}

QTEST_GUILESS_MAIN(TestRemoteSettings)
#include "tst_remotesettings.moc"
