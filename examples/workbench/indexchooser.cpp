#include <workbench/indexchooser.h>

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QSlider>

#include <algorithm>
#include <cmath>
#include <limits>

namespace
{

constexpr long long lastExactDouble = 1LL << 53;

} // namespace

IndexChooser::IndexChooser(long long extent, const QString &name, QWidget *parent)
    : QWidget(parent)
    , m_last(std::clamp(extent - 1, 0LL, lastExactDouble))
    , m_lastPosition(static_cast<int>(std::min<long long>(m_last, std::numeric_limits<int>::max())))
    , m_slider(new QSlider(Qt::Horizontal))
    , m_box(new QDoubleSpinBox)
{
    m_slider->setRange(0, m_lastPosition);
    m_slider->setPageStep(std::max(m_lastPosition / 10, 1));
    m_slider->setAccessibleName(tr("Index of %1, slider").arg(name));
    m_box->setDecimals(0);
    m_box->setRange(0, static_cast<double>(m_last));
    m_box->setAccelerated(true);
    m_box->setKeyboardTracking(false); // or each digit would have a slice read
    m_box->setAccessibleName(tr("Index of %1").arg(name));

    auto *const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_slider, 1);
    layout->addWidget(m_box);
    setEnabled(extent > 1);
    setFocusProxy(m_box);

    connect(m_slider, &QSlider::valueChanged, this, &IndexChooser::takeSliderPosition);
    connect(m_box, QOverload<double>::of(&QDoubleSpinBox::valueChanged), this,
            &IndexChooser::takeTypedIndex);
}

void IndexChooser::setIndex(long long index)
{
    m_box->setValue(static_cast<double>(index));
}

void IndexChooser::takeSliderPosition(int position)
{
    setIndex(m_last == m_lastPosition ? position : std::llround(position * indicesPerPosition()));
}

void IndexChooser::takeTypedIndex(double index)
{
    const QSignalBlocker blocker(m_slider);
    m_slider->setValue(static_cast<int>(
        m_last == m_lastPosition ? index : std::round(index / indicesPerPosition())));
    Q_EMIT indexChanged(static_cast<long long>(index));
}

/// At least 1, so that each position of the slider is found again from its index.
double IndexChooser::indicesPerPosition() const
{
    return static_cast<double>(m_last) / m_lastPosition;
}
