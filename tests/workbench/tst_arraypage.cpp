#include <support/testcase.h>
#include <workbench/arraypage.h>
#include <workbench/arraytable.h>
#include <workbench/dimensionlist.h>
#include <workbench/h5handle.h>
#include <workbench/indexchooser.h>

#include <tul-util-gui/mdatable/mdatableitem.h>

#include <QAction>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFile>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

namespace
{

constexpr long long billion = 1'000'000'000;

/// An array in which each number is the sum of its coordinates, and which counts how often it is
/// read.
struct CountedArray {
    int reads = 0;
    bool broken = false;

    ArrayTable::Reader reader()
    {
        return [this](const ArrayBox &box, ArrayNumbers *numbers) { return read(box, numbers); };
    }

    QString read(const ArrayBox &box, ArrayNumbers *numbers)
    {
        ++reads;
        if (broken)
            return QStringLiteral("broken");
        long long total = 1;
        for (const long long count : box.count)
            total *= count;
        *numbers = ArrayNumbers(ArrayNumbers::Kind::Signed, static_cast<int>(total));
        auto *const values = static_cast<qint64 *>(numbers->data());
        for (long long i = 0; i < total; ++i) {
            long long rest = i;
            values[i] = 0;
            for (int d = box.count.size() - 1; d >= 0; --d) {
                values[i] += box.start.at(d) + rest % box.count.at(d);
                rest /= box.count.at(d);
            }
        }
        return {};
    }
};

/// A page that is shown, with all that it had to say.
struct ShownPage {
    QWidget window; // without a layout, whose size limits the offscreen platform warns about
    ArrayPage page{&window};
    QSignalSpy faults{&page, &WorkbenchPage::failed};
    QSignalSpy status{&page, &WorkbenchPage::statusChanged};

    ShownPage()
    {
        window.resize(900, 600);
        page.resize(900, 600);
        window.show();
    }

    ArrayTable *table() const { return page.findChild<ArrayTable *>(); }
    QList<DimensionList *> lists() const { return page.findChildren<DimensionList *>(); }
    QString lastStatus() const { return status.last().first().toString(); }
    void open(const QStringList &arguments) { page.open(arguments); }
};

} // namespace

class TestArrayPage : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void onlyWhatIsPaintedOrAskedForIsRead();
    void readFaultIsToldOnceAndLeavesCellsEmpty();
    void columnsWidenForLongNumbersAndKeepTheirPlace();

    void badInputIsToldOnceAndThePageStaysUsable_data();
    void badInputIsToldOnceAndThePageStaysUsable();
    void datasetThatCannotBeShownLeavesTheShownOne();
    void fileCutShortWhileShownIsToldOnce();
    void movedDimensionsRearrangeTheTable();
    void entriesThatAreNoDimensionsAreUndone();
    void chosenIndexPicksTheSliceAndKeepsTheView();
    void choosersReachEveryIndexOfLongDimensions();

private:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    QString copyOfArrays(const char *name) const;

    const QTemporaryDir m_folder;
};

void TestArrayPage::initTestCase()
{
    // "/four", in which each number is made of its coordinates as digits, "/flat" and "/point".
    const H5Handle file(H5Fcreate(QFile::encodeName(path("arrays.h5")).constData(), H5F_ACC_TRUNC,
                                  H5P_DEFAULT, H5P_DEFAULT),
                        H5Fclose);
    std::vector<int> four;
    for (int i = 0; i < 2 * 3 * 4 * 5; ++i)
        four.push_back(i / 60 * 1000 + i / 20 % 3 * 100 + i / 5 % 4 * 10 + i % 5);
    const auto make = [&](const char *name, const std::vector<hsize_t> &extents,
                          const int *values) {
        const H5Handle space(extents.empty() ? H5Screate(H5S_SCALAR)
                                             : H5Screate_simple(static_cast<int>(extents.size()),
                                                                extents.data(), nullptr),
                             H5Sclose);
        const H5Handle set(H5Dcreate2(file.id(), name, H5T_NATIVE_INT, space.id(), H5P_DEFAULT,
                                      H5P_DEFAULT, H5P_DEFAULT),
                           H5Dclose);
        QVERIFY(H5Dwrite(set.id(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) >= 0);
    };
    make("four", {2, 3, 4, 5}, four.data());
    make("flat", {2000, 100}, std::vector<int>(200'000, 1).data());
    make("point", {}, four.data());
}

QString TestArrayPage::copyOfArrays(const char *name) const
{
    QFile::copy(path("arrays.h5"), path(name));
    return path(name);
}

void TestArrayPage::onlyWhatIsPaintedOrAskedForIsRead()
{
    CountedArray array;
    ArrayTable table;
    table.resize(600, 400);
    table.setArray({QStringLiteral("a"), QStringLiteral("b")}, array.reader(),
                   ArraySlice({1000 * billion, 1000}));
    QVERIFY(array.reads <= 1); // opening an array costs the same whatever its size
    table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&table));
    QTRY_VERIFY(array.reads >= 1);
    const int shown = array.reads;
    QVERIFY(shown <= 2);

    table.viewport()->repaint();
    QCOMPARE(array.reads, shown);
    QCOMPARE(table.text(1000 * billion - 1, 999), QString::number(1000 * billion + 998));
    QCOMPARE(array.reads, shown + 1);
    QCOMPARE(table.text(1000 * billion - 2, 998), QString::number(1000 * billion + 996));
    QCOMPARE(array.reads, shown + 1);
    QVERIFY(!table.item(1000 * billion, 0));
    QVERIFY(!table.item(0, 1000));
    QVERIFY(!table.item(-1, 0));
}

void TestArrayPage::readFaultIsToldOnceAndLeavesCellsEmpty()
{
    CountedArray array;
    ArrayTable table;
    QSignalSpy faults(&table, &ArrayTable::readFailed);
    table.setArray({}, array.reader(), ArraySlice({10'000, 1000}));
    array.broken = true;
    for (int row = 0; row < 10'000; row += 100)
        QCOMPARE(table.text(row, 999), QString());
    QCOMPARE(faults.count(), 0); // never from within painting
    QTRY_COMPARE(faults.count(), 1);
    QCOMPARE(table.text(0, 0), QStringLiteral("0")); // known before
    QCOMPARE(table.text(5000, 0), QString());
    QCoreApplication::processEvents();
    QCOMPARE(faults.count(), 1);

    array.broken = false;
    table.setArray({}, array.reader(), ArraySlice({10'000, 1000}));
    QCOMPARE(table.text(5000, 0), QStringLiteral("5000"));
}

void TestArrayPage::columnsWidenForLongNumbersAndKeepTheirPlace()
{
    CountedArray array;
    ArrayTable table;
    table.resize(600, 400);
    table.setArray({}, array.reader(), ArraySlice({1000 * billion, 1000}));
    table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&table));
    const int narrow = table.columnWidth();
    table.setCurrentCell(0, 500);
    QTRY_VERIFY(table.columnAt(0) > 400);
    const long long first = table.columnAt(0);
    const int left = table.columnPos(first);

    const QString longText = table.text(999 * billion, 500);
    QTRY_VERIFY(table.columnWidth() > narrow);
    QVERIFY(table.columnWidth() >= MDATableItem(&table, longText).sizeHint().width());
    QCOMPARE(table.columnAt(0), first);
    QCOMPARE(table.columnPos(first), left);
}

void TestArrayPage::badInputIsToldOnceAndThePageStaysUsable_data()
{
    QTest::addColumn<QStringList>("arguments");

    const QString good = path("arrays.h5");
    QTest::newRow("no file") << QStringList{path("missing.h5")};
    QTest::newRow("no HDF5") << QStringList{QCoreApplication::applicationFilePath()};
    QTest::newRow("no such dataset") << QStringList{good, QStringLiteral("/%1<b>five")};
    QTest::newRow("no dimensions") << QStringList{good, QStringLiteral("point")};
}

void TestArrayPage::badInputIsToldOnceAndThePageStaysUsable()
{
    QFETCH(QStringList, arguments);

    ShownPage shown;
    shown.open(arguments);
    QVERIFY(QTest::qWaitForWindowExposed(&shown.window));
    QCOMPARE(shown.faults.count(), 1);
    QVERIFY(shown.faults.first().first().toString().contains(arguments.last()));
    QVERIFY(shown.page.shots().isEmpty());
    QCOMPARE(shown.table()->numRows(), 0LL);

    shown.open({path("arrays.h5"), QStringLiteral("four")});
    QCOMPARE(shown.table()->text(3, 4), QStringLiteral("34"));
    QCOMPARE(shown.page.shots(), QStringList{QStringLiteral("array-four")});
    QCOMPARE(shown.faults.count(), 1);
}

void TestArrayPage::datasetThatCannotBeShownLeavesTheShownOne()
{
    ShownPage shown;
    shown.open({path("arrays.h5"), QStringLiteral("/four")});
    auto *const combo = shown.page.findChild<QComboBox *>();
    const int index = combo->currentIndex();
    const int point = combo->findData(QStringLiteral("/point"));
    QVERIFY(point >= 0 && point != index);
    combo->setCurrentIndex(point);
    Q_EMIT combo->activated(point);
    QCOMPARE(shown.faults.count(), 1);
    QCOMPARE(combo->currentIndex(), index);
    QCOMPARE(shown.table()->text(0, 1), QStringLiteral("1"));
}

void TestArrayPage::fileCutShortWhileShownIsToldOnce()
{
    ShownPage shown;
    shown.open({copyOfArrays("cut.h5"), QStringLiteral("flat")});
    QVERIFY(QTest::qWaitForWindowExposed(&shown.window));
    QVERIFY(QFile::resize(path("cut.h5"), 4000));
    for (const long long row : {700LL, 1400LL, 1999LL})
        shown.table()->setCurrentCell(row, 99);
    QTRY_COMPARE(shown.faults.count(), 1);
    shown.table()->viewport()->repaint();
    QCOMPARE(shown.table()->text(1999, 99), QString());
    QCoreApplication::processEvents();
    QCOMPARE(shown.faults.count(), 1);

    shown.open({path("arrays.h5"), QStringLiteral("flat")});
    QCOMPARE(shown.table()->text(1999, 99), QStringLiteral("1"));
}

void TestArrayPage::movedDimensionsRearrangeTheTable()
{
    ShownPage shown;
    shown.open({path("arrays.h5"), QStringLiteral("four")});
    ArrayTable *const table = shown.table();
    QCOMPARE(shown.lastStatus(), QStringLiteral("dim 0 0, dim 1 0, dim 2 0, dim 3 0: 0"));
    QCOMPARE(shown.page.findChildren<IndexChooser *>().size(), 2);

    // Not at once: the lists are in between while a drag goes on.
    shown.page.moveDimension(0, ArraySlice::Rows);
    QCOMPARE(table->numRows(), 4LL);
    QTRY_COMPARE(table->numRows(), 8LL);
    QCOMPARE(shown.page.findChildren<IndexChooser *>().size(), 1);
    QCOMPARE(table->text(3, 4), QStringLiteral("1014")); // rows: dim 2, then dim 0
    table->setCurrentCell(3, 4);
    QCOMPARE(shown.lastStatus(), QStringLiteral("dim 0 1, dim 1 0, dim 2 1, dim 3 4: 1014"));

    // Without a mouse: the entry goes up, then to the columns.
    DimensionList *const rows = shown.lists().at(ArraySlice::Rows);
    const auto trigger = [&](const QString &text) {
        for (QAction *const action : rows->actions()) {
            if (action->text().remove(QLatin1Char('&')) == text)
                action->trigger();
        }
    };
    trigger(QStringLiteral("Move Up"));
    QTRY_COMPARE(table->text(3, 4), QStringLiteral("34"));
    trigger(QStringLiteral("Move to Columns"));
    QTRY_COMPARE(table->numCols(), 10LL);
    QCOMPARE(table->numRows(), 4LL);
    QCOMPARE(table->text(3, 3), QStringLiteral("1031")); // columns: dim 3, then dim 0
    QCOMPARE(shown.faults.count(), 0);
}

void TestArrayPage::entriesThatAreNoDimensionsAreUndone()
{
    ShownPage shown;
    shown.open({path("arrays.h5"), QStringLiteral("four")});
    const QList<DimensionList *> lists = shown.lists();
    lists.at(ArraySlice::Rows)->addItem(QStringLiteral("from elsewhere"));
    lists.at(ArraySlice::Rows)->addDimension(3, QStringLiteral("twice"), QString());
    QTRY_COMPARE(lists.at(ArraySlice::Rows)->dimensions(), QVector<int>{2});
    QCOMPARE(lists.at(ArraySlice::Columns)->dimensions(), QVector<int>{3});
    QCOMPARE(shown.table()->numRows(), 4LL);
}

void TestArrayPage::chosenIndexPicksTheSliceAndKeepsTheView()
{
    ShownPage shown;
    shown.open({path("arrays.h5"), QStringLiteral("four")});
    shown.table()->setCurrentCell(2, 3);
    shown.page.findChildren<QDoubleSpinBox *>().at(1)->setValue(2);
    QCOMPARE(shown.lastStatus(), QStringLiteral("dim 0 0, dim 1 2, dim 2 2, dim 3 3: 223"));
    shown.page.findChildren<QSlider *>().at(0)->setValue(1);
    QCOMPARE(shown.table()->text(0, 0), QStringLiteral("1200"));
    QCOMPARE(shown.table()->currentRow(), 2LL);

    // Moved about, a dimension keeps its index for when it is fixed again.
    shown.page.moveDimension(1, ArraySlice::Columns);
    QTRY_COMPARE(shown.table()->numCols(), 15LL);
    shown.page.moveDimension(1, ArraySlice::Fixed);
    QTRY_COMPARE(shown.table()->text(0, 0), QStringLiteral("1200"));
}

void TestArrayPage::choosersReachEveryIndexOfLongDimensions()
{
    IndexChooser chooser(1000 * billion, QStringLiteral("time"));
    QSignalSpy changes(&chooser, &IndexChooser::indexChanged);
    auto *const box = chooser.findChild<QDoubleSpinBox *>();
    auto *const slider = chooser.findChild<QSlider *>();
    const auto last = [&] { return changes.last().first().toLongLong(); };

    slider->setValue(slider->maximum());
    QCOMPARE(last(), 1000 * billion - 1);
    box->setValue(123'456'789'012);
    QCOMPARE(last(), 123'456'789'012LL);
    // A step of the slider goes on from there, and is not taken back by rounding.
    const int position = slider->value();
    slider->setValue(position + 1);
    QCOMPARE(slider->value(), position + 1);
    QVERIFY(last() > 123'456'789'012LL);
    QVERIFY(!IndexChooser(1, QString()).isEnabled());
}

QTEST_MAIN(TestArrayPage)
#include "tst_arraypage.moc"
