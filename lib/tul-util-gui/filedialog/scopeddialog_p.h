#pragma once

#include <QPointer>

#include <utility>

namespace tul
{

/// A modal dialog that lives as long as the function that shows it, or less: its parent may be
/// destroyed, and the dialog with it, while exec() runs. A dialog on the stack would then be
/// deleted twice.
template<class Dialog> class ScopedDialog
{
public:
    template<class... Arguments>
    explicit ScopedDialog(Arguments &&...arguments)
        : m_dialog(new Dialog(std::forward<Arguments>(arguments)...))
    {
    }
    ~ScopedDialog() { delete m_dialog.data(); }
    ScopedDialog(const ScopedDialog &) = delete;
    ScopedDialog &operator=(const ScopedDialog &) = delete;

    Dialog *get() const { return m_dialog.data(); }
    Dialog *operator->() const { return m_dialog.data(); }

    /// Runs the dialog. Whether the user accepted and the dialog is still there.
    bool accepted() const { return m_dialog->exec() == Dialog::Accepted && !m_dialog.isNull(); }

private:
    QPointer<Dialog> m_dialog;
};

} // namespace tul
