#include <workbench/mainwindow.h>
#include <workbench/page.h>
#include <workbench/pages.h>

#include <QApplication>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QListWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QStackedWidget>
#include <QStatusBar>

#include <cstdio>

MainWindow::MainWindow(Reporting reporting, QWidget *parent)
    : QMainWindow(parent)
    , m_reporting(reporting)
    , m_list(new QListWidget)
    , m_stack(new QStackedWidget)
{
    auto *const center = new QWidget;
    auto *const layout = new QHBoxLayout(center);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    layout->addWidget(m_stack, 1);
    setCentralWidget(center);
    m_list->setAccessibleName(tr("Pages"));
    m_list->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Expanding);
    m_list->setSizeAdjustPolicy(QAbstractScrollArea::AdjustToContents);

    createMenus();
    statusBar()->show();
    connect(m_list, &QListWidget::currentRowChanged, this, &MainWindow::setCurrentPage);
    const QVector<WorkbenchPage *> pages = createPages(m_stack);
    for (WorkbenchPage *const page : pages)
        addPage(page);
    m_list->setVisible(m_pages.size() > 1);
    setCurrentPage(0);
    resize(1200, 760);
}

void MainWindow::createMenus()
{
    QMenu *const file = menuBar()->addMenu(tr("&File"));
    m_openAction = file->addAction(tr("&Open..."), this, &MainWindow::chooseFile);
    m_openAction->setShortcut(QKeySequence::Open);
    file->addSeparator();
    QAction *const quit = file->addAction(tr("&Quit"), qApp, &QApplication::closeAllWindows);
    quit->setShortcut(QKeySequence::Quit);
}

void MainWindow::addPage(WorkbenchPage *page)
{
    m_pages.append(page);
    m_stack->addWidget(page);
    connect(page, &WorkbenchPage::failed, this, &MainWindow::report);
    connect(page, &WorkbenchPage::statusChanged, this, [this, page](const QString &text) {
        if (page == currentPage())
            statusBar()->showMessage(text);
    });
    connect(page, &QWidget::windowTitleChanged, this, &MainWindow::updateTitle);
    m_list->addItem(page->title());
}

WorkbenchPage *MainWindow::currentPage() const
{
    return m_pages.value(m_stack->currentIndex());
}

void MainWindow::setCurrentPage(int index)
{
    m_stack->setCurrentIndex(index);
    m_list->setCurrentRow(index);
    statusBar()->clearMessage();
    m_openAction->setEnabled(!currentPage()->openFilter().isEmpty());
    updateTitle();
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
    if (m_reporting == Reporting::StandardError) {
        std::fprintf(stderr, "workbench: %s\n", qPrintable(message));
        QCoreApplication::exit(1);
        return;
    }
    // The event loop goes on: a page may be in the middle of its work.
    auto *const box = new QMessageBox(QMessageBox::Warning, QCoreApplication::applicationName(),
                                      message, QMessageBox::Ok, this);
    box->setTextFormat(Qt::PlainText);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void MainWindow::updateTitle()
{
    const QString name = tr("Workbench");
    const QString subject = currentPage()->windowTitle();
    setWindowTitle(subject.isEmpty() ? name : tr("%1 - %2").arg(subject, name));
}
