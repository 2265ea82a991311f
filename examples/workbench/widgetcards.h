#pragma once

#include <QVector>

class WidgetCard;

/// A card for each widget of the library: those that are buttons, those that are panels and lists,
/// and those that ask something or arrange windows.
QVector<WidgetCard *> createButtonCards();
QVector<WidgetCard *> createPanelCards();
QVector<WidgetCard *> createDialogCards();
