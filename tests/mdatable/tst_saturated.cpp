#include <support/testcase.h>
#include <tul-util-gui/mdatable/saturated_p.h>

#include <QTest>

class TestSaturated : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void resultsBeyond64BitsStickToTheNearerEnd();
    void pixelsStopAtTheLimit_data();
    void pixelsStopAtTheLimit();
};

void TestSaturated::resultsBeyond64BitsStickToTheNearerEnd()
{
    using tul::highest64;
    using tul::lowest64;
    static_assert(tul::saturatedAdd(highest64, -1) == highest64 - 1);
    QCOMPARE(tul::saturatedAdd(highest64, 1), highest64);
    QCOMPARE(tul::saturatedAdd(-1, lowest64), lowest64);
    QCOMPARE(tul::saturatedSub(0, lowest64), highest64);
    QCOMPARE(tul::saturatedSub(-2, highest64), lowest64);
    QCOMPARE(tul::saturatedSub(-1, highest64), lowest64);
    QCOMPARE(tul::saturatedMul(lowest64, -1), highest64);
    QCOMPARE(tul::saturatedMul(1LL << 40, -(1LL << 40)), lowest64);
    QCOMPARE(tul::saturatedMul(-(1LL << 40), -(1LL << 40)), highest64);
    QCOMPARE(tul::saturatedMul(lowest64, 0), 0LL);
    QCOMPARE(tul::saturatedCount(5, 7), 3LL);
    QCOMPARE(tul::saturatedCount(0, -1), 0LL);
    QCOMPARE(tul::saturatedCount(0, highest64), highest64);
    QCOMPARE(tul::saturatedCount(lowest64, highest64), highest64);
    QVERIFY(tul::saturatedCount(highest64, lowest64) < 0);
    QCOMPARE(tul::clampToInt(-3), -3);
    QCOMPARE(tul::clampToInt(1LL << 31), 2147483647);
    QCOMPARE(tul::clampToInt(lowest64), -2147483647 - 1);
}

void TestSaturated::pixelsStopAtTheLimit_data()
{
    QTest::addColumn<long long>("visible");
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("pixels");

    QTest::newRow("ordinary") << 100LL << 20 << 2000;
    QTest::newRow("last that fits") << 107372543LL << 20 << 2147450860;
    QTest::newRow("first that does not") << 107372544LL << 20 << 2147450879;
    QTest::newRow("exactly the limit") << 2147450879LL << 1 << 2147450879;
    QTest::newRow("product beyond 64 bits") << tul::highest64 << 2147483647 << 2147450879;
    QTest::newRow("size beyond the limit") << 1LL << 2147483647 << 2147450879;
    QTest::newRow("no size") << 5LL << 0 << 0;
    QTest::newRow("negative size") << 5LL << -3 << 0;
    QTest::newRow("negative count") << -5LL << 20 << -100;
}

void TestSaturated::pixelsStopAtTheLimit()
{
    QFETCH(const long long, visible);
    QFETCH(const int, size);
    QTEST(tul::pixelProduct(visible, size), "pixels");
}

QTEST_GUILESS_MAIN(TestSaturated)

#include "tst_saturated.moc"
