#include <workbench/mainwindow.h>
#include <workbench/page.h>
#include <workbench/pagebar.h>
#include <workbench/pages.h>
#include <workbench/remoteactions.h>

#include <tul-util-gui/widgets/detailswidget.h>
#include <tul-util-gui/widgets/dockwidgettabmovedhelper.h>
#include <tul-util-gui/widgets/qqueuedmessagebox.h>

#include <QApplication>
#include <QDockWidget>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollArea>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTextDocument>
#include <QVBoxLayout>

#include <cstdio>

namespace
{

constexpr int docksHeight = 70; // pixels
constexpr int docksMargin = 6;

} // namespace

MainWindow::MainWindow(Reporting reporting, QWidget *parent)
    : QMainWindow(parent)
    , m_reporting(reporting)
    , m_bar(new PageBar)
    , m_stack(new QStackedWidget)
    , m_advice(new QLabel)
    , m_faults(new QListWidget)
{
    auto *const center = new QWidget;
    auto *const layout = new QHBoxLayout(center);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_bar);
    layout->addWidget(m_stack, 1);
    setCentralWidget(center);

    createDocks();
    createMenus();
    statusBar()->show();
    connect(m_bar, &PageBar::pageChosen, this, &MainWindow::setCurrentPage);
    const QVector<WorkbenchPage *> pages = createPages(m_stack);
    for (WorkbenchPage *const page : pages)
        addPage(page);
    setCurrentPage(0);
    resize(1200, 860);
}

/// Side by side as tabs, which the user may put into another order.
void MainWindow::createDocks()
{
    m_advice->setWordWrap(true);
    m_advice->setTextFormat(Qt::PlainText);
    m_advice->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_advice->setMargin(docksMargin);
    auto *const adviceArea = new QScrollArea;
    adviceArea->setWidget(m_advice);
    adviceArea->setWidgetResizable(true);
    adviceArea->setFrameShape(QFrame::NoFrame);
    m_faults->setAccessibleName(tr("Faults"));

    new DockWidgetTabMovedHelper(this); // before the first tabs
    const auto addDock = [this](const QString &name, const QString &title, QWidget *contents) {
        auto *const dock = new QDockWidget(title, this);
        dock->setObjectName(name);
        dock->setWidget(contents);
        addDockWidget(Qt::BottomDockWidgetArea, dock);
        return dock;
    };
    QDockWidget *const advice = addDock(QStringLiteral("advice"), tr("What to try"), adviceArea);
    QDockWidget *const faults = addDock(QStringLiteral("faults"), tr("Faults"), m_faults);
    tabifyDockWidget(advice, faults);
    advice->raise();
    resizeDocks({advice}, {docksHeight}, Qt::Vertical);
}

void MainWindow::createMenus()
{
    QMenu *const file = menuBar()->addMenu(tr("&File"));
    m_openAction = file->addAction(tr("&Open..."), this, &MainWindow::chooseFile);
    m_openAction->setShortcut(QKeySequence::Open);
    m_remoteActions = new RemoteActions(file, this);
    connect(m_remoteActions, &RemoteActions::failed, this, &MainWindow::report);
    connect(m_remoteActions, &RemoteActions::statusChanged, statusBar(),
            [this](const QString &text) { statusBar()->showMessage(text); });
    connect(m_remoteActions, &RemoteActions::fetched, this,
            [this](const QString &fileName) { currentPage()->open({fileName}); });
    connect(m_remoteActions, &RemoteActions::opened, this, [this](const QString &directory) {
        for (WorkbenchPage *const page : qAsConst(m_pages))
            page->setRemoteDirectory(directory);
    });
    file->addSeparator();
    QAction *const quit = file->addAction(tr("&Quit"), qApp, &QApplication::closeAllWindows);
    quit->setShortcut(QKeySequence::Quit);
    QMenu *const view = menuBar()->addMenu(tr("&View"));
    const auto docks = findChildren<QDockWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QDockWidget *const dock : docks)
        view->addAction(dock->toggleViewAction());
}

void MainWindow::addPage(WorkbenchPage *page)
{
    m_pages.append(page);
    auto *const holder = new QWidget;
    auto *const layout = new QVBoxLayout(holder);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    if (QWidget *const options = page->createOptions()) {
        auto *const panel = new DetailsWidget(holder);
        panel->setSummaryText(tr("Options of this page"));
        panel->setWidget(options);
        layout->addWidget(panel);
    }
    layout->addWidget(page, 1);
    m_stack->addWidget(holder);
    connect(page, &WorkbenchPage::failed, this, &MainWindow::report);
    connect(page, &WorkbenchPage::statusChanged, this, [this, page](const QString &text) {
        if (page == currentPage())
            statusBar()->showMessage(text);
    });
    connect(page, &QWidget::windowTitleChanged, this, &MainWindow::updateTitle);
    m_bar->addPage(page->title());
}

WorkbenchPage *MainWindow::currentPage() const
{
    return m_pages.value(m_stack->currentIndex());
}

void MainWindow::setCurrentPage(int index)
{
    m_stack->setCurrentIndex(index);
    m_bar->setCurrentPage(index);
    m_advice->setText(currentPage()->advice());
    statusBar()->clearMessage();
    m_openAction->setEnabled(!currentPage()->openFilter().isEmpty());
    m_remoteActions->setFilter(currentPage()->openFilter());
    updateTitle();
}

void MainWindow::connectTo(const SshTarget &target, const SshSettings &settings)
{
    m_remoteActions->connectTo(target, settings);
}

void MainWindow::chooseFile()
{
    WorkbenchPage *const page = currentPage();
    auto *const dialog = new QFileDialog(this, tr("Open"), QString(), page->openFilter());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setFileMode(QFileDialog::ExistingFile);
    connect(dialog, &QFileDialog::fileSelected, page,
            [page](const QString &fileName) { page->open({fileName}); });
    dialog->open();
}

void MainWindow::report(const QString &message)
{
    ++m_faultCount;
    m_faults->addItem(message);
    if (m_reporting == Reporting::StandardError) {
        std::fprintf(stderr, "workbench: %s\n", qPrintable(message));
        QCoreApplication::exit(1);
        return;
    }
    // Later, from the event loop: a page may be in the middle of its work.
    QQueuedMessageBox::warning(this, QCoreApplication::applicationName(),
                               Qt::convertFromPlainText(message), QMessageBox::Ok,
                               QMessageBox::NoButton, nullptr, nullptr);
}

void MainWindow::updateTitle()
{
    const QString name = tr("Workbench");
    const QString subject = currentPage()->windowTitle();
    setWindowTitle(subject.isEmpty() ? name : tr("%1 - %2").arg(subject, name));
}
