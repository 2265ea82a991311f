#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QString>
#include <QStringList>

/// Joins a program and its arguments into one Windows command line, as TerminalProcess announces it
/// and gives it to the command interpreter. For display and for Windows: it is not a shell's
/// quoting.
///
/// The program's slashes become backslashes, and a program with a blank is quoted unless a quote
/// begins or ends it already. In arguments every double quote is escaped by a backslash, and an
/// argument that is empty or contains a blank or a tab is quoted, with the backslashes at its end
/// behind the closing quote. An empty program and no arguments give an empty text.
///
/// *By design*: two blanks stand between the program and the first argument, one follows a program
/// without arguments and one precedes arguments without a program; whoever compares announced
/// command lines relies on it.
TUL_UTIL_GUI_EXPORT QString qt_create_commandline(const QString &program,
                                                  const QStringList &arguments);

/// Splits a command as a user types it into a program and its arguments: at white space, except
/// between double quotes. Three double quotes in a row stand for one that is meant literally. An
/// empty or blank text gives an empty list.
///
/// *By design*: an empty pair of quotes gives no argument, and quotes that are left over at the end
/// of the text are dropped.
TUL_UTIL_GUI_EXPORT QStringList parseCombinedArgString(const QString &program);
