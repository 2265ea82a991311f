#include <support/literal.h>
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
    QString text() const override { return "4711"_s; }
};

class TestMDATableItem : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void numbersAreAlignedRightAndTheRestLeft()
    {
        QLocale::setDefault(QLocale(QLocale::German)); // plays no part
        const auto isRight = [](const QString &text) {
            return bool(MDATableItem(nullptr, text).alignment() & Qt::AlignRight);
        };
        QVERIFY(isRight("-3.5"_s) && !isRight(QString()) && !isRight("12 apples"_s));
        QVERIFY(!isRight("3,5"_s));
        QLocale::setDefault(QLocale::c());
    }

    void sizeHintIsMeasuredInTheTablesFont()
    {
        MDATable table(1, 1);
        table.setFont(QFont(table.font().family(), 2 * table.font().pointSize()));
        const QFontMetrics metrics(table.font());
        const QFontMetrics plain(QApplication::font());
        const ComputedItem computed(&table, "other"_s); // all goes by its text()
        QCOMPARE(computed.sizeHint(),
                 QSize(metrics.horizontalAdvance(computed.text()) + 10, metrics.height()));
        QVERIFY(computed.key() == computed.text() && computed.alignment() & Qt::AlignRight);
        QCOMPARE(MDATableItem(nullptr).sizeHint(), QSize(10, plain.height()));
        // Several lines are laid into the column.
        const MDATableItem item(&table, "one\ntwo\nthree"_s);
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
        for (const bool enabled : {true, false}) { // it is enabled
            table.item(1, 1)->setEnabled(enabled);
            RecordingTable::settle();
            QCOMPARE(table.paintEvents.isEmpty(), enabled);
        }
        MDATableItem(nullptr).setEnabled(false); // in no table
    }

    // The cell is filled, and the text keeps a margin of two pixels; nothing around is touched.
    void paintingLooksAsIfDoneByTheToolkit()
    {
        QPalette textured;
        textured.setBrush(QPalette::Base, QBrush(Qt::lightGray, Qt::DiagCrossPattern));
        textured.setColor(QPalette::Highlight, QColor(0, 0, 200, 90));
        for (int way = 0; way < 8; ++way) {
            const QPalette palette = way & 1 ? textured : QPalette();
            const bool selected = way & 2;
            const QRect cell(0, 0, 61, way & 4 ? 10 : 40);
            MDATableItem item(nullptr, "-12.5e3"_s);
            QImage images[2];
            for (QImage &image : images) {
                image = QImage(80, 60, QImage::Format_RGB32);
                image.fill(Qt::green);
                QPainter painter(&image);
                painter.setPen(QPen(QBrush(Qt::black, Qt::Dense5Pattern), 1)); // is not kept
                painter.translate(10, 10);
                if (&image == &images[0]) {
                    item.paint(&painter, palette, cell.translated(5, 7), selected);
                    continue;
                }
                painter.fillRect(cell,
                                 palette.brush(selected ? QPalette::Highlight : QPalette::Base));
                painter.setPen(
                    palette.color(selected ? QPalette::HighlightedText : QPalette::Text));
                painter.drawText(cell.adjusted(2, 0, -2, 0), item.alignment(), item.text());
            }
            QVERIFY2(images[0] == images[1], qPrintable(QString::number(way)));
        }
    }

    void copiesCarryEverythingButAreInNoCell()
    {
        MDATable table(2, 2);
        auto *placed = new MDATableItem(&table, "x"_s);
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
