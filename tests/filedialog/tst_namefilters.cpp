#include <support/testcase.h>
#include <tul-util-gui/filedialog/namefilters_p.h>

#include <QTest>

class TestNameFilters : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void textsAreSplitIntoFilters_data();
    void textsAreSplitIntoFilters();
    void filtersGivePatternsNameAndSuffix_data();
    void filtersGivePatternsNameAndSuffix();
};

void TestNameFilters::textsAreSplitIntoFilters_data()
{
    QTest::addColumn<QStringList>("filters");

    const QString a = QStringLiteral("A (*.a)");
    const QString b = QStringLiteral("B (*.b)");
    QTest::newRow("") << QStringList();
    QTest::newRow("A (*.a)") << QStringList{a};
    QTest::newRow(" A (*.a) ;; B (*.b)") << QStringList{a, b};
    QTest::newRow("A (*.a)\nB (*.b)") << QStringList{a, b};
    QTest::newRow("A (*.a);;;;B (*.b)") << QStringList{a, QString(), b};
    QTest::newRow("A (*.a);;B\n(*.b)") << QStringList{a, b};
}

void TestNameFilters::textsAreSplitIntoFilters()
{
    QFETCH(QStringList, filters);
    QCOMPARE(tul::splitNameFilters(QString::fromLatin1(QTest::currentDataTag())), filters);
}

void TestNameFilters::filtersGivePatternsNameAndSuffix_data()
{
    QTest::addColumn<QString>("patterns"); // "|" between them
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("suffix");

    const auto row = [](const char *filter, const char *patterns, const char *name,
                        const char *suffix = nullptr) {
        QTest::newRow(filter) << QString::fromLatin1(patterns) << QString::fromLatin1(name)
                              << QString::fromLatin1(suffix);
    };
    row("Text (*.txt)", "*.txt", "Text", "txt");
    row("Sources (*.c *.h)", "*.c|*.h", "Sources", "c");
    row("Images (*.png;*.jpg)", "*.png;*.jpg", "Images", "png");
    row("Images (x) (*.png) ", "Images|(x)|(*.png)", "Images (x) (*.png) ", "png");
    row("Packed (*.tar.gz)", "*.tar.gz", "Packed", "tar.gz");
    row("Text(*.txt)", "*.txt", "Text");
    row("All Files (*)", "*", "All Files");
    row("All Files (*.*)", "*.*", "All Files");
    row("Code (*.[ch])", "*.[ch]", "Code");
    row("Dot (*.)", "*.", "Dot");
    row("*.a *.b", "*.a|*.b", "*.a *.b");
    row("(*.a)", "*.a", "(*.a)");
    row("None ()", "", "None");
    row("Open (*.a", "Open|(*.a", "Open (*.a");
    row("A (*.a) tail", "A|(*.a)|tail", "A (*.a) tail");
    row("A (*.a);;B (*.b)", "*.b", "A (*.a);;B");
    row("", "", "");
}

void TestNameFilters::filtersGivePatternsNameAndSuffix()
{
    QFETCH(QString, patterns);
    QFETCH(QString, name);
    QFETCH(QString, suffix);

    const QString filter = QString::fromLatin1(QTest::currentDataTag());
    QCOMPARE(tul::patternsOfFilter(filter).join(QLatin1Char('|')), patterns);
    QCOMPARE(tul::filterWithoutDetails(filter), name);
    QCOMPARE(tul::defaultSuffix(filter), suffix);
    QCOMPARE(tul::defaultSuffix(filter).isNull(), suffix.isNull()); // null: add no dot
}

QTEST_GUILESS_MAIN(TestNameFilters)
#include "tst_namefilters.moc"
