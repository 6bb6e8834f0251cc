#include "XmlRegisterWidget.h"

#include "XmlRegisterWidget_p.h"

XmlRegisterWidget::XmlRegisterWidget(XmlValueRegisterField *field, QObject *parent)
    : QObject(parent)
    , d(std::make_unique<XmlRegisterWidgetPrivate>(this, field, parent))
{
    if (d->isBound()) {
        d->makeParts();
        d->connectParts();
    }
}

XmlRegisterWidget::~XmlRegisterWidget() = default;

void XmlRegisterWidget::setInputWidgetReadOnly(bool readOnly)
{
    d->isInputReadOnly = readOnly;
    d->applyReadOnly();
}

XmlValueRegisterField *XmlRegisterWidget::registerField()
{
    return d->field;
}

void XmlRegisterWidget::updateActualValue(int value, bool updateInput)
{
    if (!d->isBound())
        return;
    if (d->actual)
        d->actual->showValue(value);
    if (updateInput)
        d->show(value);
}

void XmlRegisterWidget::setAndUpdateValue(unsigned long long value)
{
    if (!d->isBound())
        return;
    const auto wanted = static_cast<qint64>(value);
    d->setValue(static_cast<int>(qBound<qint64>(d->range.min, wanted, d->range.max)));
}
