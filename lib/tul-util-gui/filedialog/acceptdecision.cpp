#include <tul-util-gui/filedialog/acceptdecision_p.h>

namespace tul
{

namespace
{

AcceptDecision acceptDirectory(const QString &path, FileKind kind)
{
    switch (kind) {
    case FileKind::Missing:
        return {AcceptAction::TellMissingDirectory, path};
    case FileKind::File:
        return {};
    case FileKind::Directory:
        break;
    }
    return {AcceptAction::Accept, {}};
}

AcceptDecision acceptAnyFile(const AcceptRequest &request, const QString &path, FileKind kind)
{
    if (kind == FileKind::Directory)
        return {AcceptAction::EnterDirectory, path};
    if (kind == FileKind::File && request.acceptMode == QFileDialog::AcceptSave
        && request.confirmOverwrite)
        return {AcceptAction::AskOverwrite, path};
    return {AcceptAction::Accept, {}};
}

AcceptDecision acceptExistingFiles(const QStringList &files, const KindOfFile &kindOf)
{
    for (const QString &file : files) {
        const FileKind kind = kindOf(file);
        if (kind == FileKind::Missing)
            return {AcceptAction::TellMissingFile, file};
        if (kind == FileKind::Directory)
            return {AcceptAction::EnterDirectory, file};
    }
    return {AcceptAction::Accept, {}};
}

} // namespace

bool choosesDirectories(QFileDialog::FileMode mode)
{
    return mode == QFileDialog::Directory || mode == directoryOnly;
}

AcceptDecision decideAccept(const AcceptRequest &request, const KindOfFile &kindOf)
{
    if (request.files.isEmpty())
        return {};
    if (request.typed == QLatin1String(".."))
        return {AcceptAction::GoToParent, {}};
    const QString &first = request.files.constFirst();
    if (choosesDirectories(request.fileMode))
        return acceptDirectory(first, kindOf(first));
    if (request.fileMode == QFileDialog::AnyFile)
        return acceptAnyFile(request, first, kindOf(first));
    return acceptExistingFiles(request.files, kindOf);
}

AcceptButton acceptButton(const AcceptRequest &request, const KindOfFile &kindOf)
{
    if (request.files.isEmpty())
        return {};
    const FileKind first = kindOf(request.files.constFirst());
    if (choosesDirectories(request.fileMode))
        return {first == FileKind::Directory, false};
    const bool opens = first == FileKind::Directory;
    if (request.fileMode == QFileDialog::AnyFile)
        return {true, opens};
    for (const QString &file : request.files) {
        if (kindOf(file) != FileKind::Missing)
            return {true, opens};
    }
    return {};
}

} // namespace tul
