#include "ActualValueLabel.h"

#include <QEvent>
#include <QLocale>

ActualValueLabel::ActualValueLabel(const FieldCoding::Range &fieldRange)
    : range(fieldRange)
{
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setTextFormat(Qt::PlainText);
    setText(locale().toString(value));
    fitToRange();
}

void ActualValueLabel::showValue(int newValue)
{
    if (newValue == value)
        return;
    value = newValue;
    setText(locale().toString(value));
}

void ActualValueLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    switch (event->type()) {
    case QEvent::LocaleChange:
        setText(locale().toString(value));
        fitToRange();
        break;
    case QEvent::FontChange:
    case QEvent::StyleChange:
        fitToRange();
        break;
    default:
        break;
    }
}

void ActualValueLabel::fitToRange()
{
    const QFontMetrics metrics = fontMetrics();
    const int textWidth = qMax(metrics.horizontalAdvance(locale().toString(range.min)),
                               metrics.horizontalAdvance(locale().toString(range.max)));
    const int padding = metrics.averageCharWidth();
    setFixedSize(textWidth + padding, metrics.height());
}
