#pragma once

#include <QLabel>

/// The summary label of a details widget: it tells clicks on its background from those on a link.
class DetailsWidgetLabel : public QLabel
{
    Q_OBJECT

public:
    explicit DetailsWidgetLabel(QWidget *parent = nullptr);

Q_SIGNALS:
    /// Emitted when the left button is released and that activated no link.
    void labelBackgroundClicked();

protected:
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    bool m_linkActivated = false; // by the release that is being handled
};
