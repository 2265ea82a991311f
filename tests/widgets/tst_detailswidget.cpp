#include <support/literal.h>
#include <support/testcase.h>
#include <tul-util-gui/widgets/detailsbutton.h>
#include <tul-util-gui/widgets/detailswidget.h>
#include <tul-util-gui/widgets/detailswidgetlabel_p.h>
#include <tul-util-gui/widgets/summarybarlook_p.h>

#include <QAccessible>
#include <QCheckBox>
#include <QDockWidget>
#include <QLayout>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QScrollArea>
#include <QTest>

#include <functional>
#include <memory>

namespace
{

/// A panel whose parts can be reached and whose signals are written down as one letter each.
struct Panel : DetailsWidget {
    Panel()
    {
        const auto note = [this](const QString &what) {
            log += what;
            const auto now = whenTold; // outlives this
            now();
        };
        connect(this, &DetailsWidget::linkActivated, this, note);
        connect(this, &DetailsWidget::checked, this, [=](bool on) { note(QString::number(on)); });
        connect(this, &DetailsWidget::detailsClicked, this, [=] { note("d"_s); });
        connect(this, &DetailsWidget::expanded, this,
                [=](bool on) { note(QLatin1String(on ? "+" : "-")); });
        setSummaryText("<a href='link'>Summary</a>"_s);
        resize(400, 200);
        show();
    }

    /// Does one thing: b clicks the button; l, r, s and a click the label, each in its way; E, C
    /// and N set the state.
    void act(char action)
    {
        const auto click = [this](Qt::MouseButton mouse, Qt::KeyboardModifiers keys, int x) {
            return [=] { QTest::mouseClick(label, mouse, keys, QPoint(x, label->height() / 2)); };
        };
        const QHash<char, std::function<void()>> actions{
            {'b', [this] { button->click(); }},
            {'l', click(Qt::LeftButton, Qt::NoModifier, 150)},
            {'r', click(Qt::RightButton, Qt::NoModifier, 150)},
            {'s', click(Qt::LeftButton, Qt::ShiftModifier, 150)},
            {'a', click(Qt::LeftButton, Qt::NoModifier, 20)}, // on the link
            {'c', [this] { setChecked(!isChecked()); }},
            {'u', [this] { setUseCheckBox(!useCheckBox()); }},
            {'x', [this] { setCheckBoxEnabled(false); }},
            {'t', [this] { setToggleDetailsOnSummaryBarClicks(false); }},
            {'d', [this] { setDetailButtonEnabled(false); }},
            {'w', [this] { setWidget(new QWidget); }},
            {'n', [this] { setWidget(nullptr); }},
            {'E', [this] { setState(Expanded); }},
            {'C', [this] { setState(Collapsed); }},
            {'N', [this] { setState(NoSummary); }}};
        actions[action]();
    }

    DetailsButton *const button = findChild<DetailsButton *>();
    DetailsWidgetLabel *const label = findChild<DetailsWidgetLabel *>();
    QCheckBox *const checkBox = findChild<QCheckBox *>();
    QString log;
    std::function<void()> whenTold = [] {};
};

} // namespace

class TestDetailsWidget : public TestCase
{
    Q_OBJECT

private Q_SLOTS:
    void controlsFollowStateAndFlags()
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
            panel.setState(DetailsWidget::NoSummary);
            panel.setState(state);
            QCoreApplication::processEvents(); // shows what is new

            const bool on = !useBox || isOn;
            const bool summary = state != DetailsWidget::NoSummary;
            const bool open = state != DetailsWidget::Collapsed;
            const auto shows = [&](QWidget *part) { return part->isVisibleTo(&panel); };
            const auto *const reader = QAccessible::queryAccessibleInterface(&panel);
            QCOMPARE(reader->text(QAccessible::Name), "Summary"_s);
            QVERIFY2(shows(panel.button) == (summary && visible)
                         && panel.button->isEnabled() == (enabled && on)
                         && panel.button->isChecked() == (summary && open && hasDetails)
                         && panel.button->isCheckable() == hasDetails
                         && shows(panel.label) == summary
                         && shows(panel.checkBox) == (summary && useBox) && shows(&tool) == summary
                         && tool.isEnabled() == on && panel.state() == state
                         && (!details || shows(details) == (open && on))
                         && reader->state().expanded == (summary && open && hasDetails)
                         && reader->state().collapsed == (summary && !open && hasDetails),
                     qPrintable(QString::number(flags)));
        }
    }

    void actionsChangeTheStateAndTellSo()
    {
        // What is done, what is told, and the state at the end; the state before it is Collapsed.
        for (const char *const row :
             {"b d C", "l d C", "wb +d E", "wbb +d-d C", "wl + E", "wlbl +-d+ E", "wr  C", "ws + E",
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
            for (const QChar action : parts.at(0))
                panel.act(action.toLatin1());
            QCOMPARE(parts.at(0) + panel.log, parts.at(0) + parts.at(1));
            QCOMPARE(QLatin1Char("ECN"[panel.state()]), parts.at(2).at(0));
        }
    }

    void panelMayGoOrChangeWhileItTells()
    {
        // But not what a button of the toolkit sets off by toggling: it uses itself afterwards.
        for (const char action : {'b', 'l', 'a', 'E', 'n'}) {
            QPointer<Panel> panel = new Panel;
            panel->whenTold = [&] { delete panel; };
            if (action == 'n') {
                panel->act('w');
                connect(panel->widget(), &QObject::destroyed, this, panel->whenTold);
            }
            panel->act(action);
            QVERIFY(!panel);
        }

        Panel panel;
        auto *const details = new QDockWidget;
        panel.setWidget(details);
        panel.whenTold = [&] {
            if (panel.log == QLatin1String("link"))
                panel.act('l');
        };
        panel.act('a');
        QCOMPARE(panel.log, "link+"_s);
        connect(details, &QDockWidget::visibilityChanged, &panel, [&] { panel.act('C'); });
        panel.act('C');
        panel.act('E'); // is told only when the details have taken it back
        QCOMPARE(panel.log, "link+---"_s);
    }

    void detailsAndToolsAreReplacedDeletedAndLost()
    {
        announceWarning("DetailsWidget::setWidget: the widget contains the panel"_s);
        announceWarning("DetailsWidget::setToolWidget: the widget contains the panel"_s);
        Panel panel;
        panel.setWidget(&panel);
        panel.setToolWidget(&panel);
        QVERIFY(!panel.widget() && !panel.toolWidget());

        const QPointer<QWidget> first = new QWidget;
        const QPointer<QWidget> inner = new QWidget(first);
        panel.setWidget(first);
        QCOMPARE(first->contentsMargins(), QMargins(6, 6, 6, 6));
        panel.setWidget(inner, 0); // saved from the one that held it
        QVERIFY(!first && inner->contentsMargins().isNull());
        delete inner;
        panel.act('l');
        QCOMPARE(panel.log, "d"_s);

        auto *const formerTool = new QWidget;
        auto *const tool = new QWidget;
        auto *const editor = new QLineEdit(tool);
        panel.setToolWidget(formerTool);
        panel.act('N');
        panel.setToolWidget(tool);
        panel.act('C');
        QVERIFY(formerTool->isVisibleTo(&panel) && tool->isVisibleTo(&panel));
        panel.act('N');
        QVERIFY(!formerTool->isVisibleTo(&panel) && !tool->isVisibleTo(&panel));
        panel.act('C');
        QCOMPARE(formerTool->parentWidget(), &panel);
        QCOMPARE(panel.checkBox->nextInFocusChain(), editor);
        QCOMPARE(editor->nextInFocusChain(), panel.button);
        tool->hide(); // by the host: bringing it back is not for the panel
        panel.act('N');
        panel.act('E');
        QVERIFY(!tool->isVisibleTo(&panel));
        delete tool;
        panel.setSummaryToolTip("tip"_s);
    }

    void toolsComeBackOnlyToABarThatShowsThem()
    {
        Panel panel;
        auto *const first = new QDockWidget; // tells when it is shown
        auto *const second = new QWidget;
        panel.setToolWidget(first);
        panel.setToolWidget(second);
        QCoreApplication::processEvents(); // shows them
        panel.act('N');
        const auto withdraw = connect(first, &QDockWidget::visibilityChanged, &panel,
                                      [&] { panel.setState(DetailsWidget::NoSummary); });
        panel.act('C');
        QVERIFY(!first->isVisibleTo(&panel) && !second->isVisibleTo(&panel));
        disconnect(withdraw);
        panel.act('C');
        QVERIFY(first->isVisibleTo(&panel) && second->isVisibleTo(&panel));

        panel.act('N');
        second->setParent(nullptr); // by the host, which takes it back
        const std::unique_ptr<QWidget> taken(second);
        panel.act('C');
        QVERIFY(first->isVisibleTo(&panel) && !taken->isVisible());
    }

    void docksAndScrollAreasFollowAtOnce()
    {
        QDockWidget dock;
        auto *const area = new QScrollArea;
        auto *const panel = new Panel;
        area->setWidget(panel);
        dock.setWidget(area);
        panel->act('w');
        panel->widget()->setMinimumHeight(700);
        area->setWidgetResizable(true);
        dock.show();
        dock.setMinimumHeight(50);
        panel->act('E');
        QVERIFY(panel->height() > 700);
        QCOMPARE(dock.minimumHeight(), 0);
        panel->act('C');
        QVERIFY(panel->height() < 700);
    }

    void barIsPaintedInLayersAsHighAsItsControls()
    {
        tul::SummaryBarLook look;
        look.size = QSize(60, 101);
        look.topHeight = 40;
        look.background = QColor(50, 50, 50);
        QImage picture(look.size, QImage::Format_RGB32);
        picture.fill(look.background);
        QPainter(&picture).drawImage(0, 0, tul::renderSummaryBar(look));
        look.translucent = false;
        const QImage opaque = tul::renderSummaryBar(look);
        const auto grey = [](const QImage &image, int y) { return image.pixelColor(30, y).red(); };
        // White at 40, and on it or, where it is blended beforehand, in its place white at 65.
        QVERIFY(std::abs(grey(picture, 70) - 82) <= 1 && grey(opaque, 70) == 82);
        QVERIFY(std::abs(grey(picture, 20) - 126) <= 4 && std::abs(grey(opaque, 20) - 102) <= 4);
        QVERIFY(grey(picture, 100) < grey(picture, 99)); // the frames

        Panel panel;
        panel.layout()->setEnabled(false); // heights as given here
        panel.setPalette(Qt::black);
        QCOMPARE(grey(panel.grab().toImage(), 60), 40);
        panel.button->setGeometry(0, 150, 1, 70);
        QVERIFY(grey(panel.grab().toImage(), 60) > 40);
        panel.setContentsMargins(0, 100, 0, 100);
        QCOMPARE(grey(panel.grab().toImage(), 60), 0); // no room, and nothing to warn of
    }
};

QTEST_MAIN(TestDetailsWidget)
#include "tst_detailswidget.moc"
