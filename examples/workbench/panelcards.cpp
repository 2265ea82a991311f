#include <workbench/widgetcard.h>
#include <workbench/widgetcards.h>

#include <tul-util-gui/widgets/fadingpanel.h>
#include <tul-util-gui/widgets/fixedheightlistwidget.h>
#include <tul-util-gui/widgets/flatbutton.h>
#include <tul-util-gui/widgets/sidebarwidget.h>
#include <tul-util-gui/widgets/tiplabel.h>

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

namespace
{

WidgetCard *detailsWidgetCard()
{
    auto *const card = new WidgetCard(
        QStringLiteral("DetailsWidget"),
        WidgetCard::tr("Click the bar or its button; with the check box, click the summary. Every "
                       "card of this page is one, too."));
    auto *const panel = new DetailsWidget;
    auto *const details = new QLabel(WidgetCard::tr("Line 1\nLine 2\nLine 3"));
    details->setFrameShape(QFrame::StyledPanel);
    panel->setWidget(details, -1);
    card->addDemo(panel);
    card->addText(WidgetCard::tr("Summary"),
                  WidgetCard::tr("Three lines, <a href=\"first\">first</a> to last"),
                  [panel](const QString &text) { panel->setSummaryText(text); });
    card->addText(WidgetCard::tr("Additional"), QString(),
                  [panel](const QString &text) { panel->setAdditionalSummaryText(text); });
    card->addChoice(
        WidgetCard::tr("State"),
        {WidgetCard::tr("Expanded"), WidgetCard::tr("Collapsed"), WidgetCard::tr("NoSummary")},
        DetailsWidget::Expanded,
        [panel](int state) { panel->setState(DetailsWidget::State(state)); });
    card->addCheck(WidgetCard::tr("Bold summary"), false,
                   [panel](bool bold) { panel->setSummaryFontBold(bold); });
    card->addCheck(WidgetCard::tr("Check box"), false,
                   [panel](bool use) { panel->setUseCheckBox(use); });
    card->addCheck(WidgetCard::tr("Tool widget"), true, [panel](bool show) {
        if (!panel->toolWidget()) {
            auto *const tool = new QToolButton;
            tool->setText(WidgetCard::tr("Copy"));
            panel->setToolWidget(tool);
        }
        panel->toolWidget()->setVisible(show);
    });
    QObject::connect(panel, &DetailsWidget::linkActivated, card, [card](const QString &link) {
        Q_EMIT card->told(WidgetCard::tr("DetailsWidget: link \"%1\"").arg(link));
    });
    QObject::connect(panel, &DetailsWidget::expanded, card, [card](bool expanded) {
        Q_EMIT card->told(expanded ? WidgetCard::tr("DetailsWidget: expanded")
                                   : WidgetCard::tr("DetailsWidget: not expanded"));
    });
    return card;
}

WidgetCard *fadingPanelCard()
{
    auto *const card = new WidgetCard(QStringLiteral("FadingPanel"),
                                      WidgetCard::tr("Fade the sentence out and in again."));
    auto *const panel = new FadingPanel;
    auto *const layout = new QHBoxLayout(panel);
    layout->addWidget(new QLabel(WidgetCard::tr("Here one moment, gone the next.")));
    panel->setOpacity(1.0);
    card->addDemo(panel);
    card->addButton(WidgetCard::tr("Fade out"), [panel] { panel->fadeTo(0.0F); });
    card->addButton(WidgetCard::tr("Fade in"), [panel] { panel->fadeTo(1.0F); });
    card->addButton(WidgetCard::tr("Half, at once"), [panel] { panel->setOpacity(0.5); });
    return card;
}

WidgetCard *sideBarWidgetCard()
{
    auto *const card = new WidgetCard(
        QStringLiteral("SideBarWidget"),
        WidgetCard::tr("Put the line along another edge. The list of pages on the left of this "
                       "window stands on one."));
    auto *const bar = new SideBarWidget;
    auto *const layout = new QVBoxLayout(bar);
    for (const QString &text : {WidgetCard::tr("Source"), WidgetCard::tr("Stack")}) {
        auto *const button = new FlatButton;
        button->setText(text);
        button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
        layout->addWidget(button);
    }
    layout->addStretch();
    bar->setMinimumSize(140, 90);
    card->addDemo(bar, Qt::AlignLeft);
    card->addColour(WidgetCard::tr("Background"), QColor(0x29, 0x80, 0xb9, 0x50),
                    [bar](const QColor &colour) {
                        bar->setBackgroundColour(colour);
                        bar->update(); // the setters only store
                    });
    card->addColour(WidgetCard::tr("Line"), QColor(0x29, 0x80, 0xb9), [bar](const QColor &colour) {
        bar->setLineColour(colour);
        bar->update();
    });
    card->addChoice(WidgetCard::tr("Position"),
                    {WidgetCard::tr("North"), WidgetCard::tr("South"), WidgetCard::tr("West"),
                     WidgetCard::tr("East")},
                    SideBarWidget::East, [bar](int position) {
                        bar->setLinePosition(SideBarWidget::LinePosition(position));
                        bar->update();
                    });
    return card;
}

/// A place in a card below which a tip is shown as a window; it holds a second one that stays.
class TipPlace : public QLabel
{
public:
    void setTip(const QString &text)
    {
        const bool wasShown = m_tip && m_tip->isVisible();
        delete m_tip;
        m_tip = new TipLabel(text, this);
        delete m_fixed;
        m_fixed = new TipLabel(text, this);
        m_fixed->setWindowFlags(Qt::Widget);
        m_fixed->setAutoFillBackground(true);
        m_fixed->show();
        setMinimumHeight(m_fixed->height());
        setTipShown(wasShown);
    }

    void setTipShown(bool shown)
    {
        if (shown)
            m_tip->move(mapToGlobal(QPoint(0, height() + 4)));
        m_tip->setVisible(shown);
    }

protected:
    void hideEvent(QHideEvent *event) override
    {
        m_tip->hide();
        QLabel::hideEvent(event);
    }

private:
    TipLabel *m_tip = nullptr;
    TipLabel *m_fixed = nullptr;
};

WidgetCard *tipLabelCard()
{
    auto *const card = new WidgetCard(
        QStringLiteral("TipLabel"),
        WidgetCard::tr("The tip within the card stays; the other one is a window of its own until "
                       "you hide it."));
    auto *const place = new TipPlace;
    card->addDemo(place);
    card->addText(WidgetCard::tr("Text"), WidgetCard::tr("<b>x</b> = 42, an integer"),
                  [place](const QString &text) { place->setTip(text); });
    card->addButton(WidgetCard::tr("Show as a window"), [place] { place->setTipShown(true); });
    card->addButton(WidgetCard::tr("Hide"), [place] { place->setTipShown(false); });
    return card;
}

WidgetCard *fixedHeightListWidgetCard()
{
    auto *const card = new WidgetCard(
        QStringLiteral("FixedHeightListWidget"),
        WidgetCard::tr("Add long entries, change the flow: the list asks for the room of one line "
                       "of them."));
    auto *const list = new FixedHeightListWidget;
    list->addItems({WidgetCard::tr("time"), WidgetCard::tr("level"), WidgetCard::tr("latitude"),
                    WidgetCard::tr("longitude")});
    card->addDemo(list);
    card->addChoice(WidgetCard::tr("Flow"),
                    {WidgetCard::tr("LeftToRight"), WidgetCard::tr("TopToBottom")}, 0,
                    [list](int flow) {
                        // Across the flow it has what it asks for, along it what there is.
                        const bool isRow = flow == QListView::LeftToRight;
                        list->setFlow(QListView::Flow(flow));
                        list->setSizePolicy(isRow ? QSizePolicy::Expanding : QSizePolicy::Fixed,
                                            isRow ? QSizePolicy::Fixed : QSizePolicy::Preferred);
                        list->updateGeometry();
                    });
    card->addButton(WidgetCard::tr("Add an entry"), [list] {
        list->addItem(WidgetCard::tr("dimension %1").arg(list->count() + 1));
        list->updateGeometry();
    });
    card->addButton(WidgetCard::tr("Remove the last one"), [list] {
        delete list->takeItem(list->count() - 1);
        list->updateGeometry();
    });
    return card;
}

} // namespace

QVector<WidgetCard *> createPanelCards()
{
    return {detailsWidgetCard(), sideBarWidgetCard(), fixedHeightListWidgetCard(),
            fadingPanelCard(), tipLabelCard()};
}
