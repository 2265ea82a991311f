#include <workbench/widgetcard.h>
#include <workbench/widgetcards.h>
#include <workbench/widgetspage.h>

#include <QHBoxLayout>
#include <QScrollArea>
#include <QTabWidget>
#include <QVBoxLayout>

WidgetsPage::WidgetsPage(QWidget *parent)
    : WorkbenchPage(parent)
    , m_groups(new QTabWidget)
{
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_groups);
    m_groups->setDocumentMode(true);
    addGroup(tr("&Buttons"), createButtonCards());
    addGroup(tr("&Panels and lists"), createPanelCards());
    addGroup(tr("&Dialogs and docks"), createDialogCards());
}

/// Two columns of cards: the first half on the left.
void WidgetsPage::addGroup(const QString &title, const QVector<WidgetCard *> &cards)
{
    auto *const area = new QScrollArea;
    auto *const group = new QWidget;
    auto *const columns = new QHBoxLayout(group);
    QVBoxLayout *const halves[] = {new QVBoxLayout, new QVBoxLayout};
    for (QVBoxLayout *const half : halves)
        columns->addLayout(half, 1);
    const int firstHalf = cards.size() / 2;
    for (int i = 0; i < cards.size(); ++i) {
        halves[i < firstHalf ? 0 : 1]->addWidget(cards.at(i));
        connect(cards.at(i), &WidgetCard::told, this, &WidgetsPage::statusChanged);
    }
    for (QVBoxLayout *const half : halves)
        half->addStretch();
    area->setWidget(group);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    m_groups->addTab(area, title);
}

QString WidgetsPage::title() const
{
    return tr("Widgets");
}

QString WidgetsPage::advice() const
{
    return tr("Each card shows a widget and the knobs that change it. Click the bar of a card to "
              "collapse it. What a widget has to tell stands in the line below.");
}

QStringList WidgetsPage::shots() const
{
    return {QStringLiteral("widgets-buttons"), QStringLiteral("widgets-panels"),
            QStringLiteral("widgets-dialogs")};
}

void WidgetsPage::prepareShot(const QString &shot)
{
    m_groups->setCurrentIndex(shots().indexOf(shot));
    m_groups->setFocus();
}
