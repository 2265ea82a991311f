#include <support/testcase.h>
#include <tul-util-gui/filedialog/dialogpaths_p.h>
#include <tul-util-gui/filedialog/namefilters_p.h>
#include <tul-util-gui/filedialog/remotesettings_p.h>

#include <QTest>

namespace
{

QString q(const char *text)
{
    return QString::fromLatin1(text);
}

QStringList parts(const char *text)
{
    return q(text).split(QLatin1Char('|'), Qt::SkipEmptyParts);
}

} // namespace

/// The rules for paths, prefixes and name filters that all file dialogs share.
class TestDialogPaths : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void pathsEndAtTheirFirstElement();
    void quotedNamesAreSplitAndJoined();
    void pathsWithAColonAreLocalOnlyOnADrive();
    void filtersGivePatternsNameAndSuffix();
};

void TestDialogPaths::pathsEndAtTheirFirstElement()
{
    const char *const rows[][4]
        = {// path, elements, parent, clean path
           {"/usr/lib", "/|usr|lib", "/usr", "/usr/lib"},
           {"//usr//lib/", "/|usr|lib", "/usr", "/usr/lib"},
           {"/usr", "/|usr", "/", "/usr"},
           {"/", "/", "", "/"},
           {"/a/../../b/.", "/|a|..|..|b|.", "/a/../../b", "/b"},
           {"remote:/home/u", "remote:|home|u", "remote:/home", "remote:/home/u"},
           {"remote:/", "remote:", "", "remote:"},
           {"remote:/..", "remote:|..", "remote:", "remote:"},
           {"remote:/../x/./y/", "remote:|..|x|.|y", "remote:/../x/.", "remote:/x/y"},
           {"remote:src/..", "remote:src|..", "remote:src", "remote:src"},
           {"C:/a", "C:|a", "C:/", "C:/a"},
           {"a/..", "a|..", "a", "."},
           {"", "", "", ""}};
    for (const auto &[path, elements, parent, clean] : rows) {
        QCOMPARE(tul::splitPath(q(path)), parts(elements));
        QCOMPARE(tul::lastElement(q(path)),
                 parts(elements).isEmpty() ? QString() : parts(elements).last());
        QCOMPARE(tul::parentPath(q(path)), q(parent));
        QCOMPARE(tul::cleanDialogPath(q(path)), q(clean));
    }
    QCOMPARE(tul::requestPath(q("//usr")), q("/usr"));
    QCOMPARE(tul::joinSlash(q("/"), q("x")) + tul::joinSlash(q("remote:"), q("x")),
             q("/xremote:/x"));
    QCOMPARE(tul::joinSlash(QString(), q("x")), q("x"));
}

void TestDialogPaths::quotedNamesAreSplitAndJoined()
{
    for (const char *const text : {"", "a b", "\"a\" \"b c\""})
        QCOMPARE(tul::joinFileNames(tul::splitFileNames(q(text))), q(text));
    for (const char *const text : {"\"a\" \"b c", "x \"a\" y \"b c\"", "\"\"\"a\"\"b c\""})
        QCOMPARE(tul::splitFileNames(q(text)), parts("a|b c"));
    QVERIFY(tul::splitFileNames(q("\"")).isEmpty());
}

void TestDialogPaths::pathsWithAColonAreLocalOnlyOnADrive()
{
    const QList<QStringList> systems{{q("A:/"), q("C:/")}, {q("/")}, {}};
    const char *const rows[][2]
        = {{"C:/x", "ynn"}, {"c:/x", "nnn"},      {"C:x", "nnn"}, {"/a:b", "nyn"},
           {"a:b", "nnn"},  {"remote:/x", "nnn"}, {"/a", "yyy"},  {"", "yyy"}};
    for (const auto &[path, local] : rows) {
        for (int i = 0; i < systems.size(); ++i)
            QCOMPARE(tul::isLocalPath(q(path), systems.at(i)), local[i] == 'y');
    }
}

void TestDialogPaths::filtersGivePatternsNameAndSuffix()
{
    QCOMPARE(tul::splitNameFilters(q(" A (*.a) ;; B (*.b)")), parts("A (*.a)|B (*.b)"));
    QCOMPARE(tul::splitNameFilters(q("A (*.a)\nB (*.b)")), parts("A (*.a)|B (*.b)"));
    QCOMPARE(tul::splitNameFilters(q("A;;;;B\nC")), QStringList({q("A"), QString(), q("B C")}));
    QVERIFY(tul::splitNameFilters(QString()).isEmpty());
    for (const char *const shown : {"A", "A (*.a)"})
        QCOMPARE(tul::filterShownAs(q(shown), parts("B (*.b)|A (*.a)")), q("A (*.a)"));
    QCOMPARE(tul::filterShownAs(q("C"), parts("B (*.b)|A (*.a)")), q("C"));

    const char *const rows[][4] = {// filter, patterns, name, suffix
                                   {"Sources (*.c *.h)", "*.c|*.h", "Sources", "c"},
                                   {"Images (x) (*.png;*.jpg)", "*.png;*.jpg", "Images (x)", "png"},
                                   {"Packed (*.tar.gz)", "*.tar.gz", "Packed", "tar.gz"},
                                   {"Text(*.txt)", "*.txt", "Text", nullptr},
                                   {"All Files (*)", "*", "All Files", nullptr},
                                   {"All Files (*.*)", "*.*", "All Files", nullptr},
                                   {"Code (*.[ch])", "*.[ch]", "Code", nullptr},
                                   {"Dot (*.)", "*.", "Dot", nullptr},
                                   {"*.a *.b", "*.a|*.b", "*.a *.b", nullptr},
                                   {"None ()", "", "None", nullptr},
                                   {"Open (*.a", "Open|(*.a", "Open (*.a", nullptr},
                                   {"A (*.a)\nB (*.b)", "*.b", "A (*.a)\nB", nullptr},
                                   {"A (*.a);;B (*.b)", "*.b", "A (*.a);;B", nullptr}};
    for (const auto &[filter, patterns, name, suffix] : rows) {
        QCOMPARE(tul::patternsOfFilter(q(filter)), parts(patterns));
        QCOMPARE(tul::filterWithoutDetails(q(filter)), q(name));
        QCOMPARE(tul::defaultSuffix(q(filter)), q(suffix));
        QCOMPARE(tul::defaultSuffix(q(filter)).isNull(), !suffix); // null: not even a dot
    }
}

QTEST_GUILESS_MAIN(TestDialogPaths)
#include "tst_dialogpaths.moc"
