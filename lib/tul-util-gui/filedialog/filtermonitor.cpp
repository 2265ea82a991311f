#include <tul-util-gui/filedialog/filtermonitor_p.h>
#include <tul-util-gui/filedialog/namefilters_p.h>
#include <tul-util-gui/filedialog/remotefiledialog.h>

#include <QFileDialog>

namespace
{

template<class Dialog> void follow(QObject *parent, const QString &filter)
{
    if (auto *const dialog = qobject_cast<Dialog *>(parent))
        dialog->setDefaultSuffix(
            tul::defaultSuffix(tul::filterShownAs(filter, dialog->nameFilters())));
}

} // namespace

namespace FileDialog
{

FileDialogFilterMonitor::FileDialogFilterMonitor(QFileDialog *parent)
    : QObject(parent)
{
}

void FileDialogFilterMonitor::filterUpdated(const QString &filter)
{
    follow<QFileDialog>(parent(), filter);
}

RemoteFileDialogFilterMonitor::RemoteFileDialogFilterMonitor(RemoteFileDialog *parent)
    : QObject(parent)
{
}

void RemoteFileDialogFilterMonitor::filterUpdated(const QString &filter)
{
    follow<RemoteFileDialog>(parent(), filter);
}

} // namespace FileDialog
