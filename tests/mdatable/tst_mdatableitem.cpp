#include <support/counteditem.h>
#include <support/recordingtable.h>
#include <support/testcase.h>

#include <QApplication>
#include <QPainter>
#include <QTest>

namespace
{

class ComputedItem : public MDATableItem
{
public:
    using MDATableItem::MDATableItem;
    QString text() const override { return QStringLiteral("4711"); }
};

} // namespace

class TestMDATableItem : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void numbersAreAlignedRightAndTheRestLeft_data()
    {
        QTest::addColumn<int>("alignment");
        for (const char *number : {"12", "-3.5", "1e3", " 12 ", "+5", "inf", "nan", "-0", ".5",
                                   "123456789012345678901234567890"})
            QTest::newRow(number) << static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
        for (const char *text : {"", "12 apples", "1,000", "3,5", "0x10", "1e400", "-", "1 2"})
            QTest::newRow(text) << static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
    }

    void numbersAreAlignedRightAndTheRestLeft()
    {
        const QLocale before;
        QLocale::setDefault(QLocale(QLocale::German)); // plays no part
        const MDATableItem item(nullptr, QString::fromLatin1(QTest::currentDataTag()));
        QTEST(item.alignment(), "alignment");
        QLocale::setDefault(before);
    }

    void textThatADerivedItemComputesIsUsedForEverything()
    {
        const ComputedItem item(nullptr, QStringLiteral("other"));
        QCOMPARE(item.alignment(), MDATableItem(nullptr, item.text()).alignment());
        QCOMPARE(item.key(), QStringLiteral("4711"));
        QCOMPARE(item.sizeHint(), MDATableItem(nullptr, item.text()).sizeHint());
        const int *rtti = &MDATableItem::RTTI; // has an address
        QVERIFY(*rtti == 0 && item.rtti() == 0);
    }

    void sizeHintIsMeasuredInTheTablesFont()
    {
        MDATable table(1, 1);
        QFont large = table.font();
        large.setPointSize(2 * large.pointSize());
        table.setFont(large);
        const QFontMetrics metrics(large);
        const QFontMetrics plain(QApplication::font());
        for (const char *each : {"-1234.5", "a long text", ""}) {
            const QString text = QString::fromLatin1(each);
            QCOMPARE(MDATableItem(&table, text).sizeHint(),
                     QSize(metrics.horizontalAdvance(text) + 10, metrics.height()));
            QCOMPARE(MDATableItem(nullptr, text).sizeHint(),
                     QSize(plain.horizontalAdvance(text) + 10, plain.height()));
        }
        // Several lines are laid into the column.
        const MDATableItem item(&table, QStringLiteral("one\ntwo\nthree"));
        const QRect laid = metrics.boundingRect(QRect(2, 0, 496, 0), item.alignment(), item.text());
        QCOMPARE(item.sizeHint(), QSize(laid.width() + 10, laid.height()));
        table.setColumnWidth(500);
        QCOMPARE(item.sizeHint(), QSize(500, laid.height()));
        QVERIFY(MDATableItem(nullptr, item.text()).sizeHint().height() > plain.height());
    }

    void changingTheEnabledFlagRepaintsTheCell()
    {
        RecordingTable table(2, 2);
        table.fill();
        QVERIFY(table.showSettled());
        MDATableItem *item = table.item(1, 1);
        item->setEnabled(true);
        item->setText(QStringLiteral("quiet"));
        RecordingTable::settle();
        QVERIFY(table.paintEvents.isEmpty());
        item->setEnabled(false);
        RecordingTable::settle();
        QCOMPARE(table.paintEvents.value(0), table.cellGeometry(1, 1).adjusted(-2, -2, 2, 2));
        MDATableItem alone(nullptr);
        alone.setEnabled(false);
        QVERIFY(!alone.isEnabled());
    }

    void paintingFillsTheCellAndKeepsMarginsOfTwoPixels()
    {
        QPalette palette(Qt::black);
        palette.setCurrentColorGroup(QPalette::Inactive);
        palette.setColor(QPalette::Inactive, QPalette::Base, Qt::white);
        palette.setColor(QPalette::Inactive, QPalette::Text, Qt::blue);
        palette.setColor(QPalette::Inactive, QPalette::Highlight, Qt::yellow);
        palette.setColor(QPalette::Inactive, QPalette::HighlightedText, Qt::red);
        const QRect cell(10, 10, 60, 40);
        for (int i = 0; i < 4; ++i) {
            const bool selected = i % 2;
            QImage image(80, 60, QImage::Format_RGB32);
            image.fill(Qt::green);
            QPainter painter(&image);
            painter.translate(cell.topLeft());
            MDATableItem item(nullptr, QString(18, i < 2 ? QLatin1Char('8') : QLatin1Char('M')));
            item.paint(&painter, palette, cell.translated(500, 700),
                       selected); // only the size counts
            painter.end();
            int written = 0;
            for (int pixel = 0; pixel < 80 * 60; ++pixel) {
                const QPoint point(pixel % 80, pixel / 80);
                const QColor colour = image.pixelColor(point);
                written += colour == QColor(selected ? Qt::red : Qt::blue) ? 1 : 0;
                if (!cell.contains(point))
                    QCOMPARE(colour, QColor(Qt::green));
                else if (!cell.adjusted(2, 0, -2, 0).contains(point))
                    QCOMPARE(colour, QColor(selected ? Qt::yellow : Qt::white));
            }
            QVERIFY(written > 0);
        }
    }

    void copiesCarryEverythingButAreInNoCell()
    {
        MDATable table(2, 2);
        auto *placed = new CountedItem(QStringLiteral("x"), &table);
        placed->setEnabled(false);
        table.setItem(1, 0, placed);
        auto *copy = new CountedItem(*placed);
        QVERIFY(copy->text() == placed->text() && copy->table() == &table && !copy->isEnabled());
        QVERIFY(copy->row() == 1 && copy->col() == 0);
        table.setItem(0, 1, copy); // leaves the other in its cell
        CountedItem another(*copy);
        table.takeItem(&another);
        QVERIFY(table.item(1, 0) == placed && table.item(0, 1) == copy);
    }
};

QTEST_MAIN(TestMDATableItem)
#include "tst_mdatableitem.moc"
