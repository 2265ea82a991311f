#include <support/testcase.h>
#include <tul-util/tulringbuffer.h>

#include <QRandomGenerator>
#include <QTest>

#include <limits>

class TestTULRingBuffer : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void bytesComeBackInOrderInAnyPieces_data();
    void bytesComeBackInOrderInAnyPieces();
    void readsStopAtTheGivenLengthAndTakeNothingWithoutRoom();
};

void TestTULRingBuffer::bytesComeBackInOrderInAnyPieces_data()
{
    QTest::addColumn<int>("chunkSize");
    for (const int size :
         {std::numeric_limits<int>::min(), 0, 1, 7, 64, 4096, std::numeric_limits<int>::max()})
        QTest::addRow("%d", size) << size;
}

// Against a plain byte array, with pieces below, at and above the chunk size.
void TestTULRingBuffer::bytesComeBackInOrderInAnyPieces()
{
    QFETCH(const int, chunkSize);
    QRandomGenerator random(42);
    TULRingBuffer buffer(chunkSize);
    QByteArray expected;
    char next = 0;
    for (int i = 0; i < 3000; ++i) {
        QByteArray bytes(random.bounded(i % 100 < 2 ? 10000 : 130), Qt::Uninitialized);
        if (random.bounded(2) == 0) {
            for (char &byte : bytes)
                byte = next++;
            buffer.append(bytes);
            expected += bytes;
        } else {
            const int room = bytes.size();
            bytes.truncate(static_cast<int>(buffer.readData(bytes.data(), room)));
            QCOMPARE(bytes, expected.left(room));
            expected.remove(0, bytes.size());
        }
        QCOMPARE(buffer.size(), expected.size());
        QCOMPARE(buffer.isEmpty(), expected.isEmpty());
    }
}

void TestTULRingBuffer::readsStopAtTheGivenLengthAndTakeNothingWithoutRoom()
{
    TULRingBuffer buffer(4);
    buffer.append(QByteArrayLiteral("abcdefghi"));
    char bytes[] = "..........";
    QCOMPARE(buffer.readData(bytes, 0), qint64(0));
    QCOMPARE(buffer.readData(bytes, std::numeric_limits<qint64>::min()), qint64(0));
    QCOMPARE(buffer.readData(nullptr, 2), qint64(0));
    QCOMPARE(buffer.readData(bytes, 6), qint64(6));
    QCOMPARE(bytes, "abcdef....");
    QCOMPARE(buffer.readData(bytes, std::numeric_limits<qint64>::max()), qint64(3));
    QCOMPARE(bytes, "ghidef....");
    QCOMPARE(buffer.readData(bytes, 10), qint64(0));
}

QTEST_GUILESS_MAIN(TestTULRingBuffer)

#include "tst_tulringbuffer.moc"
