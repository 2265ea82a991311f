#include <support/literal.h>
#include <support/newh5file.h>
#include <support/testcase.h>
#include <workbench/arraypage.h>
#include <workbench/arraytable.h>
#include <workbench/dimensionlist.h>
#include <workbench/indexchooser.h>

#include <QAction>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>

namespace
{

constexpr long long billion = 1'000'000'000;

/// A page that is shown, with all that it had to say.
struct ShownPage {
    QWidget window; // without a layout, whose size limits the offscreen platform warns about
    ArrayPage page{&window};
    QSignalSpy faults{&page, &WorkbenchPage::failed};
    QSignalSpy status{&page, &WorkbenchPage::statusChanged};

    explicit ShownPage(const QStringList &arguments)
    {
        window.resize(900, 600);
        page.resize(900, 600);
        window.show();
        page.open(arguments);
    }

    ArrayTable *table() const { return page.findChild<ArrayTable *>(); }
    QString lastStatus() const { return status.constLast().constFirst().toString(); }
};

} // namespace

class TestArrayPage : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // "/four", in which each number is made of its coordinates as digits, "/flat" and "/point".
        const NewH5File file(path("arrays.h5"));
        std::vector<qint64> numbers;
        for (int i = 0; i < 200'000; ++i)
            numbers.push_back(i / 60 * 1000 + i / 20 % 3 * 100 + i / 5 % 4 * 10 + i % 5);
        file.add("four", H5T_NATIVE_INT, {2, 3, 4, 5}, numbers.data());
        file.add("flat", H5T_NATIVE_INT, {2000, 100}, numbers.data());
        file.add("point", H5T_NATIVE_INT, {}, numbers.data());
    }

    void onlyVisibleTilesAreReadAndAFaultIsToldOnce()
    {
        // Each number is the sum of its coordinates.
        int reads = 0;
        bool isBroken = false;
        const auto reader = [&](const ArrayBox &box, ArrayNumbers *numbers) {
            ++reads;
            const long long width = box.count.at(1);
            *numbers = ArrayNumbers(ArrayNumbers::Kind::Signed, int(box.count.at(0) * width));
            for (int i = 0; i < numbers->count(); ++i)
                static_cast<qint64 *>(numbers->data())[i]
                    = box.start.at(0) + i / width + box.start.at(1) + i % width;
            return isBroken ? "broken"_s : QString();
        };
        ArrayTable table;
        const ArraySlice slice({1000 * billion, 1000});
        QSignalSpy faults(&table, &ArrayTable::readFailed);
        table.resize(600, 400);
        table.setArray({"a"_s, "b"_s}, reader, slice);
        table.show();
        QVERIFY(QTest::qWaitForWindowExposed(&table));
        QTRY_VERIFY(reads >= 1);
        const int shown = reads;
        QVERIFY(shown <= 2);
        table.viewport()->repaint();
        QCOMPARE(reads, shown);
        QVERIFY(!table.item(1000 * billion, 0) && !table.item(0, 1000) && !table.item(-1, 0));

        // Columns widen for long numbers and keep their place.
        table.setCurrentCell(0, 500);
        QTRY_VERIFY(table.columnAt(0) > 400);
        const int narrow = table.columnWidth();
        const long long first = table.columnAt(0);
        const int left = table.columnPos(first);
        reads = 0;
        QCOMPARE(table.text(1000 * billion - 1, 999), QString::number(1000 * billion + 998));
        QCOMPARE(table.text(1000 * billion - 2, 998), QString::number(1000 * billion + 996));
        QCOMPARE(reads, 1);
        QTRY_VERIFY(table.columnWidth() > narrow);
        QVERIFY(table.columnAt(0) == first && table.columnPos(first) == left);

        isBroken = true;
        for (int row = 5000; row < 10'000; row += 100)
            QCOMPARE(table.text(row, 0), QString());
        QCOMPARE(faults.count(), 0); // never from within painting
        QTRY_COMPARE(faults.count(), 1);
        QCOMPARE(table.text(6000, 0), QString());
        QCoreApplication::processEvents();
        QCOMPARE(faults.count(), 1);
        isBroken = false;
        table.setArray({}, reader, slice);
        QCOMPARE(table.text(5000, 0), "5000"_s);
    }

    void badInputIsToldOnceAndThePageStaysUsable()
    {
        const QString good = path("arrays.h5");
        for (const QStringList &arguments :
             {QStringList{path("missing.h5")}, QStringList{QCoreApplication::applicationFilePath()},
              QStringList{good, "/%1<b>five"_s}, QStringList{good, "point"_s}}) {
            ShownPage shown(arguments);
            QVERIFY(QTest::qWaitForWindowExposed(&shown.window));
            QCOMPARE(shown.faults.count(), 1);
            QVERIFY(shown.faults.takeFirst().constFirst().toString().contains(arguments.last()));
            QVERIFY(shown.page.shots().isEmpty() && shown.table()->numRows() == 0);
            shown.page.open({good, "four"_s});
            QCOMPARE(shown.table()->text(3, 4), "34"_s);
            QCOMPARE(shown.faults.count(), 0);
        }
        // A dataset that cannot be shown leaves the shown one.
        ShownPage shown({good, "four"_s});
        auto *const combo = shown.page.findChild<QComboBox *>();
        const int index = combo->currentIndex();
        combo->setCurrentIndex(combo->findData("/point"_s));
        Q_EMIT combo->activated(combo->currentIndex());
        QVERIFY(shown.faults.count() == 1 && combo->currentIndex() == index);
        QCOMPARE(shown.table()->text(3, 4), "34"_s);
    }

    void fileCutShortWhileShownIsToldOnce()
    {
        QVERIFY(QFile::copy(path("arrays.h5"), path("cut.h5")));
        ShownPage shown({path("cut.h5"), "flat"_s});
        QVERIFY(QTest::qWaitForWindowExposed(&shown.window));
        QVERIFY(QFile::resize(path("cut.h5"), 4000));
        for (const long long row : {700LL, 1400LL, 1999LL})
            shown.table()->setCurrentCell(row, 99);
        QTRY_COMPARE(shown.faults.count(), 1);
        QCOMPARE(shown.table()->text(1999, 99), QString());
        QCoreApplication::processEvents();
        QCOMPARE(shown.faults.count(), 1);
    }

    void movedDimensionsRearrangeTheTable()
    {
        ShownPage shown({path("arrays.h5"), "four"_s});
        ArrayTable *const table = shown.table();

        // Not at once: the lists are in between while a drag goes on.
        shown.page.moveDimension(0, ArraySlice::Rows);
        QCOMPARE(table->numRows(), 4LL);
        QTRY_COMPARE(table->numRows(), 8LL);
        QCOMPARE(shown.page.findChildren<IndexChooser *>().size(), 1);
        QCOMPARE(table->text(3, 4), "1014"_s); // rows: dim 2, then dim 0
        table->setCurrentCell(3, 4);
        QCOMPARE(shown.lastStatus(), "dim 0 1, dim 1 0, dim 2 1, dim 3 4: 1014"_s);

        // Without a mouse: the entry goes up, then to the columns.
        auto *const rows = shown.page.findChildren<DimensionList *>().at(ArraySlice::Rows);
        const auto trigger = [&](const QString &text) {
            const auto actions = rows->actions();
            for (QAction *const action : actions) {
                if (action->text().remove(QLatin1Char('&')) == text)
                    action->trigger();
            }
        };
        trigger("Move Up"_s);
        QTRY_COMPARE(table->text(3, 4), "34"_s);
        trigger("Move to Columns"_s);
        QTRY_COMPARE(table->numCols(), 10LL);
        QCOMPARE(table->text(3, 3), "1031"_s); // columns: dim 3, then dim 0

        // What is no dimension is undone.
        rows->addItem("from elsewhere"_s);
        rows->addDimension(3, "twice"_s, QString());
        QTRY_COMPARE(rows->dimensions(), QVector<int>{2});
        QCOMPARE(table->numCols(), 10LL);
    }

    void chosenIndexPicksTheSliceAndKeepsTheView()
    {
        ShownPage shown({path("arrays.h5"), "four"_s});
        shown.table()->setCurrentCell(2, 3);
        shown.page.findChildren<QDoubleSpinBox *>().at(1)->setValue(2);
        QCOMPARE(shown.lastStatus(), "dim 0 0, dim 1 2, dim 2 2, dim 3 3: 223"_s);
        shown.page.findChildren<QSlider *>().at(0)->setValue(1);
        QCOMPARE(shown.table()->text(0, 0), "1200"_s);
        QCOMPARE(shown.table()->currentRow(), 2LL);

        // Moved about, a dimension keeps its index for when it is fixed again.
        shown.page.moveDimension(1, ArraySlice::Columns);
        QTRY_COMPARE(shown.table()->numCols(), 15LL);
        shown.page.moveDimension(1, ArraySlice::Fixed);
        QTRY_COMPARE(shown.table()->text(0, 0), "1200"_s);
    }

    void choosersReachEveryIndexOfLongDimensions()
    {
        IndexChooser chooser(1000 * billion, "time"_s);
        QSignalSpy changes(&chooser, &IndexChooser::indexChanged);
        auto *const box = chooser.findChild<QDoubleSpinBox *>();
        auto *const slider = chooser.findChild<QSlider *>();
        const auto last = [&] { return changes.constLast().constFirst().toLongLong(); };

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

private:
    QString path(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    const QTemporaryDir m_folder;
};

QTEST_MAIN(TestArrayPage)
#include "tst_arraypage.moc"
