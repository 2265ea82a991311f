#include <support/testcase.h>
#include <tul-util-gui/mdatable/saturated_p.h>

#include <QTest>

using tul::highest64;
using tul::lowest64;

class TestSaturated : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void resultsBeyond64BitsStickToTheNearerEnd()
    {
        static_assert(tul::saturatedAdd(highest64, -1) == highest64 - 1);
        static_assert(tul::saturatedAdd(highest64, 1) == highest64);
        static_assert(tul::saturatedAdd(-1, lowest64) == lowest64);
        static_assert(tul::saturatedSub(0, lowest64) == highest64);
        static_assert(tul::saturatedSub(-2, highest64) == lowest64);
        static_assert(tul::saturatedMul(lowest64, -1) == highest64);
        static_assert(tul::saturatedMul(1LL << 40, -(1LL << 40)) == lowest64);
        static_assert(tul::saturatedCount(5, 7) == 3 && tul::saturatedCount(0, -1) == 0);
        static_assert(tul::saturatedCount(lowest64, highest64) == highest64);
        static_assert(tul::clampToInt(lowest64) == -2147483647 - 1);
    }

    void pixelsStopAtTheLimit()
    {
        const int limit = 2147450879;
        QCOMPARE(tul::pixelProduct(107372543, 20), 2147450860); // the last that fits
        QCOMPARE(tul::pixelProduct(107372544, 20), limit);
        QCOMPARE(tul::pixelProduct(limit, 1), limit);
        QCOMPARE(tul::pixelProduct(highest64, 2147483647), limit); // beyond 64 bits
        QCOMPARE(tul::pixelProduct(1, 2147483647), limit);
        QCOMPARE(tul::pixelProduct(5, -3), 0);
        QCOMPARE(tul::pixelProduct(-5, 20), -100);
    }
};

QTEST_GUILESS_MAIN(TestSaturated)
#include "tst_saturated.moc"
