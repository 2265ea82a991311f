#pragma once

#include <QObject>

class QFileDialog;
class RemoteFileDialog;

namespace FileDialog
{

/// Keeps the default suffix of a save dialog, its parent, in step with the chosen name filter.
class FileDialogFilterMonitor : public QObject
{
    Q_OBJECT

public:
    explicit FileDialogFilterMonitor(QFileDialog *parent);

public Q_SLOTS:
    void filterUpdated(const QString &filter);
};

/// The same for a remote dialog.
class RemoteFileDialogFilterMonitor : public QObject
{
    Q_OBJECT

public:
    explicit RemoteFileDialogFilterMonitor(RemoteFileDialog *parent);

public Q_SLOTS:
    void filterUpdated(const QString &filter);
};

} // namespace FileDialog
