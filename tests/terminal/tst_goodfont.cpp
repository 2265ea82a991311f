#include <support/testcase.h>
#include <tul-util-gui/terminal/fontchoice_p.h>
#include <tul-util-gui/terminal/goodfont.h>

#include <QFontDatabase>
#include <QFontMetrics>
#include <QTest>

namespace
{

// Families as "Name flags": F fixed, S smoothly scalable, s scalable, A smooth at the size, b bold,
// i italic, - unusable.
FontFamilies families(const char *text)
{
    FontFamilies result;
    QMap<QString, QString> flags;
    for (const QString &family : QString::fromLatin1(text).split(QLatin1Char(';'))) {
        const QString name = family.section(QLatin1Char(':'), 0, 0);
        result.names += name;
        flags[name] = family.section(QLatin1Char(':'), 1);
    }
    result.isUsable = [=](const QString &name) { return !flags[name].contains(QLatin1Char('-')); };
    result.traits = [=](const QString &name) {
        const auto has = [&](char flag) { return flags[name].contains(QLatin1Char(flag)); };
        return FontFamilyTraits{has('F'), has('S'), has('s'), has('A'), has('b'), has('i')};
    };
    return result;
}

} // namespace

class TestGoodFont : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void lastPreferredOrBestScoredFamilyIsChosen();
    void installedFontIsUsable();
};

void TestGoodFont::lastPreferredOrBestScoredFamilyIsChosen()
{
    const QVector<QPair<const char *, const char *>> rows{
        {"Terminus:;Courier New:;Monospace:", "Terminus"},
        {"Courier New:;Other:FSAbi", "Courier New"},
        {"Courier New:;Terminus:-;FreeMono:;Monospace:", "FreeMono"},
        {"LucidaTypewriter:;Lucidatypewriter:", "LucidaTypewriter"},
        {"courier new:;A:F", "A"}, // not the same name
        {"A:SAbi;B:F", "B"}, // 432, 512
        {"A:SsA;B:sAb;C:Sbi;D:A", "A"}, // 384, 352, 176, 256
        {"A:Fb;B:Fi;C:Fs", "C"}, // 544, 528, 576
        {"A:Fb;B:Fb", "A"}, // the earlier of equals
        {"A:FSAbi-;B:i;C:-", "B"},
        {"Monospace:-;A:", ""}, // nothing speaks for it
        {"A:FSAbi-", ""},
    };
    for (const auto &row : rows)
        QCOMPARE(tul::chooseFontFamily(families(row.first)), QString::fromLatin1(row.second));
}

// The sans and mono families of the DejaVu fonts come with the alias "Monospace".
void TestGoodFont::installedFontIsUsable()
{
    for (const int size : {10, 14}) {
        const QFont font = findGoodFont(size);
        if (QFontDatabase().families().contains(QStringLiteral("Monospace")))
            QVERIFY(font.family() == QStringLiteral("Monospace")
                    || QStringList({QStringLiteral("Typewriter"), QStringLiteral("FreeMono"),
                                    QStringLiteral("Lucidatypewriter"),
                                    QStringLiteral("LucidaTypewriter"), QStringLiteral("Terminus")})
                           .contains(font.family()));
        QCOMPARE(font.pointSize(), size);
        QCOMPARE(font.weight(), int(QFont::Normal));
        const QFontMetrics metrics(font);
        QCOMPARE(metrics.horizontalAdvance(QLatin1Char('i')),
                 metrics.horizontalAdvance(QLatin1Char('W')));
    }
    QVERIFY(!findGoodFont(0).family().isEmpty());
}

QTEST_MAIN(TestGoodFont)

#include "tst_goodfont.moc"
