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
    void pushDuringReadyReadKeepsTheOrder();
    void everyWindowSizeIsAnnounced();
};

void TestTerminal::newDeviceIsClosedEmptyAndOf80By12Cells()
{
    Terminal terminal;
    QVERIFY(!terminal.isOpen());
    QVERIFY(terminal.isSequential());
    QCOMPARE(terminal.columns(), 80);
    QCOMPARE(terminal.rows(), 12);
    announceWarning(QStringLiteral("QIODevice::read (Terminal): device not open"));
    terminal.pushBytes("lost to a closed device");
    QCOMPARE(terminal.read(1), QByteArray());

    Terminal opened;
    QVERIFY(opened.openMaster());
    QCOMPARE(opened.openMode(), QIODevice::ReadWrite);
    QCOMPARE(opened.bytesAvailable(), qint64(0));
    QVERIFY(opened.atEnd());
    QCOMPARE(opened.write("nobody listens"), qint64(0));
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
}

void TestTerminal::pushDuringReadyReadKeepsTheOrder()
{
    Terminal terminal;
    QVERIFY(terminal.openMaster());
    QByteArray read;
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
