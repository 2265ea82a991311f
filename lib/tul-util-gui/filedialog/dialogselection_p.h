#pragma once

#include <tul-util-gui/filedialog/acceptdecision_p.h>

#include <QString>
#include <QStringList>

class DialogContext;

/// What is chosen: keeps the names in the line edit, the selected rows and the button that accepts
/// in step, and takes the choice.
class DialogSelection
{
public:
    explicit DialogSelection(DialogContext *context)
        : m_context(context)
    {
    }

    /// The names in the line edit as whole paths, as the dialog's virtual operation has them before
    /// derived dialogs change them.
    QStringList typedFiles() const;

    /// The chosen paths; none where nothing is chosen.
    QStringList chosenFiles() const;

    /// The same, with the shown directory where nothing is chosen, unless only existing files may
    /// be.
    QStringList selectedFiles() const;

    /// Suggests a file, and goes to its directory.
    void selectFile(const QString &name);

    /// Selects the rows that the line edit names. Others are deselected only while the user types:
    /// a text that follows the selection does not touch it.
    void selectTypedRows(const QString &text);

    /// The same for rows that came later, unless something is selected by then.
    void selectTypedRowsIfNone();

    /// Writes the names of the selected rows into the line edit.
    void showSelectedNames();

    void updateAcceptButton();

    /// Takes the choice, with questions and complaints; see RemoteFileDialogBase::accept().
    void accept();

private:
    QString absolutePath(const QString &typed) const;
    QString withSuffix(const QString &path) const;
    bool leadsNowhere(const tul::AcceptRequest &request) const;
    bool isAllowedToOverwrite(const QString &path) const;
    void tellMissing(const QString &text, const QString &path) const;
    void emitSelected(const QStringList &files);

    DialogContext *const m_context;
    bool m_textLeads = false; ///< the text was changed last, not the selection
    bool m_following = false; ///< rows follow the text, or the text the rows
};
