#include <support/recordingtable.h>
#include <support/testcase.h>
#include <tul-util-gui/mdatable/mdatableitem.h>

#include <QApplication>
#include <QPainter>
#include <QTest>

class ComputedItem : public MDATableItem
{
public:
    using MDATableItem::MDATableItem;
    QString text() const override { return QStringLiteral("4711"); }
};

class TestMDATableItem : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void numbersAreAlignedRightAndTheRestLeft_data()
    {
        QTest::addColumn<int>("alignment");
        for (const char *number : {"-3.5", "1e3", " 12 ", "+5", "inf", "nan", ".5"})
            QTest::newRow(number) << static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
        for (const char *text : {"", "12 apples", "1,000", "3,5", "0x10", "1e400", "-", "1 2"})
            QTest::newRow(text) << static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter);
    }

    void numbersAreAlignedRightAndTheRestLeft()
    {
        QLocale::setDefault(QLocale(QLocale::German)); // plays no part
        QTEST(MDATableItem(nullptr, QString::fromLatin1(QTest::currentDataTag())).alignment(),
              "alignment");
        QLocale::setDefault(QLocale::c());
    }

    void sizeHintIsMeasuredInTheTablesFont()
    {
        MDATable table(1, 1);
        table.setFont(QFont(table.font().family(), 2 * table.font().pointSize()));
        const QFontMetrics metrics(table.font());
        const QFontMetrics plain(QApplication::font());
        const ComputedItem computed(&table, QStringLiteral("other")); // all goes by its text()
        QCOMPARE(computed.sizeHint(),
                 QSize(metrics.horizontalAdvance(computed.text()) + 10, metrics.height()));
        QVERIFY(computed.key() == computed.text() && computed.alignment() & Qt::AlignRight);
        QCOMPARE(MDATableItem(nullptr).sizeHint(), QSize(10, plain.height()));
        // Several lines are laid into the column.
        const MDATableItem item(&table, QStringLiteral("one\ntwo\nthree"));
        const QRect laid = metrics.boundingRect(QRect(2, 0, 496, 0), item.alignment(), item.text());
        QCOMPARE(item.sizeHint(), QSize(laid.width() + 10, laid.height()));
        table.setColumnWidth(500);
        QCOMPARE(item.sizeHint(), QSize(500, laid.height()));
    }

    void changingTheEnabledFlagRepaintsTheCell()
    {
        RecordingTable table(2, 2);
        table.fill();
        QVERIFY(table.showSettled());
        table.item(1, 1)->setEnabled(true);
        RecordingTable::settle();
        QVERIFY(table.paintEvents.isEmpty());
        table.item(1, 1)->setEnabled(false);
        RecordingTable::settle();
        QCOMPARE(table.paintEvents.value(0), table.cellGeometry(1, 1).adjusted(-2, -2, 2, 2));
        MDATableItem(nullptr).setEnabled(false); // in no table
    }

    void paintingFillsTheCellAndKeepsMarginsOfTwoPixels()
    {
        QPalette palette;
        palette.setColor(QPalette::Base, Qt::white);
        palette.setColor(QPalette::Highlight, Qt::yellow);
        const QRect cell(10, 10, 60, 40);
        for (const bool selected : {false, true}) {
            QImage image(80, 60, QImage::Format_RGB32);
            image.fill(Qt::green);
            QPainter painter(&image);
            painter.translate(cell.topLeft());
            MDATableItem item(nullptr, QString(18, QLatin1Char('M')));
            item.paint(&painter, palette, cell.translated(500, 700),
                       selected); // only the size counts
            const QColor background(selected ? Qt::yellow : Qt::white);
            bool written = false;
            for (int pixel = 0; pixel < 80 * 60; ++pixel) {
                const QPoint point(pixel % 80, pixel / 80);
                const QColor colour = image.pixelColor(point);
                if (!cell.contains(point))
                    QCOMPARE(colour, QColor(Qt::green));
                else if (!cell.adjusted(2, 0, -2, 0).contains(point))
                    QCOMPARE(colour, background);
                written = written || (cell.contains(point) && colour != background);
            }
            QVERIFY(written);
        }
    }

    void copiesCarryEverythingButAreInNoCell()
    {
        MDATable table(2, 2);
        auto *placed = new MDATableItem(&table, QStringLiteral("x"));
        placed->setEnabled(false);
        table.setItem(1, 0, placed);
        auto *copy = new MDATableItem(*placed);
        QVERIFY(copy->text() == placed->text() && copy->table() == &table && !copy->isEnabled());
        table.setItem(0, 1, copy); // leaves the other in its cell
        MDATableItem another(*copy);
        table.takeItem(&another);
        QVERIFY(table.item(1, 0) == placed && table.item(0, 1) == copy);
    }
};

QTEST_MAIN(TestMDATableItem)
#include "tst_mdatableitem.moc"
