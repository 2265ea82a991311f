#include <support/recordingstyle.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/closebutton.h>

#include <QCoreApplication>
#include <QTest>

class TestCloseButton : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void styleIsToldTheState_data();
    void styleIsToldTheState();
    void onlyAnEnabledButtonIsRepaintedUnderTheMouse();
    void mouseClosesWithoutTakingTheFocus();
};

void TestCloseButton::styleIsToldTheState_data()
{
    QTest::addColumn<int>("expected"); // besides AutoRaise and Selected
    QTest::newRow("plain") << int(QStyle::State_None);
    QTest::newRow("hover") << int(QStyle::State_Raised);
    QTest::newRow("hover disabled") << int(QStyle::State_None);
    QTest::newRow("hover checked") << int(QStyle::State_On);
    QTest::newRow("hover down") << int(QStyle::State_Sunken);
    QTest::newRow("down checked") << int(QStyle::State_Sunken | QStyle::State_On);
}

void TestCloseButton::styleIsToldTheState()
{
    const QString state = QString::fromLatin1(QTest::currentDataTag());
    QFETCH(const int, expected);
    RecordingStyle style;
    CloseButton button;
    button.setStyle(&style);
    button.setCheckable(true);
    button.setAttribute(Qt::WA_UnderMouse, state.contains(QLatin1String("hover")));
    button.setDown(state.contains(QLatin1String("down")));
    button.setChecked(state.contains(QLatin1String("checked")));
    button.setDisabled(state.contains(QLatin1String("disabled")));
    button.grab();
    const auto crosses = style.takePrimitives(QStyle::PE_IndicatorTabClose);
    QCOMPARE(crosses.size(), 1);
    const QStyle::State asked = QStyle::State_AutoRaise | QStyle::State_Raised | QStyle::State_On
        | QStyle::State_Sunken | QStyle::State_Selected;
    QCOMPARE(crosses.first().state & asked,
             QStyle::State(expected) | QStyle::State_AutoRaise | QStyle::State_Selected);
}

void TestCloseButton::onlyAnEnabledButtonIsRepaintedUnderTheMouse()
{
    RecordingStyle style;
    QWidget window;
    CloseButton button(&window);
    button.setStyle(&style);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    for (const bool enabled : {true, false}) {
        button.setEnabled(enabled);
        for (const QEvent::Type type : {QEvent::Enter, QEvent::Leave}) {
            button.setAttribute(Qt::WA_Hover, false); // the style's own reason to repaint
            QCoreApplication::processEvents();
            style.takePrimitives(QStyle::PE_IndicatorTabClose);
            QEvent event(type);
            QCoreApplication::sendEvent(&button, &event);
            QCoreApplication::processEvents();
            QCOMPARE(style.takePrimitives(QStyle::PE_IndicatorTabClose).size(), enabled ? 1 : 0);
        }
    }
}

void TestCloseButton::mouseClosesWithoutTakingTheFocus()
{
    QWidget window;
    CloseButton button(&window);
    QObject::connect(&button, &QAbstractButton::clicked, &window, &QWidget::close);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(button.size(),
             QSize(button.style()->pixelMetric(QStyle::PM_TabCloseIndicatorWidth),
                   button.style()->pixelMetric(QStyle::PM_TabCloseIndicatorHeight)));
    QCOMPARE(button.focusPolicy(), Qt::NoFocus);
    QCOMPARE(button.accessibleName(), QStringLiteral("Close"));
    QTest::mouseClick(&button, Qt::LeftButton);
    QVERIFY(!window.isVisible());
}

QTEST_MAIN(TestCloseButton)

#include "tst_closebutton.moc"
