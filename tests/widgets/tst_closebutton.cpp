#include <support/recordingstyle.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/closebutton.h>

#include <QCoreApplication>
#include <QTest>

class TestCloseButton : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void styleIsToldTheState()
    {
        const struct {
            bool hover, down, checked, enabled;
            QStyle::State told; // besides AutoRaise and Selected
        } rows[] = {{false, false, false, true, QStyle::State_None},
                    {true, false, false, true, QStyle::State_Raised},
                    {true, false, false, false, QStyle::State_None},
                    {true, false, true, true, QStyle::State_On},
                    {true, true, false, true, QStyle::State_Sunken}};
        for (const auto &row : rows) {
            RecordingStyle style;
            CloseButton button;
            button.setStyle(&style);
            button.setCheckable(true);
            button.setAttribute(Qt::WA_UnderMouse, row.hover);
            button.setDown(row.down);
            button.setChecked(row.checked);
            button.setEnabled(row.enabled);
            button.grab();
            const auto always = QStyle::State_AutoRaise | QStyle::State_Selected;
            const auto asked
                = always | QStyle::State_Raised | QStyle::State_On | QStyle::State_Sunken;
            const auto crosses = style.takePrimitives(QStyle::PE_IndicatorTabClose);
            QCOMPARE(crosses.size(), 1);
            QCOMPARE(crosses.first().state & asked, row.told | always);
        }
    }

    void mouseRepaintsAnEnabledButtonAndClosesWithoutTakingTheFocus()
    {
        RecordingStyle style;
        QWidget window;
        CloseButton button(&window);
        QCOMPARE(button.size(),
                 QSize(button.style()->pixelMetric(QStyle::PM_TabCloseIndicatorWidth),
                       button.style()->pixelMetric(QStyle::PM_TabCloseIndicatorHeight)));
        QCOMPARE(button.focusPolicy(), Qt::NoFocus);
        QCOMPARE(button.accessibleName(), QStringLiteral("Close"));
        button.setStyle(&style);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        for (const bool enabled : {false, true}) {
            button.setEnabled(enabled);
            for (const QEvent::Type type : {QEvent::Enter, QEvent::Leave}) {
                button.setAttribute(Qt::WA_Hover, false); // the style's own reason to repaint
                QCoreApplication::processEvents();
                style.takePrimitives(QStyle::PE_IndicatorTabClose);
                QEvent event(type);
                QCoreApplication::sendEvent(&button, &event);
                QCoreApplication::processEvents();
                QCOMPARE(style.takePrimitives(QStyle::PE_IndicatorTabClose).size(),
                         enabled ? 1 : 0);
            }
        }
        connect(&button, &QAbstractButton::clicked, &window, &QWidget::close);
        QTest::mouseClick(&button, Qt::LeftButton);
        QVERIFY(!window.isVisible());
    }
};

QTEST_MAIN(TestCloseButton)
#include "tst_closebutton.moc"
