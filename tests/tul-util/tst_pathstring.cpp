#include <support/testcase.h>
#include <tul-util/pathstring.h>

#include <QTest>

class TestPathString : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void pathIsTheTextBeforeTheLastSlash_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("directory");

        const auto row = [](const char *name, const char *path, const char *directory) {
            QTest::newRow(name) << QString::fromUtf8(path) << QString::fromUtf8(directory);
        };
        row("file", "/home/büro/core.12", "/home/büro");
        row("file in the root", "/vmlinuz", "/");
        row("nothing is cleaned", "/a/../b//c", "/a/../b/");
        row("file in the root of a drive", "C:/boot.ini", "C:/");
        row("no drive", "1:/a", "1:");
        row("no slash", "core", "");
#ifdef Q_OS_WIN
        row("native separators", "C:\\a\\b", "C:/a");
#else
        row("backslashes in a name", "a\\b", "");
#endif
    }

    void pathIsTheTextBeforeTheLastSlash()
    {
        QFETCH(const QString, path);
        QTEST(PathString(path).path(), "directory");
    }
};

QTEST_GUILESS_MAIN(TestPathString)
#include "tst_pathstring.moc"
