#include <support/testcase.h>
#include <tul-util-gui/filedialog/dialogpaths_p.h>

#include <QTest>

class TestDialogPaths : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void pathsAreTakenApartAndCleaned_data();
    void pathsAreTakenApartAndCleaned();
    void entriesAreJoinedWithOneSlash();
    void quotedNamesAreSplitAndJoined_data();
    void quotedNamesAreSplitAndJoined();
};

void TestDialogPaths::pathsAreTakenApartAndCleaned_data()
{
    QTest::addColumn<QString>("elements"); // blanks between them
    QTest::addColumn<QString>("parent");
    QTest::addColumn<QString>("clean");

    const auto row
        = [](const char *path, const char *elements, const char *parent, const char *clean) {
              QTest::newRow(path) << QString::fromLatin1(elements) << QString::fromLatin1(parent)
                                  << QString::fromLatin1(clean);
          };
    row("/usr/lib", "/ usr lib", "/usr", "/usr/lib");
    row("/usr", "/ usr", "/", "/usr");
    row("/", "/", "", "/");
    row("//usr//lib/", "/ usr lib", "/usr", "/usr/lib");
    row("/..", "/ ..", "/", "/");
    row("/a/../../b/.", "/ a .. .. b .", "/a/../../b", "/b");
    row("remote:/home/u", "remote: home u", "remote:/home", "remote:/home/u");
    row("remote:/home", "remote: home", "remote:", "remote:/home");
    row("remote:/", "remote:", "", "remote:");
    row("remote:", "remote:", "", "remote:");
    row("remote:/..", "remote: ..", "remote:", "remote:");
    row("remote:/../x/./y/", "remote: .. x . y", "remote:/../x/.", "remote:/x/y");
    row("remote:/a/../..", "remote: a .. ..", "remote:/a/..", "remote:");
    row("remote:src/..", "remote:src ..", "remote:src", "remote:src");
    row("C:/a", "C: a", "C:/", "C:/a");
    row("a/b/..", "a b ..", "a/b", "a");
    row("a/..", "a ..", "a", ".");
    row("../x", ".. x", "..", "../x");
    row("", "", "", "");
}

void TestDialogPaths::pathsAreTakenApartAndCleaned()
{
    QFETCH(QString, elements);
    QFETCH(QString, parent);
    QFETCH(QString, clean);

    const QString path = QString::fromLatin1(QTest::currentDataTag());
    const QStringList expected = elements.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QCOMPARE(tul::splitPath(path), expected);
    QCOMPARE(tul::lastElement(path), expected.isEmpty() ? QString() : expected.last());
    QCOMPARE(tul::splitPath(tul::toDialogPath(tul::joinElements(expected))), expected);
    QCOMPARE(tul::parentPath(path), parent);
    QCOMPARE(tul::cleanDialogPath(path), clean);
}

void TestDialogPaths::entriesAreJoinedWithOneSlash()
{
    const QString name = QStringLiteral("x");
    QCOMPARE(tul::joinSlash(QStringLiteral("/"), name), QStringLiteral("/x"));
    QCOMPARE(tul::joinSlash(QStringLiteral("remote:"), name), QStringLiteral("remote:/x"));
    QCOMPARE(tul::joinSlash(QStringLiteral("/a"), name), QStringLiteral("/a/x"));
    QCOMPARE(tul::joinSlash(QString(), name), name);
}

void TestDialogPaths::quotedNamesAreSplitAndJoined_data()
{
    QTest::addColumn<QString>("names"); // "|" between them
    QTest::addColumn<bool>("again"); // whether joining them gives the text

    const auto row = [](const char *text, const char *names, bool again = false) {
        QTest::newRow(text) << QString::fromLatin1(names) << again;
    };
    row("", "", true);
    row("a b", "a b", true);
    row("\"a\" \"b c\"", "a|b c", true);
    row("\"a\" \"b c", "a|b c");
    row("x \"a\" y", "a");
    row("\"\" \"a\"\"b\"", "a|b");
    row("\"", "");
}

void TestDialogPaths::quotedNamesAreSplitAndJoined()
{
    QFETCH(QString, names);
    QFETCH(bool, again);

    const QString text = QString::fromLatin1(QTest::currentDataTag());
    const QStringList expected = names.split(QLatin1Char('|'), Qt::SkipEmptyParts);
    QCOMPARE(tul::splitFileNames(text), expected);
    QCOMPARE(tul::joinFileNames(expected) == text, again);
}

QTEST_GUILESS_MAIN(TestDialogPaths)
#include "tst_dialogpaths.moc"
