#include <support/literal.h>
#include <support/testcase.h>
#include <tul-util-gui/terminal/terminal.h>

#include <QPointer>
#include <QSignalSpy>
#include <QTest>

class TestTerminal : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void newDeviceIsClosedEmptyAndOf80By12Cells();
    void bytesAreReadInTheOrderOfTheirPushes();
    void everyWindowSizeIsAnnounced();
};

void TestTerminal::newDeviceIsClosedEmptyAndOf80By12Cells()
{
    Terminal terminal;
    QVERIFY(!terminal.isOpen());
    QVERIFY(terminal.isSequential());
    QCOMPARE(QPoint(terminal.columns(), terminal.rows()), QPoint(80, 12));
    announceWarning("QIODevice::read (Terminal): device not open"_s);
    QCOMPARE(terminal.read(1), QByteArray());
    QVERIFY(terminal.openMaster());
    QCOMPARE(terminal.openMode(), QIODevice::ReadWrite);
    QCOMPARE(terminal.bytesAvailable(), qint64(0));
    QVERIFY(terminal.atEnd());
    QCOMPARE(terminal.write("nobody listens"), qint64(0));
}

void TestTerminal::bytesAreReadInTheOrderOfTheirPushes()
{
    Terminal terminal;
    QVERIFY(terminal.openMaster());
    const QSignalSpy ready(&terminal, &QIODevice::readyRead);
    terminal.pushBytes("abc");
    QCOMPARE(terminal.read(2), QByteArray("ab"));
    QCOMPARE(terminal.bytesAvailable(), qint64(1)); // held by the base
    terminal.pushBytes("d");
    QCOMPARE(terminal.bytesAvailable(), qint64(2)); // held by both
    QCOMPARE(terminal.read(1), QByteArray("c"));
    QVERIFY(!terminal.atEnd()); // held by the buffer
    terminal.pushBytes({});
    QCOMPARE(ready.size(), 3);
    const QByteArray many(100000, 'x');
    terminal.pushBytes(many);
    QCOMPARE(terminal.readAll(), "d" + many);
    QVERIFY(terminal.atEnd());

    QByteArray read; // by a slot that pushes more
    connect(&terminal, &QIODevice::readyRead, this, [&] {
        read += terminal.readAll();
        if (read.size() < 3)
            terminal.pushBytes(QByteArray(1, char('a' + read.size())));
    });
    terminal.pushBytes("a");
    QCOMPARE(read, QByteArray("abc"));
}

void TestTerminal::everyWindowSizeIsAnnounced()
{
    QPointer<Terminal> terminal(new Terminal);
    QSignalSpy spy(terminal, &Terminal::windowSizeChanged);
    for (const QPoint size : {QPoint(80, 12), QPoint(0, -1), QPoint(132, 50)}) {
        terminal->setWindowSize(size.x(), size.y());
        QCOMPARE(spy.takeFirst(), QVariantList({terminal->columns(), terminal->rows()}));
        QCOMPARE(QPoint(terminal->columns(), terminal->rows()), size);
    }
    connect(terminal, &Terminal::windowSizeChanged, this, [&] { delete terminal; });
    terminal->setWindowSize(1, 1); // survives that
    QVERIFY(QMetaType::type("QProcess::ExitStatus") != QMetaType::UnknownType);
}

QTEST_GUILESS_MAIN(TestTerminal)

#include "tst_terminal.moc"
