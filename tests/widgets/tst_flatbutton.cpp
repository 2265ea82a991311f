#include <support/recordingstyle.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/flatbutton.h>

#include <QAction>
#include <QImage>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>

namespace
{

const QColor background(Qt::white);

/// 60 x 30 pixels, with a colour each, drawn by a style that leaves no pixels.
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
    void stateIsShownByItsColourAndTheRule_data();
    void stateIsShownByItsColourAndTheRule();
    void unsetColoursLeaveOnlyLabelAndFocusFrame();
    void ruleEndsAtTheWidthOfTheButtonArea();
    void clicksAreTheOwnersToAnswer();
    void settersStoreWithoutRepainting();
};

void TestFlatButton::stateIsShownByItsColourAndTheRule_data()
{
    QTest::addColumn<QColor>("fill");
    QTest::addColumn<bool>("hasRule");
    QTest::addColumn<int>("shift");
    QTest::newRow("raised") << QColor(Qt::yellow) << false << 0;
    QTest::newRow("hover down") << QColor(Qt::magenta) << true << 1;
    QTest::newRow("down") << QColor(Qt::darkGreen) << true << 0;
    QTest::newRow("hover down checked") << QColor(Qt::darkGreen) << true << 0;
    QTest::newRow("disabled") << QColor(Qt::gray) << false << 0;
}

void TestFlatButton::stateIsShownByItsColourAndTheRule()
{
    const QString state = QString::fromLatin1(QTest::currentDataTag());
    QFETCH(const QColor, fill);
    QFETCH(const bool, hasRule);
    QFETCH(const int, shift);
    Fixture fixture;
    fixture.setColours();
    FlatButton &button = fixture.button;
    button.setCheckable(true);
    button.setAttribute(Qt::WA_UnderMouse, state.contains(QLatin1String("hover")));
    button.setDown(state.contains(QLatin1String("down")));
    button.setChecked(state.contains(QLatin1String("checked")));
    button.setDisabled(state.contains(QLatin1String("disabled")));

    const QImage picture = fixture.picture();
    QCOMPARE(picture.pixelColor(0, 0), fill);
    QCOMPARE(picture.pixelColor(59, 29), hasRule ? QColor(Qt::red) : fill);

    const auto labels = fixture.style.takeControls(QStyle::CE_ToolButtonLabel);
    QCOMPARE(labels.size(), 1);
    const int frame = fixture.style.pixelMetric(QStyle::PM_DefaultFrameWidth);
    QCOMPARE(labels.first().rect,
             button.rect().adjusted(frame, frame, -frame, -frame).translated(shift, shift));
}

void TestFlatButton::unsetColoursLeaveOnlyLabelAndFocusFrame()
{
    Fixture fixture;
    fixture.button.setCheckable(true);
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
}

void TestFlatButton::ruleEndsAtTheWidthOfTheButtonArea()
{
    Fixture fixture;
    fixture.setColours();
    QMenu menu;
    FlatButton &button = fixture.button;
    button.setMenu(&menu);
    button.setPopupMode(QToolButton::MenuButtonPopup); // the menu takes part of the width
    button.setAttribute(Qt::WA_UnderMouse);
    QStyleOptionToolButton option;
    option.initFrom(&button);
    option.features = QStyleOptionToolButton::MenuButtonPopup;
    const int width
        = fixture.style
              .subControlRect(QStyle::CC_ToolButton, &option, QStyle::SC_ToolButton, &button)
              .width();
    QVERIFY(width > 10 && width < 55);

    const QImage picture = fixture.picture();
    QCOMPARE(picture.pixelColor(width - 1, 28), QColor(Qt::cyan));
    QCOMPARE(picture.pixelColor(width, 28), background);
    QCOMPARE(picture.pixelColor(width, 29), QColor(Qt::red));
    QCOMPARE(picture.pixelColor(width + 1, 29), background);
}

void TestFlatButton::clicksAreTheOwnersToAnswer()
{
    FlatButton button;
    QAction action;
    button.setDefaultAction(&action);
    button.setCheckable(true);
    const QSignalSpy triggered(&action, &QAction::triggered);
    const QSignalSpy clicked(&button, &QAbstractButton::clicked);
    button.click();
    QCOMPARE(clicked.count(), 1);
    QVERIFY(!button.isChecked());
    QCOMPARE(triggered.count(), 0);
}

void TestFlatButton::settersStoreWithoutRepainting()
{
    Fixture fixture;
    fixture.button.show();
    QVERIFY(QTest::qWaitForWindowExposed(&fixture.button));
    QCoreApplication::processEvents();
    fixture.style.takeControls(QStyle::CE_ToolButtonLabel);
    fixture.setColours();
    QCoreApplication::processEvents();
    QVERIFY(fixture.style.takeControls(QStyle::CE_ToolButtonLabel).isEmpty());
}

QTEST_MAIN(TestFlatButton)

#include "tst_flatbutton.moc"
