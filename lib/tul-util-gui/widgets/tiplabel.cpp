#include <tul-util-gui/widgets/tiplabel.h>

#include <QFontMetrics>
#include <QStyle>
#include <QTextDocument>
#include <QToolTip>

namespace
{

// Fonts of these proportions would otherwise lose the lowest row of pixels.
int extraHeight(const QFontMetrics &metrics)
{
    return metrics.descent() == 2 && metrics.ascent() >= 11 ? 1 : 0;
}

} // namespace

TipLabel::TipLabel(const QString &text, QWidget *parent)
    : QLabel(parent, Qt::ToolTip | Qt::BypassGraphicsProxyWidget)
{
    setForegroundRole(QPalette::ToolTipText);
    setBackgroundRole(QPalette::ToolTipBase);
    setPalette(QToolTip::palette());
    ensurePolished(); // the metrics below are those of the final style and font

    setMargin(1 + style()->pixelMetric(QStyle::PM_ToolTipLabelFrameWidth, nullptr, this));
    setFrameStyle(QFrame::NoFrame);
    setAlignment(Qt::AlignLeft);
    setIndent(1);
    setWindowOpacity(style()->styleHint(QStyle::SH_ToolTipLabel_Opacity, nullptr, this) / 255.0);
    setMouseTracking(true);

    setWordWrap(Qt::mightBeRichText(text));
    setText(text);
    resize(sizeHint() + QSize(1, extraHeight(fontMetrics())));
}
