#pragma once

#include <QMainWindow>
#include <QVector>

class PageBar;
class QAction;
class QLabel;
class QListWidget;
class QStackedWidget;
class RemoteActions;
class WorkbenchPage;
struct SshSettings;
struct SshTarget;

/// The window of the workbench: the list of pages, the current one below its options, and docks
/// with what to try on it and with the faults that were told.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Where the faults that pages tell go, beside their list: to a message box each, or to the
    /// standard error stream when nobody may be there to close a box; the event loop then ends with
    /// exit code 1.
    enum class Reporting { MessageBoxes, StandardError };

    explicit MainWindow(Reporting reporting, QWidget *parent = nullptr);

    const QVector<WorkbenchPage *> &pages() const { return m_pages; }
    WorkbenchPage *currentPage() const;
    void setCurrentPage(int index);

    /// Connects to a remote machine, which the pages then take for theirs.
    void connectTo(const SshTarget &target, const SshSettings &settings);

    /// How many faults were told so far.
    int faultCount() const { return m_faultCount; }

private:
    void createMenus();
    void createDocks();
    void addPage(WorkbenchPage *page);
    void chooseFile();
    void report(const QString &message);
    void updateTitle();

    const Reporting m_reporting;
    int m_faultCount = 0;
    QVector<WorkbenchPage *> m_pages;
    PageBar *m_bar;
    QStackedWidget *m_stack; // each page with its options
    QLabel *m_advice;
    QListWidget *m_faults;
    QAction *m_openAction = nullptr;
    RemoteActions *m_remoteActions = nullptr;
};
