#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QFont>

/// A font of a fixed pitch for a terminal display, of `pointSize` points, in the default weight and
/// not italic. A TerminalWidget keeps the font that it inherits: its creator sets this one.
///
/// A few families that are known to be good come first: of those that are installed, the one that
/// stands last in "Courier New", "Bitstream Terminal", "Monospace", "Typewriter", "FreeMono",
/// "Lucidatypewriter", "LucidaTypewriter", "Terminus". Without one of them it is the family that is
/// fixed, smooth at that size, scalable and has bold and italic styles, the former counting more
/// than all the latter. A family whose "0", "a" or "A" is missing is never taken.
///
/// *Threads*: GUI thread only. Asks the font database, which takes up to a few milliseconds for
/// each family that is installed: call it once.
TUL_UTIL_GUI_EXPORT QFont findGoodFont(int pointSize);
