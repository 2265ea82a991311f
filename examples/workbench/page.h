#pragma once

#include <QStringList>
#include <QWidget>

/// One page of the workbench: shows a part of the library at work.
///
/// A page is one small file behind this interface, plus one line in createPages(). The window shows
/// the page's windowTitle() in its own title.
class WorkbenchPage : public QWidget
{
    Q_OBJECT

public:
    explicit WorkbenchPage(QWidget *parent = nullptr);

    /// The page's name in the list of pages.
    virtual QString title() const = 0;

    /// The name filter with which File > Open chooses a file for this page; empty when the page
    /// opens no files.
    virtual QString openFilter() const;

    /// Opens what the arguments of the command line, or a file that was chosen, name. What cannot
    /// be opened is told once by failed(), and the page stays usable.
    virtual void open(const QStringList &arguments);

    /// What to try here, in a few sentences; plain text.
    virtual QString advice() const;

    /// Makes a widget with the options of the page, which the window shows above it in a panel that
    /// can be collapsed; null when there are none. Called once.
    virtual QWidget *createOptions();

    /// Tells the page that a remote machine was connected to, and the directory to begin in.
    virtual void setRemoteDirectory(const QString &directory);

    /// The pictures that this page gives of itself, as file names without suffix, and what makes
    /// the page ready for one of them.
    virtual QStringList shots() const;
    virtual void prepareShot(const QString &shot);

Q_SIGNALS:
    /// Emitted once for each thing that went wrong, with a sentence for the user.
    void failed(const QString &message);

    /// Emitted when the line at the bottom of the window is to say something else.
    void statusChanged(const QString &text);
};
