#pragma once

#include <tul-util-gui/tul_util_gui_export.h>

#include <QCommandLinkButton>

/// A command-link button that asks for the width of its whole description on one line, where the
/// toolkit's wraps it.
///
/// Its font is pinned to the size that it has when the button is made, so that neither the toolkit
/// nor a later change of the parent's font changes that size; the family still follows. The height
/// is the toolkit's.
class TUL_UTIL_GUI_EXPORT WiderCommandLinkButton : public QCommandLinkButton
{
    Q_OBJECT

public:
    explicit WiderCommandLinkButton(const QString &text, const QString &description,
                                    QWidget *parent = nullptr);
    explicit WiderCommandLinkButton(const QString &text, QWidget *parent = nullptr);
    explicit WiderCommandLinkButton(QWidget *parent = nullptr);

    QSize sizeHint() const override;

private:
    void fixFontSize();
};
