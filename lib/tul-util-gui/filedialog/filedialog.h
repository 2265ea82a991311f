#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QFileDialog>

/// One call for each file or directory that a tool asks its user for.
///
/// A function's name says what the file is: one of this machine, one of the machine on which the
/// inspected program lives, or source code, which may be on either. It shows the toolkit's own
/// dialog for this machine and a RemoteFileDialog for the other one, starts where the user went for
/// the same purpose the last time, and remembers where he goes.
///
/// *Sides*: all files are local until the host calls setAllFilesLocal(false), so that a host that
/// never heard of a remote machine works.
///
/// *Purposes*: the caption tells the purpose. "Open Core File", "Choose core file" and "Save Core
/// File" are one purpose, "core file": leading "Choose ", "Save " and "Open " and the case of
/// letters do not count. Local and remote directories are remembered apart, for the life of the
/// process. A `dir` that the caller gives always wins over the remembered one.
///
/// *Paths* carry no remote prefix, neither those given nor those returned, and nothing in a path
/// says from which side it came: ask allFilesLocal() and sourcesLocal().
///
/// *Arguments* are those of the toolkit's static file dialog functions. `parent` may be null. It
/// must outlive the toolkit's own dialog, with which a local request is served; it may be destroyed
/// while a remote dialog or the executable picker is up, which cancels it. A `dir` that names a
/// file leads to the directory of the file; only a local dialog suggests the name as well.
/// `selectedFilter`, when given, is read for the filter to start with and gets the user's choice
/// when he accepts.
///
/// *Errors*: a null string or an empty list when the user cancels; nothing is remembered then.
///
/// *Threads*: the GUI thread only. Each function returns when its dialog is closed.
namespace FileDialog
{

/// Whether all files are local, true at first. Takes effect with the next request.
TUL_UTIL_GUI_EXPORT bool allFilesLocal();
TUL_UTIL_GUI_EXPORT void setAllFilesLocal(bool local);

/// Whether source code is local although other files are remote, false at first. Takes effect with
/// the next request.
TUL_UTIL_GUI_EXPORT bool sourcesLocal();
TUL_UTIL_GUI_EXPORT void setSourcesLocal(bool local);

/// Asks for an existing file of this machine.
TUL_UTIL_GUI_EXPORT QString getLocalOpenFileName(QWidget *parent = nullptr,
                                                 const QString &caption = QString(),
                                                 const QString &dir = QString(),
                                                 const QString &filter = QString(),
                                                 QString *selectedFilter = nullptr,
                                                 QFileDialog::Options options = {});

/// Asks for one or several existing files of this machine.
TUL_UTIL_GUI_EXPORT QStringList getLocalOpenFileNames(QWidget *parent = nullptr,
                                                      const QString &caption = QString(),
                                                      const QString &dir = QString(),
                                                      const QString &filter = QString(),
                                                      QString *selectedFilter = nullptr,
                                                      QFileDialog::Options options = {});

/// Asks for the name of a file to write on this machine, and whether a file of that name may be
/// replaced.
///
/// *By design*: a `filter` that is one name filter, "Text (*.txt)", gives the answer its suffix,
/// also when it has another one: notes.md becomes notes.md.txt. The question about replacing is
/// then about that name.
TUL_UTIL_GUI_EXPORT QString getLocalSaveFileName(QWidget *parent = nullptr,
                                                 const QString &caption = QString(),
                                                 const QString &dir = QString(),
                                                 const QString &filter = QString(),
                                                 QString *selectedFilter = nullptr,
                                                 QFileDialog::Options options = {});

/// Asks for an existing directory of this machine.
TUL_UTIL_GUI_EXPORT QString getLocalExistingDirectory(QWidget *parent = nullptr,
                                                      const QString &caption = QString(),
                                                      const QString &dir = QString(),
                                                      QFileDialog::Options options
                                                      = QFileDialog::ShowDirsOnly);

/// The same on the remote machine, unless all files are local.
///
/// The remote save dialog adds the suffix of its filter only to a name that has none, and of
/// several filters that of the one which is chosen.
TUL_UTIL_GUI_EXPORT QString getRemoteOpenFileName(QWidget *parent = nullptr,
                                                  const QString &caption = QString(),
                                                  const QString &dir = QString(),
                                                  const QString &filter = QString(),
                                                  QString *selectedFilter = nullptr,
                                                  QFileDialog::Options options = {});
TUL_UTIL_GUI_EXPORT QStringList getRemoteOpenFileNames(QWidget *parent = nullptr,
                                                       const QString &caption = QString(),
                                                       const QString &dir = QString(),
                                                       const QString &filter = QString(),
                                                       QString *selectedFilter = nullptr,
                                                       QFileDialog::Options options = {});
TUL_UTIL_GUI_EXPORT QString getRemoteSaveFileName(QWidget *parent = nullptr,
                                                  const QString &caption = QString(),
                                                  const QString &dir = QString(),
                                                  const QString &filter = QString(),
                                                  QString *selectedFilter = nullptr,
                                                  QFileDialog::Options options = {});
TUL_UTIL_GUI_EXPORT QString getRemoteExistingDirectory(QWidget *parent = nullptr,
                                                       const QString &caption = QString(),
                                                       const QString &dir = QString(),
                                                       QFileDialog::Options options
                                                       = QFileDialog::ShowDirsOnly);

/// The same for source code: on the remote machine unless sources or all files are local.
TUL_UTIL_GUI_EXPORT QString getSourceCodeFileName(QWidget *parent = nullptr,
                                                  const QString &caption = QString(),
                                                  const QString &dir = QString(),
                                                  const QString &filter = QString(),
                                                  QString *selectedFilter = nullptr,
                                                  QFileDialog::Options options = {});
TUL_UTIL_GUI_EXPORT QStringList getSourceCodeFileNames(QWidget *parent = nullptr,
                                                       const QString &caption = QString(),
                                                       const QString &dir = QString(),
                                                       const QString &filter = QString(),
                                                       QString *selectedFilter = nullptr,
                                                       QFileDialog::Options options = {});
TUL_UTIL_GUI_EXPORT QString getSourceCodeSaveFileName(QWidget *parent = nullptr,
                                                      const QString &caption = QString(),
                                                      const QString &dir = QString(),
                                                      const QString &filter = QString(),
                                                      QString *selectedFilter = nullptr,
                                                      QFileDialog::Options options = {});
TUL_UTIL_GUI_EXPORT QString getSourceCodeExistingDirectory(QWidget *parent = nullptr,
                                                           const QString &caption = QString(),
                                                           const QString &dir = QString(),
                                                           QFileDialog::Options options
                                                           = QFileDialog::ShowDirsOnly);

/// Asks for a program, on the remote machine unless all files are local. The user may narrow the
/// list to executable files, as it is at first, or see all files. Never shows a native dialog,
/// which could not narrow its list.
TUL_UTIL_GUI_EXPORT QString getRemoteExecutableFileName(QWidget *parent = nullptr,
                                                        const QString &caption = QString(),
                                                        const QString &dir = QString(),
                                                        QFileDialog::Options options = {});

} // namespace FileDialog
