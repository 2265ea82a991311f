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

/// 60 x 30 pixels on white, drawn by a style that leaves no pixels.
struct Fixture {
    RecordingStyle style;
    FlatButton button;

    Fixture()
    {
        style.onlyRecords = true;
        button.setStyle(&style);
        button.resize(60, 30);
        button.setPalette(Qt::white);
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
    void faceFollowsTheStateWhicheverColoursAreSet()
    {
        // By state, whose bits are Enabled, On, MouseOver and Sunken: the colours that are tried
        // one after the other, Pressed, Sunken, Disabled, Hover and Raised. The last one counts
        // even when it is unset.
        const QByteArray colours[]
            = {"DR", "R", "S", "S", "DR", "HR", "S", "S", "S", "S", "S", "S", "PS", "PS", "S", "S"};
        const QStyle::StateFlag flags[] = {QStyle::State_Enabled, QStyle::State_On,
                                           QStyle::State_MouseOver, QStyle::State_Sunken};
        for (int i = 0; i < 16 * 32; ++i) {
            const QByteArray &tried = colours[i % 16];
            QStyle::State state = QStyle::State_Raised | QStyle::State_HasFocus; // do not matter
            for (int bit = 0; bit < 4; ++bit)
                state.setFlag(flags[bit], i & (1 << bit));
            const auto colour = [&](char letter) {
                const int place = QByteArray("PSDHR").indexOf(letter);
                return i / 16 & (1 << place) ? QColor(place + 1, 0, 0) : QColor();
            };
            const QColor first = colour(tried.front());
            const tul::FlatFace face = tul::flatFace(
                {colour('S'), colour('R'), colour('H'), colour('P'), colour('D'), {}}, state);
            QCOMPARE(face.fill, first.isValid() ? first : colour(tried.back()));
            QCOMPARE(face.hasRule, tried != "R" && tried != "DR");
        }
    }

    void pressingShowsItsColourAndMovesTheLabel()
    {
        const struct {
            bool hover, down, checked;
            QColor fill;
            int shift;
        } rows[] = {{false, false, false, Qt::yellow, 0},
                    {true, true, false, Qt::magenta, 1},
                    {false, true, false, Qt::darkGreen, 0},
                    {true, true, true, Qt::darkGreen, 0}};
        for (const auto &row : rows) {
            Fixture fixture;
            fixture.setColours();
            fixture.button.setAttribute(Qt::WA_UnderMouse, row.hover);
            fixture.button.setDown(row.down);
            fixture.button.setChecked(row.checked);
            QCOMPARE(fixture.picture().pixelColor(0, 0), row.fill);
            const auto labels = fixture.style.takeControls(QStyle::CE_ToolButtonLabel);
            const int frame = fixture.style.pixelMetric(QStyle::PM_DefaultFrameWidth);
            const QRect place = fixture.button.rect().adjusted(frame, frame, -frame, -frame);
            QCOMPARE(labels.size(), 1);
            QCOMPARE(labels.first().rect, place.translated(row.shift, row.shift));
        }
    }

    void unsetColoursLeaveOnlyLabelAndFocusFrame()
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
        empty.fill(fixture.button.palette().color(QPalette::Window));
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

    void ruleEndsAtTheWidthOfTheButtonArea()
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

    void clicksAreTheOwnersToAnswer()
    {
        FlatButton button;
        QAction action;
        button.setDefaultAction(&action);
        button.setCheckable(true);
        const QSignalSpy triggered(&action, &QAction::triggered);
        const QSignalSpy clicked(&button, &QAbstractButton::clicked);
        button.click();
        QCOMPARE(clicked.count(), 1);
        QVERIFY(!button.isChecked() && triggered.isEmpty());
    }
};

QTEST_MAIN(TestFlatButton)
#include "tst_flatbutton.moc"
