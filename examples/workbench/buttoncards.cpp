#include <workbench/widgetcard.h>
#include <workbench/widgetcards.h>

#include <tul-util-gui/widgets/closebutton.h>
#include <tul-util-gui/widgets/detailsbutton.h>
#include <tul-util-gui/widgets/flatbutton.h>
#include <tul-util-gui/widgets/flatcommandlinkbutton.h>
#include <tul-util-gui/widgets/widercommandlinkbutton.h>

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QStyle>
#include <QVariant>

#include <memory>
#include <utility>

namespace
{

QString translate(const char *text)
{
    return WidgetCard::tr(text); // clazy:exclude=tr-non-literal
}

struct StateColour {
    const char *label;
    const char *property;
    QColor initial;
};

/// A knob for each colour of a widget. Its setters do not repaint, so the knobs do.
template<std::size_t count>
void addColours(WidgetCard *card, QWidget *widget, const StateColour (&colours)[count])
{
    for (const StateColour &colour : colours) {
        card->addColour(translate(colour.label), colour.initial,
                        [widget, property = colour.property](const QColor &chosen) {
                            widget->setProperty(property, chosen);
                            widget->update();
                        });
    }
}

/// Knobs for the states that a host decides on.
void addStates(WidgetCard *card, QAbstractButton *button)
{
    card->addCheck(WidgetCard::tr("Enabled"), true,
                   [button](bool enabled) { button->setEnabled(enabled); });
    QCheckBox *const checked = card->addCheck(WidgetCard::tr("Checked"), false, [button](bool on) {
        button->setCheckable(true);
        button->setChecked(on);
    });
    QObject::connect(button, &QAbstractButton::toggled, checked, &QCheckBox::setChecked);
    QObject::connect(button, &QAbstractButton::clicked, card, [card, button] {
        Q_EMIT card->told(WidgetCard::tr("%1: clicked, and %2")
                              .arg(card->name(),
                                   button->isChecked() ? WidgetCard::tr("checked")
                                                       : WidgetCard::tr("not checked")));
    });
}

WidgetCard *flatButtonCard()
{
    auto *const card = new WidgetCard(
        QStringLiteral("FlatButton"),
        WidgetCard::tr("Move the mouse over it, press it, check and disable it. A click "
                       "does not check it: that is for its owner."));
    auto *const button = new FlatButton;
    button->setText(WidgetCard::tr("Inspect"));
    button->setIcon(button->style()->standardIcon(QStyle::SP_FileDialogContentsView));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setMinimumHeight(36);
    card->addDemo(button, Qt::AlignCenter);
    addColours(card, button,
               {{QT_TR_NOOP("Raised"), "raisedColour", QColor(0x29, 0x80, 0xb9, 0x50)},
                {QT_TR_NOOP("Hover"), "hoverColour", QColor(0xf3, 0x9c, 0x12)},
                {QT_TR_NOOP("Pressed"), "pressedColour", QColor(0xc0, 0x39, 0x2b)},
                {QT_TR_NOOP("Sunken"), "sunkenColour", QColor(0x27, 0xae, 0x60)},
                {QT_TR_NOOP("Disabled"), "disabledColour", QColor(0x95, 0xa5, 0xa6)},
                {QT_TR_NOOP("Line"), "lineColour", QColor(0x2c, 0x3e, 0x50)}});
    addStates(card, button);
    return card;
}

WidgetCard *flatCommandLinkButtonCard()
{
    auto *const card = new WidgetCard(
        QStringLiteral("FlatCommandLinkButton"),
        WidgetCard::tr("Take the description away, and the title stands beside the icon. Unset "
                       "the description's colour, and it takes that of the title."));
    auto *const button = new FlatCommandLinkButton;
    button->setIcon(button->style()->standardIcon(QStyle::SP_MessageBoxInformation));
    button->setIconSize(QSize(32, 32));
    card->addDemo(button);
    card->addText(WidgetCard::tr("Title"), WidgetCard::tr("Attach to a process"),
                  [button](const QString &text) { button->setText(text); });
    card->addText(WidgetCard::tr("Description"), WidgetCard::tr("Choose a program that runs"),
                  [button](const QString &text) { button->setDescription(text); });
    addColours(card, button,
               {{QT_TR_NOOP("Title"), "titleColour", QColor(0xff, 0xff, 0xff)},
                {QT_TR_NOOP("Description"), "descriptionColour", QColor(0xae, 0xd6, 0xf1)},
                {QT_TR_NOOP("Raised"), "raisedColour", QColor(0x2c, 0x3e, 0x50)},
                {QT_TR_NOOP("Hover"), "hoverColour", QColor(0x29, 0x80, 0xb9)},
                {QT_TR_NOOP("Pressed"), "pressedColour", QColor(0x16, 0xa0, 0x85)},
                {QT_TR_NOOP("Sunken"), "sunkenColour", QColor(0x8e, 0x44, 0xad)},
                {QT_TR_NOOP("Disabled"), "disabledColour", QColor(0x95, 0xa5, 0xa6)},
                {QT_TR_NOOP("Line"), "lineColour", QColor(0xf3, 0x9c, 0x12)}});
    addStates(card, button);
    return card;
}

WidgetCard *widerCommandLinkButtonCard()
{
    auto *const card = new WidgetCard(
        QStringLiteral("WiderCommandLinkButton"),
        WidgetCard::tr("Lengthen the description: the button asks for the width of all of it."));
    auto *const button = new WiderCommandLinkButton;
    card->addDemo(button, Qt::AlignLeft);
    card->addText(WidgetCard::tr("Title"), WidgetCard::tr("Open a core file"),
                  [button](const QString &text) { button->setText(text); });
    card->addText(WidgetCard::tr("Description"),
                  WidgetCard::tr("Look at a program as it was when it ended"),
                  [button](const QString &text) { button->setDescription(text); });
    return card;
}

WidgetCard *closeButtonCard()
{
    auto *const card
        = new WidgetCard(QStringLiteral("CloseButton"),
                         WidgetCard::tr("Close the notice, and bring it back with the knob."));
    auto *const notice = new QFrame;
    notice->setFrameShape(QFrame::StyledPanel);
    auto *const layout = new QHBoxLayout(notice);
    auto *const button = new CloseButton;
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    layout->addWidget(new QLabel(WidgetCard::tr("The program was changed since it was loaded.")));
    layout->addWidget(button);
    card->addDemo(notice);
    QCheckBox *const shown = card->addCheck(WidgetCard::tr("Notice"), true,
                                            [notice](bool show) { notice->setVisible(show); });
    QObject::connect(button, &CloseButton::clicked, shown, [shown] { shown->setChecked(false); });
    card->addCheck(WidgetCard::tr("Can be closed"), true,
                   [button](bool enabled) { button->setEnabled(enabled); });
    return card;
}

WidgetCard *detailsButtonCard()
{
    auto *const card = new WidgetCard(
        QStringLiteral("DetailsButton"),
        WidgetCard::tr("Move the mouse over it: the highlight fades in and out. Without texts of "
                       "its own it says that there are details."));
    auto *const button = new DetailsButton;
    card->addDemo(button, Qt::AlignLeft);
    const auto texts = std::make_shared<std::pair<QString, QString>>();
    card->addText(WidgetCard::tr("Collapsed"), WidgetCard::tr("Show"), [=](const QString &text) {
        texts->first = text;
        button->setDetailButtonText(texts->first, texts->second);
    });
    card->addText(WidgetCard::tr("Expanded"), WidgetCard::tr("Hide"), [=](const QString &text) {
        texts->second = text;
        button->setDetailButtonText(texts->first, texts->second);
    });
    card->addCheck(WidgetCard::tr("Checkable"), true,
                   [button](bool checkable) { button->setCheckable(checkable); });
    card->addCheck(WidgetCard::tr("Enabled"), true,
                   [button](bool enabled) { button->setEnabled(enabled); });
    return card;
}

} // namespace

QVector<WidgetCard *> createButtonCards()
{
    return {flatButtonCard(), flatCommandLinkButtonCard(), detailsButtonCard(),
            widerCommandLinkButtonCard(), closeButtonCard()};
}
