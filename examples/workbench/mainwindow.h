#pragma once

#include <QMainWindow>
#include <QVector>

class QAction;
class QListWidget;
class QStackedWidget;
class WorkbenchPage;

/// The window of the workbench: the list of pages, the current one, and what it has to say.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Where the faults that pages tell go: to a message box each, or to the standard error stream
    /// when nobody may be there to close a box; the event loop then ends with exit code 1.
    enum class Reporting { MessageBoxes, StandardError };

    explicit MainWindow(Reporting reporting, QWidget *parent = nullptr);

    const QVector<WorkbenchPage *> &pages() const { return m_pages; }
    WorkbenchPage *currentPage() const;
    void setCurrentPage(int index);

    /// How many faults were told so far.
    int faultCount() const { return m_faultCount; }

private:
    void createMenus();
    void addPage(WorkbenchPage *page);
    void chooseFile();
    void report(const QString &message);
    void updateTitle();

    const Reporting m_reporting;
    int m_faultCount = 0;
    QVector<WorkbenchPage *> m_pages;
    QListWidget *m_list;
    QStackedWidget *m_stack;
    QAction *m_openAction = nullptr;
};
