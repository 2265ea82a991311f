#include <tul-util-gui/filedialog/dialogcontext_p.h>
#include <tul-util-gui/filedialog/dialogpaths_p.h>
#include <tul-util-gui/filedialog/dialogviews_p.h>
#include <tul-util-gui/filedialog/remotefiledialogbase.h>
#include <tul-util-gui/filedialog/remotefscompleter_p.h>
#include <tul-util-gui/filesystemmodel/remotefilesystemmodel.h>

#include <QAbstractItemView>
#include <QDir>
#include <QListView>

RemoteFSCompleter::RemoteFSCompleter(DialogContext *context, QObject *parent)
    : QCompleter(parent)
    , m_context(context)
{
    setModel(context->viewModel());
    // By design: on a remote side too, where the letter case counts; the user sees what is meant.
    setCaseSensitivity(Qt::CaseInsensitive);
    // Measuring each completion would ask for the icon of each file.
    auto *const list = new QListView;
    list->setUniformItemSizes(true);
    list->setLayoutMode(QListView::Batched);
    setPopup(list);
}

QString RemoteFSCompleter::absolutePath(const QString &text) const
{
    bool expanded = false;
    const QString path = m_context->dialog->tildeExpansion(text, &expanded);
    if (expanded)
        return path;
    const QString root = m_context->rootPath();
    if (path.startsWith(QLatin1Char('/')))
        return tul::requestPath(tul::joinElements(tul::splitPath(root).mid(0, 1)) + path);
    return QDir::isAbsolutePath(path) ? path : tul::joinSlash(root, path);
}

QStringList RemoteFSCompleter::splitPath(const QString &path) const
{
    QStringList elements = tul::splitPath(absolutePath(path));
    // The last part is the beginning of a name, also if nothing of it was typed yet.
    if (path.isEmpty() || path.endsWith(QLatin1Char('/')))
        elements.append(QString());
    return elements;
}

QString RemoteFSCompleter::pathFromIndex(const QModelIndex &index) const
{
    // By role, as the index may be one of the proxy or of the completions.
    const QString path
        = tul::requestPath(index.data(RemoteFileSystemModel::FilePathRole).toString());
    const QString root = m_context->rootPath();
    const QString start = root.isEmpty() ? root : tul::joinSlash(root, QString());
    return path.startsWith(start) ? path.mid(start.size()) : path;
}

void RemoteFSCompleter::prepare(const QString &text)
{
    m_awaited.clear();
    const int slash = text.lastIndexOf(QLatin1Char('/'));
    if (slash < 0 || text.startsWith(QLatin1String("//")))
        return;
    const QString directory = tul::cleanDialogPath(absolutePath(text.left(slash + 1)));
    const QModelIndex index = m_context->model->index(directory);
    if (!index.isValid() || !m_context->model->canFetchMore(index))
        return;
    m_awaited = directory;
    m_context->model->fetchMore(index);
}

void RemoteFSCompleter::directoryLoaded(const QString &path)
{
    if (m_awaited.isEmpty() || tul::requestPath(path) != m_awaited)
        return;
    m_awaited.clear();
    RemoteFileDialogBaseLineEdit *const edit = m_context->ui.fileNameEdit;
    if (!edit->hasFocus())
        return;
    setCompletionPrefix(edit->text());
    complete();
}
