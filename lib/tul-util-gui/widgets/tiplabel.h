#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QLabel>

/// A label that looks and sizes itself like the toolkit's tool tip, for a tip that stays as long as
/// its host wants it to: the host moves it to its place, shows and hides it.
///
/// It is a window of its own, also with a parent, and has its final size once it is constructed.
/// Text that may be rich text is wrapped, plain text is not. A text that is set later is not
/// measured again: the host calls adjustSize().
///
/// *Ownership*: that of any widget; a parent deletes it.
class TUL_UTIL_GUI_EXPORT TipLabel : public QLabel
{
    Q_OBJECT

public:
    explicit TipLabel(const QString &text, QWidget *parent = nullptr);
};
