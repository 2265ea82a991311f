#pragma once

#include <QColor>
#include <QComboBox>

/// Chooses one of a few colours, each shown with its name, or none.
class ColourBox : public QComboBox
{
    Q_OBJECT

public:
    explicit ColourBox(QWidget *parent = nullptr);

    /// The colour that is chosen; invalid for none. One that is not offered yet is added.
    QColor colour() const;
    void setColour(const QColor &colour);

Q_SIGNALS:
    /// Emitted when another colour was chosen or set.
    void colourChanged(const QColor &colour);

private:
    void addColour(const QString &name, const QColor &colour);
};
