#include <support/testcase.h>
#include <tul-util-gui/terminal/fontchoice_p.h>
#include <tul-util-gui/terminal/goodfont.h>

#include <QFile>
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

void TestGoodFont::installedFontIsUsable()
{
    const QFont font = findGoodFont(14);
    QVERIFY(QFontDatabase().families().contains(font.family()));
    QCOMPARE(QFont(font.family(), 14), font);
    const QFontMetrics metrics(font);
    QCOMPARE(metrics.horizontalAdvance(QLatin1Char('i')),
             metrics.horizontalAdvance(QLatin1Char('W')));
    // Comes with the DejaVu fonts, as the last preferred family that does.
    if (QFile::exists(QStringLiteral("/usr/share/fonts/truetype/dejavu")))
        QVERIFY(font.family() != QStringLiteral("Courier New"));
}

QTEST_MAIN(TestGoodFont)

#include "tst_goodfont.moc"
