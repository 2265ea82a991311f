#include <support/testcase.h>
#include <workbench/arraypage.h>
#include <workbench/arraytable.h>
#include <workbench/dimensionlist.h>
#include <workbench/h5handle.h>
#include <workbench/indexchooser.h>

#include <QAction>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFile>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>

#include <vector>

namespace
{

constexpr long long billion = 1'000'000'000;

/// An array in which each number is the sum of its coordinates, and which counts how often it is
/// read.
struct CountedArray {
    int reads = 0;
    bool broken = false;

    QString read(const ArrayBox &box, ArrayNumbers *numbers)
    {
        ++reads;
        if (broken)
            return QStringLiteral("broken");
        const long long width = box.count.at(1);
        *numbers
            = ArrayNumbers(ArrayNumbers::Kind::Signed, static_cast<int>(box.count.at(0) * width));
        auto *const values = static_cast<qint64 *>(numbers->data());
        for (int i = 0; i < numbers->count(); ++i)
            values[i] = box.start.at(0) + i / width + box.start.at(1) + i % width;
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

    void onlyVisibleTilesAreReadAndAFaultIsToldOnce();
    void badInputIsToldOnceAndThePageStaysUsable_data();
    void badInputIsToldOnceAndThePageStaysUsable();
    void fileCutShortWhileShownIsToldOnce();
    void movedDimensionsRearrangeTheTable();
    void chosenIndexPicksTheSliceAndKeepsTheView();
    void choosersReachEveryIndexOfLongDimensions();

private:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    const QTemporaryDir m_folder;
};

void TestArrayPage::initTestCase()
{
    // "/four", in which each number is made of its coordinates as digits, "/flat" and "/point".
    const H5Handle file(H5Fcreate(QFile::encodeName(path("arrays.h5")).constData(), H5F_ACC_TRUNC,
                                  H5P_DEFAULT, H5P_DEFAULT),
                        H5Fclose);
    std::vector<int> numbers;
    for (int i = 0; i < 200'000; ++i)
        numbers.push_back(i / 60 * 1000 + i / 20 % 3 * 100 + i / 5 % 4 * 10 + i % 5);
    const auto make = [&](const char *name, const std::vector<hsize_t> &extents) {
        const H5Handle space(
            H5Screate_simple(static_cast<int>(extents.size()), extents.data(), nullptr), H5Sclose);
        const H5Handle set(H5Dcreate2(file.id(), name, H5T_NATIVE_INT, space.id(), H5P_DEFAULT,
                                      H5P_DEFAULT, H5P_DEFAULT),
                           H5Dclose);
        H5Dwrite(set.id(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers.data());
    };
    make("four", {2, 3, 4, 5});
    make("flat", {2000, 100});
    make("point", {});
}

void TestArrayPage::onlyVisibleTilesAreReadAndAFaultIsToldOnce()
{
    CountedArray array;
    ArrayTable table;
    const auto reader
        = [&](const ArrayBox &box, ArrayNumbers *numbers) { return array.read(box, numbers); };
    const ArraySlice slice({1000 * billion, 1000});
    QSignalSpy faults(&table, &ArrayTable::readFailed);
    table.resize(600, 400);
    table.setArray({QStringLiteral("a"), QStringLiteral("b")}, reader, slice);
    table.show();
    QVERIFY(QTest::qWaitForWindowExposed(&table));
    QTRY_VERIFY(array.reads >= 1);
    const int shown = array.reads;
    QVERIFY(shown <= 2);
    table.viewport()->repaint();
    QCOMPARE(array.reads, shown);
    QVERIFY(!table.item(1000 * billion, 0) && !table.item(0, 1000) && !table.item(-1, 0));

    // Columns widen for long numbers and keep their place.
    table.setCurrentCell(0, 500);
    QTRY_VERIFY(table.columnAt(0) > 400);
    const int narrow = table.columnWidth();
    const long long first = table.columnAt(0);
    const int left = table.columnPos(first);
    array.reads = 0;
    QCOMPARE(table.text(1000 * billion - 1, 999), QString::number(1000 * billion + 998));
    QCOMPARE(table.text(1000 * billion - 2, 998), QString::number(1000 * billion + 996));
    QCOMPARE(array.reads, 1);
    QTRY_VERIFY(table.columnWidth() > narrow);
    QCOMPARE(table.columnAt(0), first);
    QCOMPARE(table.columnPos(first), left);

    array.broken = true;
    for (int row = 5000; row < 10'000; row += 100)
        QCOMPARE(table.text(row, 0), QString());
    QCOMPARE(faults.count(), 0); // never from within painting
    QTRY_COMPARE(faults.count(), 1);
    QCOMPARE(table.text(6000, 0), QString());
    QCoreApplication::processEvents();
    QCOMPARE(faults.count(), 1);
    array.broken = false;
    table.setArray({}, reader, slice);
    QCOMPARE(table.text(5000, 0), QStringLiteral("5000"));
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
    QCOMPARE(shown.faults.count(), 1);

    // A dataset that cannot be shown leaves the shown one.
    auto *const combo = shown.page.findChild<QComboBox *>();
    const int index = combo->currentIndex();
    const int point = combo->findData(QStringLiteral("/point"));
    combo->setCurrentIndex(point);
    Q_EMIT combo->activated(point);
    QCOMPARE(shown.faults.count(), 2);
    QCOMPARE(combo->currentIndex(), index);
    QCOMPARE(shown.table()->text(3, 4), QStringLiteral("34"));
}

void TestArrayPage::fileCutShortWhileShownIsToldOnce()
{
    ShownPage shown;
    QVERIFY(QFile::copy(path("arrays.h5"), path("cut.h5")));
    shown.open({path("cut.h5"), QStringLiteral("flat")});
    QVERIFY(QTest::qWaitForWindowExposed(&shown.window));
    QVERIFY(QFile::resize(path("cut.h5"), 4000));
    for (const long long row : {700LL, 1400LL, 1999LL})
        shown.table()->setCurrentCell(row, 99);
    QTRY_COMPARE(shown.faults.count(), 1);
    shown.table()->viewport()->repaint();
    QCOMPARE(shown.table()->text(1999, 99), QString());
    QCoreApplication::processEvents();
    QCOMPARE(shown.faults.count(), 1);
}

void TestArrayPage::movedDimensionsRearrangeTheTable()
{
    ShownPage shown;
    shown.open({path("arrays.h5"), QStringLiteral("four")});
    ArrayTable *const table = shown.table();

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
    QCOMPARE(table->text(3, 3), QStringLiteral("1031")); // columns: dim 3, then dim 0

    // What is no dimension is undone.
    rows->addItem(QStringLiteral("from elsewhere"));
    rows->addDimension(3, QStringLiteral("twice"), QString());
    QTRY_COMPARE(rows->dimensions(), QVector<int>{2});
    QCOMPARE(table->numCols(), 10LL);
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
