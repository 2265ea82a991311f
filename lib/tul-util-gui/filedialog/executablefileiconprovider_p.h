#pragma once

#include <QFileIconProvider>
#include <QIcon>

namespace FileDialog
{

/// Gives every executable file the icon theme's picture of a program, or one of our own where the
/// theme has none; all other files look as everywhere.
class ExecutableFileIconProvider : public QFileIconProvider
{
public:
    ExecutableFileIconProvider();

    using QFileIconProvider::icon;
    QIcon icon(const QFileInfo &info) const override;

private:
    QIcon m_executableIcon;
};

} // namespace FileDialog
