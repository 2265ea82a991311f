#pragma once

#include <QWidget>

class QDoubleSpinBox;
class QSlider;

/// A slider and a box of digits that choose an index of one dimension.
///
/// The largest index that can be chosen is 2^53, the last one up to which the box counts every
/// number. Above 2^31 the slider moves in equal steps through the dimension.
class IndexChooser : public QWidget
{
    Q_OBJECT

public:
    /// For the indices 0 to `extent` - 1; disabled when there are none.
    IndexChooser(long long extent, const QString &name, QWidget *parent = nullptr);

    void setIndex(long long index);

Q_SIGNALS:
    /// Emitted when another index was chosen or set.
    void indexChanged(long long index);

private:
    void takeSliderPosition(int position);
    void takeTypedIndex(double index);
    double indicesPerPosition() const;

    const long long m_last;
    const int m_lastPosition; // of the slider
    QSlider *m_slider;
    QDoubleSpinBox *m_box;
};
