#include <support/testcase.h>
#include <tul-util-gui/widgets/detailsbutton.h>
#include <tul-util-gui/widgets/detailswidget.h>
#include <tul-util-gui/widgets/detailswidgetlabel_p.h>
#include <tul-util-gui/widgets/summarybarlook_p.h>

#include <QAccessible>
#include <QCheckBox>
#include <QDockWidget>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QTest>
#include <QVBoxLayout>

namespace
{

/// A panel whose parts can be reached and whose signals are written down as one letter each.
struct Panel : DetailsWidget {
    Panel()
    {
        const auto note = [this](const QString &what) { log += what; };
        connect(this, &DetailsWidget::expanded, this,
                [note](bool on) { note(QLatin1String(on ? "+" : "-")); });
        connect(this, &DetailsWidget::checked, this,
                [note](bool on) { note(QString::number(on)); });
        connect(this, &DetailsWidget::detailsClicked, this, [note] { note(QStringLiteral("d")); });
        connect(this, &DetailsWidget::linkActivated, this, note);
        resize(400, 200);
    }

    /// Does one thing: b clicks the button, others the label, each in its way; E, C and N set the
    /// state.
    void act(char action)
    {
        const QPoint onLink(20, label->height() / 2);
        switch (action) {
        case 'b':
            return button->click();
        case 'l':
            return QTest::mouseClick(label, Qt::LeftButton);
        case 'r':
            return QTest::mouseClick(label, Qt::RightButton);
        case 's':
            return QTest::mouseClick(label, Qt::LeftButton, Qt::ShiftModifier);
        case 'a':
            return QTest::mouseClick(label, Qt::LeftButton, {}, onLink);
        case 'c':
            return setChecked(!isChecked());
        case 'u':
            return setUseCheckBox(!useCheckBox());
        case 'x':
            return setCheckBoxEnabled(!checkBoxEnabled());
        case 't':
            return setToggleDetailsOnSummaryBarClicks(!toggleDetailsOnSummaryBarClicks());
        case 'd':
            return setDetailButtonEnabled(false);
        case 'w':
            return setWidget(new QWidget);
        case 'n':
            return setWidget(nullptr);
        default:
            setState(action == 'E' ? Expanded : action == 'C' ? Collapsed : NoSummary);
        }
    }

    DetailsButton *const button = findChild<DetailsButton *>();
    DetailsWidgetLabel *const label = findChild<DetailsWidgetLabel *>();
    QCheckBox *const checkBox = findChild<QCheckBox *>();
    QString log;
};

} // namespace

class TestDetailsWidget : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void controlsFollowStateAndFlags();
    void actionsChangeTheStateAndTellSo();
    void panelMayGoInItsSignals();
    void detailsAreReplacedDeletedAndLost();
    void toolWidgetStandsInTheBarAndGoesWithIt();
    void docksAndScrollAreasFollowAtOnce();
    void barIsPaintedInLayersAsHighAsItsControls();
    void screenReaderIsToldNameAndExpansion();
};

void TestDetailsWidget::controlsFollowStateAndFlags()
{
    for (int flags = 0; flags < 32 * 3; ++flags) {
        const auto state = static_cast<DetailsWidget::State>(flags % 3);
        const bool useBox = flags / 3 & 1, isOn = flags / 3 & 2, hasDetails = flags / 3 & 4;
        const bool enabled = flags / 3 & 8, visible = flags / 3 & 16;
        Panel panel;
        QWidget tool;
        auto *const details = hasDetails ? new QWidget : nullptr;
        panel.setToolWidget(&tool);
        panel.setWidget(details);
        panel.setDetailButtonVisible(visible);
        QVERIFY(panel.button->isVisibleTo(&panel)); // it waits for another change
        panel.setDetailButtonEnabled(enabled);
        panel.setUseCheckBox(useBox);
        panel.setChecked(isOn);
        panel.setState(state);

        const auto shows = [&](const QWidget *widget) { return widget->isVisibleTo(&panel); };
        const bool on = !useBox || isOn;
        const bool summary = state != DetailsWidget::NoSummary;
        const bool open = state != DetailsWidget::Collapsed;
        QVERIFY2(shows(panel.button) == (summary && visible)
                     && panel.button->isEnabled() == (enabled && on)
                     && panel.button->isChecked() == (summary && open && hasDetails)
                     && panel.button->isCheckable() == hasDetails && shows(panel.label) == summary
                     && shows(panel.checkBox) == (summary && useBox) && shows(&tool) == summary
                     && tool.isEnabled() == on && panel.state() == state
                     && (!details || shows(details) == (open && on)),
                 qPrintable(QString::number(flags)));
    }
}

void TestDetailsWidget::actionsChangeTheStateAndTellSo()
{
    // What is done, what is told, and the state at the end; the state before it is Collapsed.
    for (const char *const row :
         {"b d C", "l d C", "wb +d E", "wbb +d-d C", "wl + E", "wll +- C", "wr  C", "ws + E",
          "wtl  C", "tl  C", "dl  C", "wdlE + E", "wa link C",
          // Disabling the button closes the panel, whatever opened it.
          "wEd +- C", "wdEd +- C",
          // Without details nothing shows, but the state is kept and told.
          "EE + E", "wEn + E", "wEnb +d E",
          // When the bar goes, the state stays what it was set to.
          "wEN +- N", "wENC +-- C", "wNw - N",
          // The check box opens and closes, from the summary too, where links are dead then.
          "wul 1+ E", "wull 1+0- C", "wua 1+ E", "wus  C", "wuxl  C", "uc 1 C", "wudc 1 C",
          "wuNc -1+ E", "wEucu +1 E"}) {
        const QStringList parts = QString::fromLatin1(row).split(QLatin1Char(' '));
        Panel panel;
        panel.setSummaryText(QStringLiteral("<a href='link'>Summary</a>"));
        panel.show();
        for (const QChar action : parts.at(0))
            panel.act(action.toLatin1());
        QCOMPARE(parts.at(0) + panel.log, parts.at(0) + parts.at(1));
        QCOMPARE(QLatin1Char("ECN"[panel.state()]), parts.at(2).at(0));
    }
}

void TestDetailsWidget::panelMayGoInItsSignals()
{
    // Not in those that a button of the toolkit sets off by toggling: it uses itself afterwards.
    for (const char *const actions : {"b", "l", "a", "wl", "wEd", "wE"}) {
        QPointer<Panel> panel = new Panel;
        panel->setSummaryText(QStringLiteral("<a href='link'>Summary</a>"));
        panel->show();
        for (const char *action = actions; action[1]; ++action)
            panel->act(*action);
        const auto die = [&] { delete panel; };
        connect(panel, &DetailsWidget::expanded, this, die);
        connect(panel, &DetailsWidget::linkActivated, this, die);
        connect(panel, &DetailsWidget::detailsClicked, this, die);
        panel->act(actions[qstrlen(actions) - 1]);
        QVERIFY(!panel);
    }
}

void TestDetailsWidget::detailsAreReplacedDeletedAndLost()
{
    announceWarning(QStringLiteral("DetailsWidget::setWidget: the widget contains the panel"));
    announceWarning(QStringLiteral("DetailsWidget::setToolWidget: the widget contains the panel"));
    Panel panel;
    panel.setWidget(&panel);
    panel.setToolWidget(&panel);
    QVERIFY(!panel.widget() && !panel.toolWidget());

    const QPointer<QWidget> first = new QWidget;
    const QPointer<QWidget> inner = new QWidget(first);
    panel.setWidget(first);
    QCOMPARE(first->contentsMargins(), QMargins(6, 6, 6, 6));
    panel.setWidget(inner, 0); // saved from the one that held it
    QVERIFY(!first);
    QCOMPARE(panel.widget(), inner.data());
    QCOMPARE(inner->contentsMargins(), QMargins());

    panel.act('E');
    delete inner;
    QVERIFY(!panel.button->isCheckable());
    panel.act('l');
    QCOMPARE(panel.log, QStringLiteral("+d"));
}

void TestDetailsWidget::toolWidgetStandsInTheBarAndGoesWithIt()
{
    Panel panel;
    auto *const first = new QPushButton;
    auto *const second = new QPushButton;
    panel.setUseCheckBox(true);
    panel.setToolWidget(first);
    QVERIFY(!first->isEnabled());
    panel.setToolWidget(second);
    QCOMPARE(first->parentWidget(), &panel);
    QCOMPARE(panel.checkBox->nextInFocusChain(), second);
    QCOMPARE(second->nextInFocusChain(), panel.button);
    second->hide(); // by the host: coming back is not for the panel
    panel.act('N');
    panel.act('E');
    QVERIFY(!second->isVisibleTo(&panel));
    delete second;
    panel.setSummaryToolTip(QStringLiteral("tip"));
    QVERIFY(!panel.toolWidget());
}

void TestDetailsWidget::docksAndScrollAreasFollowAtOnce()
{
    QDockWidget dock;
    auto *const area = new QScrollArea;
    auto *const content = new QWidget;
    auto *const layout = new QVBoxLayout(content);
    auto *const panel = new Panel;
    layout->addWidget(panel);
    layout->addStretch();
    area->setWidget(content);
    area->setWidgetResizable(true);
    dock.setWidget(area);
    panel->act('w');
    panel->widget()->setMinimumHeight(700);
    dock.show();
    dock.setMinimumHeight(50);
    panel->act('E');
    QVERIFY(content->height() > 700);
    QCOMPARE(dock.minimumHeight(), 0);
    panel->act('C');
    QVERIFY(content->height() < 700);
}

void TestDetailsWidget::barIsPaintedInLayersAsHighAsItsControls()
{
    for (int flags = 0; flags < 4; ++flags) {
        tul::SummaryBarLook look;
        look.size = QSize(60, 101);
        look.topHeight = 40;
        look.gradient = flags & 1;
        look.translucent = flags & 2;
        look.background = QColor(50, 50, 50);
        const QImage image = tul::renderSummaryBar(look);
        const auto seen = [&](int x, int y) { // over the background
            const QColor pixel = image.pixelColor(x, y);
            return (pixel.red() * pixel.alpha() + 50 * (255 - pixel.alpha())) / 255;
        };
        const auto lighter = [](int grey, int alpha) { return grey + (255 - grey) * alpha / 255; };
        // Translucent layers add up; blended ones cover each other.
        const int fill = lighter(50, 40);
        const int middle = look.gradient ? lighter(look.translucent ? fill : 50, 65) : fill;
        QVERIFY(std::abs(seen(30, 70) - fill) <= 1);
        QVERIFY(std::abs(seen(30, 20) - middle) <= 4);
        QVERIFY(seen(30, 0) < seen(30, 1) && seen(30, 100) < seen(30, 99)); // the two frames
        QVERIFY(seen(0, 50) < seen(1, 50) && seen(59, 50) < seen(58, 50));
    }

    Panel panel;
    panel.layout()->setEnabled(false); // heights as given here
    panel.setPalette(Qt::black);
    const auto grey = [&](int y) { return panel.grab().toImage().pixelColor(250, y).red(); };
    panel.label->setGeometry(0, 150, 1, 20);
    panel.checkBox->setGeometry(0, 150, 1, 120);
    const int plain = grey(50);
    QCOMPARE(plain, 40);
    panel.button->setGeometry(0, 150, 1, 60);
    QVERIFY(grey(50) > plain);
    QCOMPARE(grey(90), plain);
    panel.setUseCheckBox(true);
    panel.checkBox->setGeometry(0, 150, 1, 120);
    QVERIFY(grey(90) > plain);
    panel.setContentsMargins(0, 100, 0, 0);
    QCOMPARE(grey(90), 0);
    panel.setContentsMargins(0, 100, 0, 100);
    panel.grab(); // with no room there is nothing to warn of
}

void TestDetailsWidget::screenReaderIsToldNameAndExpansion()
{
    Panel panel;
    panel.act('w');
    panel.setSummaryText(QStringLiteral("<b>Build</b> steps"));
    const QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(&panel);
    QCOMPARE(accessible->role(), QAccessible::Grouping);
    QCOMPARE(accessible->text(QAccessible::Name), QStringLiteral("Build steps"));
    QCOMPARE(panel.checkBox->accessibleName(), QStringLiteral("Build steps"));
    for (const char action : {'C', 'E', 'N'}) {
        panel.act(action);
        const QAccessible::State state = accessible->state();
        QCOMPARE(bool(state.expandable), action != 'N');
        QCOMPARE(bool(state.expanded), action == 'E');
        QCOMPARE(bool(state.collapsed), action == 'C');
    }
}

QTEST_MAIN(TestDetailsWidget)

#include "tst_detailswidget.moc"
