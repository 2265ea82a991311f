#include <support/testcase.h>
#include <tul-util/tulringbuffer.h>

#include <QRandomGenerator>
#include <QTest>

#include <limits>
#include <numeric>

class TestTULRingBuffer : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    // Against a plain byte array, with pieces below, at and above the chunk size.
    void bytesComeBackInOrderInAnyPieces()
    {
        QRandomGenerator random(42);
        for (const int chunkSize : {std::numeric_limits<int>::min(), 1, 64, 4096}) {
            TULRingBuffer buffer(chunkSize);
            QByteArray expected;
            for (int i = 0; i < 2000; ++i) {
                QByteArray bytes(random.bounded(i % 100 < 2 ? 10000 : 130), Qt::Uninitialized);
                if (random.bounded(2) == 0) {
                    std::iota(bytes.begin(), bytes.end(), char(i));
                    buffer.append(bytes);
                    expected += bytes;
                } else {
                    const int room = bytes.size();
                    bytes.truncate(static_cast<int>(buffer.readData(bytes.data(), room)));
                    QCOMPARE(bytes, expected.left(room));
                    expected.remove(0, bytes.size());
                }
                QCOMPARE(buffer.size(), expected.size());
            }
        }
    }

    void readsStopAtTheGivenLengthAndTakeNothingWithoutRoom()
    {
        TULRingBuffer buffer(4);
        buffer.append(QByteArrayLiteral("abcdefghi"));
        char bytes[] = "..........";
        QCOMPARE(buffer.readData(bytes, std::numeric_limits<qint64>::min()), qint64(0));
        QCOMPARE(buffer.readData(nullptr, 2), qint64(0));
        QCOMPARE(buffer.readData(bytes, 6), qint64(6));
        QCOMPARE(bytes, "abcdef....");
        QCOMPARE(buffer.readData(bytes, std::numeric_limits<qint64>::max()), qint64(3));
    }
};

QTEST_GUILESS_MAIN(TestTULRingBuffer)
#include "tst_tulringbuffer.moc"
