#include <support/testcase.h>
#include <tul-util-gui/widgets/flatcolours_p.h>

#include <QTest>

#include <iterator>

class TestFlatColours : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void faceFollowsTheStateWhicheverColoursAreSet();
    void faceFollowsTheStateWhicheverColoursAreSet_data();
};

void TestFlatColours::faceFollowsTheStateWhicheverColoursAreSet_data()
{
    // The colours that are tried one after the other: Pressed, Sunken, Disabled, Hover, Raised. The
    // last one counts even when it is unset.
    QTest::addColumn<QString>("colours");
    QTest::addColumn<bool>("hasRule");
    const struct {
        const char *state; // Sunken, under the Mouse, On, + enabled
        const char *colours;
        bool hasRule;
    } rows[] = {
        {"----", "DR", false}, {"---+", "R", false}, {"--O-", "S", true}, {"--O+", "S", true},
        {"-M--", "DR", false}, {"-M-+", "HR", true}, {"-MO-", "S", true}, {"-MO+", "S", true},
        {"S---", "S", true},   {"S--+", "S", true},  {"S-O-", "S", true}, {"S-O+", "S", true},
        {"SM--", "PS", true},  {"SM-+", "PS", true}, {"SMO-", "S", true}, {"SMO+", "S", true},
    };
    for (const auto &row : rows)
        QTest::newRow(row.state) << QString::fromLatin1(row.colours) << row.hasRule;
}

void TestFlatColours::faceFollowsTheStateWhicheverColoursAreSet()
{
    QFETCH(const QString, colours);
    QFETCH(const bool, hasRule);
    const QByteArray tag = QTest::currentDataTag();
    QStyle::State state = QStyle::State_Raised | QStyle::State_HasFocus; // do not matter
    const QPair<char, QStyle::StateFlag> letters[] = {{'S', QStyle::State_Sunken},
                                                      {'M', QStyle::State_MouseOver},
                                                      {'O', QStyle::State_On},
                                                      {'+', QStyle::State_Enabled}};
    for (const auto &letter : letters)
        state.setFlag(letter.second, tag.contains(letter.first));

    for (int set = 0; set < 32; ++set) {
        tul::FlatColours all;
        const QPair<char, QColor *> fields[] = {{'P', &all.pressed},
                                                {'S', &all.sunken},
                                                {'D', &all.disabled},
                                                {'H', &all.hover},
                                                {'R', &all.raised}};
        QColor wanted;
        for (int i = 0; i < int(std::size(fields)); ++i) {
            if (set & (1 << i))
                *fields[i].second = QColor(i + 1, 0, 0);
        }
        for (const QChar colour : colours) {
            for (const auto &field : fields) {
                if (QLatin1Char(field.first) == colour && !wanted.isValid())
                    wanted = *field.second;
            }
        }
        const tul::FlatFace face = tul::flatFace(all, state);
        QCOMPARE(face.fill, wanted);
        QCOMPARE(face.hasRule, hasRule);
    }
}

QTEST_APPLESS_MAIN(TestFlatColours)

#include "tst_flatcolours.moc"
