#include <workbench/colourbox.h>

#include <QPixmap>

ColourBox::ColourBox(QWidget *parent)
    : QComboBox(parent)
{
    addItem(tr("unset"), QColor());
    addColour(tr("red"), QColor(0xc0, 0x39, 0x2b));
    addColour(tr("amber"), QColor(0xf3, 0x9c, 0x12));
    addColour(tr("green"), QColor(0x27, 0xae, 0x60));
    addColour(tr("teal"), QColor(0x16, 0xa0, 0x85));
    addColour(tr("blue"), QColor(0x29, 0x80, 0xb9));
    addColour(tr("light blue"), QColor(0xae, 0xd6, 0xf1));
    addColour(tr("violet"), QColor(0x8e, 0x44, 0xad));
    addColour(tr("slate"), QColor(0x2c, 0x3e, 0x50));
    addColour(tr("grey"), QColor(0x95, 0xa5, 0xa6));
    addColour(tr("white"), QColor(0xff, 0xff, 0xff));
    addColour(tr("glass"), QColor(0x29, 0x80, 0xb9, 0x50)); // translucent
    connect(this, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this] { Q_EMIT colourChanged(colour()); });
}

void ColourBox::addColour(const QString &name, const QColor &colour)
{
    QPixmap swatch(iconSize());
    swatch.fill(colour);
    addItem(swatch, name, colour);
}

QColor ColourBox::colour() const
{
    return currentData().value<QColor>();
}

void ColourBox::setColour(const QColor &colour)
{
    int index = findData(colour);
    if (index < 0) {
        index = count();
        addColour(colour.name(QColor::HexArgb), colour);
    }
    setCurrentIndex(index);
}
