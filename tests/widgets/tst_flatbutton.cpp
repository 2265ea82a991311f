#include <support/recordingstyle.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/flatbutton.h>
#include <tul-util-gui/widgets/flatcolours_p.h>

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace
{

const QColor background(Qt::white);

/// 60 x 30 pixels, drawn by a style that leaves no pixels.
struct Fixture {
    RecordingStyle style;
    FlatButton button;

    Fixture()
    {
        style.onlyRecords = true;
        button.setStyle(&style);
        button.resize(60, 30);
        QPalette palette;
        palette.setColor(QPalette::Window, background);
        button.setPalette(palette);
        button.setCheckable(true);
    }

    void setColours()
    {
        button.setSunkenColour(Qt::darkGreen);
        button.setRaisedColour(Qt::yellow);
        button.setHoverColour(Qt::cyan);
        button.setPressedColour(Qt::magenta);
        button.setDisabledColour(Qt::gray);
        button.setLineColour(Qt::red);
    }

    QImage picture() { return button.grab().toImage(); }
};

} // namespace

class TestFlatButton : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void faceFollowsTheStateWhicheverColoursAreSet();
    void stateIsShownByItsColourAndTheRule();
    void unsetColoursLeaveOnlyLabelAndFocusFrame();
    void ruleEndsAtTheWidthOfTheButtonArea();
    void clicksAreTheOwnersToAnswer();
};

void TestFlatButton::faceFollowsTheStateWhicheverColoursAreSet()
{
    const struct {
        int state; // bits: Enabled, On, MouseOver, Sunken
        // The colours that are tried one after the other: Pressed, Sunken, Disabled, Hover, Raised.
        // The last one counts even when it is unset.
        QByteArray colours;
        bool hasRule;
    } rows[]
        = {{0b0000, "DR", false}, {0b0001, "R", false}, {0b0010, "S", true}, {0b0011, "S", true},
           {0b0100, "DR", false}, {0b0101, "HR", true}, {0b0110, "S", true}, {0b0111, "S", true},
           {0b1000, "S", true},   {0b1001, "S", true},  {0b1010, "S", true}, {0b1011, "S", true},
           {0b1100, "PS", true},  {0b1101, "PS", true}, {0b1110, "S", true}, {0b1111, "S", true}};
    for (const auto &row : rows) {
        QStyle::State state = QStyle::State_Raised | QStyle::State_HasFocus; // do not matter
        const QStyle::StateFlag flags[] = {QStyle::State_Enabled, QStyle::State_On,
                                           QStyle::State_MouseOver, QStyle::State_Sunken};
        for (int bit = 0; bit < 4; ++bit)
            state.setFlag(flags[bit], row.state & (1 << bit));
        for (int set = 0; set < 32; ++set) {
            const auto colour = [&](char letter) {
                const int i = QByteArray("PSDHR").indexOf(letter);
                return set & (1 << i) ? QColor(i + 1, 0, 0) : QColor();
            };
            const tul::FlatColours all{colour('S'), colour('R'), colour('H'),
                                       colour('P'), colour('D'), QColor()};
            const QColor first = colour(row.colours.front());
            const tul::FlatFace face = tul::flatFace(all, state);
            QCOMPARE(face.fill, first.isValid() ? first : colour(row.colours.back()));
            QCOMPARE(face.hasRule, row.hasRule);
        }
    }
}

void TestFlatButton::stateIsShownByItsColourAndTheRule()
{
    const struct {
        bool hover, down, checked, enabled;
        QColor fill, rule; // the same where there is no rule
        int shift;
    } rows[] = {{false, false, false, true, Qt::yellow, Qt::yellow, 0},
                {false, false, false, false, Qt::gray, Qt::gray, 0},
                {true, true, false, true, Qt::magenta, Qt::red, 1},
                {false, true, false, true, Qt::darkGreen, Qt::red, 0},
                {true, true, true, true, Qt::darkGreen, Qt::red, 0}};
    for (const auto &row : rows) {
        Fixture fixture;
        fixture.setColours();
        FlatButton &button = fixture.button;
        button.setAttribute(Qt::WA_UnderMouse, row.hover);
        button.setDown(row.down);
        button.setChecked(row.checked);
        button.setEnabled(row.enabled);
        const QImage picture = fixture.picture();
        QCOMPARE(picture.pixelColor(0, 0), row.fill);
        QCOMPARE(picture.pixelColor(59, 29), row.rule);

        const auto labels = fixture.style.takeControls(QStyle::CE_ToolButtonLabel);
        QCOMPARE(labels.size(), 1);
        const int frame = fixture.style.pixelMetric(QStyle::PM_DefaultFrameWidth);
        const QRect place = button.rect().adjusted(frame, frame, -frame, -frame);
        QCOMPARE(labels.first().rect, place.translated(row.shift, row.shift));
    }
}

void TestFlatButton::unsetColoursLeaveOnlyLabelAndFocusFrame()
{
    Fixture fixture;
    fixture.button.setChecked(true);
    fixture.button.show();
    fixture.button.setFocus();
    QVERIFY(QTest::qWaitForWindowActive(&fixture.button));
    QTRY_VERIFY(fixture.button.hasFocus());
    fixture.style.takePrimitives(QStyle::PE_FrameFocusRect);
    const QImage picture = fixture.picture();
    QImage empty = picture;
    empty.fill(background);
    QCOMPARE(picture, empty);
    const auto frames = fixture.style.takePrimitives(QStyle::PE_FrameFocusRect);
    QCOMPARE(frames.size(), 1);
    QCOMPARE(frames.first().rect, fixture.button.rect().adjusted(3, 3, -3, -3));

    QCoreApplication::processEvents();
    fixture.style.takeControls(QStyle::CE_ToolButtonLabel);
    fixture.setColours();
    QCoreApplication::processEvents(); // the setters do not repaint
    QVERIFY(fixture.style.takeControls(QStyle::CE_ToolButtonLabel).isEmpty());
}

void TestFlatButton::ruleEndsAtTheWidthOfTheButtonArea()
{
    Fixture fixture;
    fixture.setColours();
    QMenu menu;
    fixture.button.setMenu(&menu);
    fixture.button.setPopupMode(QToolButton::MenuButtonPopup); // takes part of the width
    fixture.button.setAttribute(Qt::WA_UnderMouse);
    const QImage picture = fixture.picture();
    int fill = 0, rule = 0;
    for (int x = 0; x < 60; ++x) {
        fill += picture.pixelColor(x, 28) == Qt::cyan;
        rule += picture.pixelColor(x, 29) == Qt::red;
    }
    QVERIFY(fill > 10 && fill < 55);
    QCOMPARE(rule, fill + 1);
}

void TestFlatButton::clicksAreTheOwnersToAnswer()
{
    Fixture fixture;
    QAction action;
    fixture.button.setDefaultAction(&action);
    fixture.button.setCheckable(true);
    const QSignalSpy triggered(&action, &QAction::triggered);
    const QSignalSpy clicked(&fixture.button, &QAbstractButton::clicked);
    fixture.button.click();
    QCOMPARE(clicked.count(), 1);
    QVERIFY(!fixture.button.isChecked() && triggered.isEmpty());
}

QTEST_MAIN(TestFlatButton)

#include "tst_flatbutton.moc"
