#include <workbench/messageboxdemo.h>
#include <workbench/widgetcard.h>
#include <workbench/widgetcards.h>

#include <tul-util-gui/widgets/dockwidgettabmovedhelper.h>
#include <tul-util-gui/widgets/stringlisteditdialog.h>

#include <QDockWidget>
#include <QLabel>
#include <QMainWindow>
#include <QTabBar>

#include <memory>

namespace
{

WidgetCard *queuedMessageBoxCard()
{
    auto *const card = new WidgetCard(
        QStringLiteral("QQueuedMessageBox"),
        WidgetCard::tr("Each call returns at once, as the line at the bottom of the window tells, "
                       "and the box comes from the event loop. Queue two: the second one waits. "
                       "What goes wrong on a page is told by one, too."));
    auto *const demo = new MessageBoxDemo(card);
    QObject::connect(demo, &MessageBoxDemo::told, card, &WidgetCard::told);
    const QPair<QString, MessageBoxDemo::Kind> kinds[]
        = {{WidgetCard::tr("Critical"), MessageBoxDemo::Critical},
           {WidgetCard::tr("Information"), MessageBoxDemo::Information},
           {WidgetCard::tr("Warning"), MessageBoxDemo::Warning},
           {WidgetCard::tr("Question"), MessageBoxDemo::Question}};
    for (const auto &kind : kinds)
        card->addButton(kind.first, [demo, kind] { demo->ask(kind.second); });
    card->addButton(WidgetCard::tr("Two at once"), [demo] {
        demo->ask(MessageBoxDemo::Information);
        demo->ask(MessageBoxDemo::Question);
    });
    return card;
}

WidgetCard *stringListEditDialogCard()
{
    auto *const card = new WidgetCard(
        QStringLiteral("StringListEditDialog"),
        WidgetCard::tr("Add an entry and leave it empty, empty one that is there, press Delete."));
    auto *const shown = new QLabel;
    const auto list = std::make_shared<QStringList>(
        QStringList{QStringLiteral("/usr/include"), QStringLiteral("/usr/local/include")});
    const auto show = [shown, list] { shown->setText(list->join(QLatin1Char('\n'))); };
    show();
    card->addDemo(shown);
    card->addButton(WidgetCard::tr("Edit the list..."), [card, list, show] {
        auto *const dialog = new StringListEditDialog(*list, card);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->setWindowTitle(WidgetCard::tr("Folders"));
        QObject::connect(dialog, &QDialog::accepted, card, [dialog, list, show] {
            *list = dialog->stringList();
            show();
        });
        dialog->open();
    });
    return card;
}

/// A window within the card, with docks that are tabs.
QMainWindow *createDockWindow()
{
    auto *const window = new QMainWindow;
    window->setWindowFlags(Qt::Widget);
    new DockWidgetTabMovedHelper(window);
    QDockWidget *first = nullptr;
    for (const QString &name : {WidgetCard::tr("Locals"), WidgetCard::tr("Registers"),
                                WidgetCard::tr("Threads"), WidgetCard::tr("Breakpoints")}) {
        auto *const dock = new QDockWidget(name, window);
        dock->setObjectName(name);
        dock->setWidget(new QLabel(name));
        window->addDockWidget(Qt::TopDockWidgetArea, dock);
        if (first)
            window->tabifyDockWidget(first, dock);
        first = first ? first : dock;
    }
    first->raise();
    window->setMinimumHeight(140);
    return window;
}

WidgetCard *dockWidgetTabMovedHelperCard()
{
    auto *const card = new WidgetCard(
        QStringLiteral("DockWidgetTabMovedHelper"),
        WidgetCard::tr("Drag the tabs into another order, save it, change it again, restore it. A "
                       "tab that is moved over several places at once takes its dock along, too."));
    QMainWindow *const window = createDockWindow();
    card->addDemo(window);
    const auto saved = std::make_shared<QByteArray>(window->saveState());
    card->addButton(WidgetCard::tr("Save the order"), [card, window, saved] {
        *saved = window->saveState();
        Q_EMIT card->told(WidgetCard::tr("DockWidgetTabMovedHelper: order saved"));
    });
    card->addButton(WidgetCard::tr("Restore it"),
                    [window, saved] { window->restoreState(*saved); });
    card->addButton(WidgetCard::tr("Last tab to the front"), [window] {
        const auto bars = window->findChildren<QTabBar *>(QString(), Qt::FindDirectChildrenOnly);
        for (QTabBar *const bar : bars) {
            if (bar->count() > 1)
                bar->moveTab(bar->count() - 1, 0);
        }
    });
    return card;
}

} // namespace

QVector<WidgetCard *> createDialogCards()
{
    return {dockWidgetTabMovedHelperCard(), queuedMessageBoxCard(), stringListEditDialogCard()};
}
