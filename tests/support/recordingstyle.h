#pragma once

#include <QColor>
#include <QHash>
#include <QProxyStyle>
#include <QStyleOptionHeader>
#include <QVector>

/// The Fusion style that records what it is asked to draw, with hints and metrics to choose. A
/// widget does not take it over: it must outlive the widget.
class RecordingStyle : public QProxyStyle
{
    Q_OBJECT

public:
    struct Drawn {
        int element; ///< a PrimitiveElement or ControlElement
        State state;
        QRect rect;
        const QWidget *widget;
        QColor focusBackground; ///< of focus frames, else invalid
        int section = -1; ///< of headers, as the one below
        QStyleOptionHeader::SectionPosition position = QStyleOptionHeader::Middle;
    };

    RecordingStyle()
        : QProxyStyle(QStringLiteral("fusion"))
    {
    }

    /// What was drawn of an element since the last call, which forgets the other elements too.
    QVector<Drawn> takePrimitives(PrimitiveElement element) { return take(m_primitives, element); }
    QVector<Drawn> takeControls(ControlElement element) { return take(m_controls, element); }

    bool onlyRecords = false; ///< primitives and controls leave no pixels
    QHash<int, int> hints; ///< by StyleHint; the others are those of Fusion
    QHash<int, int> metrics; ///< by PixelMetric, likewise

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    int styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                  QStyleHintReturn *returned) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option = nullptr,
                    const QWidget *widget = nullptr) const override;

private:
    static QVector<Drawn> take(QVector<Drawn> &all, int element);

    mutable QVector<Drawn> m_primitives;
    mutable QVector<Drawn> m_controls;
};
