#pragma once

#include <QString>

class QWidget;

namespace tul
{

/// What a screen reader reads of a text that may have markup.
QString plainText(const QString &text);

/// Lets screen readers see details buttons and details widgets as things that expand. Every
/// constructor of these calls it; only the first call has an effect.
void installDetailsAccessibility();

/// Tells screen readers that `widget`, one of the above, has expanded or collapsed.
void announceExpansion(QWidget *widget);

} // namespace tul
