#pragma once

#include <QFileDialog>
#include <QString>
#include <QStringList>

#include <functional>

// What becomes of the chosen files when the user accepts, without asking or telling anybody.
namespace tul
{

QT_WARNING_PUSH
QT_WARNING_DISABLE_DEPRECATED
/// The mode in which files are not even shown. The toolkit would rather have an option for it.
constexpr QFileDialog::FileMode directoryOnly = QFileDialog::DirectoryOnly;
QT_WARNING_POP

enum class FileKind { Missing, File, Directory };

/// Tells what a path leads to. Asked only where the answer matters, as it may have to come from
/// another machine.
using KindOfFile = std::function<FileKind(const QString &path)>;

/// What is accepted, and in which dialog.
struct AcceptRequest {
    QFileDialog::FileMode fileMode = QFileDialog::AnyFile;
    QFileDialog::AcceptMode acceptMode = QFileDialog::AcceptOpen;
    bool confirmOverwrite = true;
    QString typed; ///< the text of the line edit
    QStringList files; ///< the chosen paths
};

enum class AcceptAction {
    Nothing,
    GoToParent,
    EnterDirectory,
    TellMissingFile,
    TellMissingDirectory,
    AskOverwrite,
    Accept
};

struct AcceptDecision {
    AcceptAction action = AcceptAction::Nothing;
    QString path; ///< the one that the action is about; empty for GoToParent and Accept
};

/// Whether directories are chosen rather than files.
bool choosesDirectories(QFileDialog::FileMode mode);

AcceptDecision decideAccept(const AcceptRequest &request, const KindOfFile &kindOf);

/// How the button that accepts looks.
struct AcceptButton {
    bool enabled = false;
    bool opens = false; ///< accepting goes into a directory and leaves the dialog open
};

AcceptButton acceptButton(const AcceptRequest &request, const KindOfFile &kindOf);

} // namespace tul
