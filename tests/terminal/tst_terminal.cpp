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
    void bytesAreReadInTheOrderOfTheirPushes();
    void everyWindowSizeIsAnnounced();
};

void TestTerminal::bytesAreReadInTheOrderOfTheirPushes()
{
    Terminal terminal;
    announceWarning("QIODevice::read (Terminal): device not open"_s);
    QCOMPARE(terminal.read(1), QByteArray());
    QVERIFY(terminal.openMaster());
    QVERIFY(terminal.atEnd());
    QCOMPARE(terminal.write("nobody listens"), qint64(0));
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
    QCOMPARE(QPoint(terminal->columns(), terminal->rows()), QPoint(80, 12));
    QSignalSpy spy(terminal, &Terminal::windowSizeChanged);
    for (int i = 0; i < 2; ++i)
        terminal->setWindowSize(132, -1);
    QCOMPARE(QPoint(terminal->columns(), terminal->rows()), QPoint(132, -1));
    QCOMPARE(spy, QList<QVariantList>({{132, -1}, {132, -1}}));
    connect(terminal, &Terminal::windowSizeChanged, this, [&] { delete terminal; });
    terminal->setWindowSize(1, 1); // survives that
    QVERIFY(QMetaType::type("QProcess::ExitStatus") != QMetaType::UnknownType);
}

QTEST_GUILESS_MAIN(TestTerminal)

#include "tst_terminal.moc"
