#include "XmlRegisterWidget_p.h"

#include "BasicTools.h"
#include "HostRegistry.h"
#include "QVXLModuleInterface_p.h"
#include "ToolsInterface.h"
#include "XmlValueRegister.h"

namespace {

/// The field's own range; the limits of a register narrow it when the field is its only one.
FieldCoding::Range usefulRange(const RegisterInfo &reg, const FieldInfo &field, bool isOnlyField)
{
    const FieldCoding::Range all = FieldCoding::range(field);
    if (!isOnlyField || (reg.min == 0 && reg.max == 0))
        return all;
    const FieldCoding::Range narrowed = {qMax(all.min, reg.min), qMin(all.max, reg.max)};
    return narrowed.min < narrowed.max ? narrowed : all;
}

} // namespace

XmlRegisterWidgetPrivate::XmlRegisterWidgetPrivate(XmlRegisterWidget *publicWidget,
                                                   XmlValueRegisterField *boundField,
                                                   QObject *parent)
    : q(publicWidget)
    , field(boundField)
{
    if (auto *const tool = HostRegistry::asTool(parent)) {
        module = tool->module();
        motor = static_cast<unsigned char>(tool->motorNumber());
    }
    if (!isBound())
        return;
    const XmlValueRegister *const reg = field->getRegister();
    regInfo = ChipInfo::of(reg);
    fieldInfo = ChipInfo::of(field);
    range = usefulRange(regInfo, fieldInfo, ChipInfo::fields(reg).size() == 1);
    const int registerValue =
        module ? QVXLModuleInterfacePrivate::of(module)->outputValue(regInfo, motor)
               : regInfo.reset;
    value = FieldCoding::extract(fieldInfo, registerValue);
}

XmlRegisterWidgetPrivate::~XmlRegisterWidgetPrivate()
{
    delete label;
    delete input;
    delete actual;
}

void XmlRegisterWidgetPrivate::makeParts()
{
    label = new QLabel(fieldInfo.name);
    label->setObjectName(fieldInfo.identifier + QStringLiteral("_label"));
    editor = FieldEditor::create(fieldInfo, range);
    input = editor->widget();
    input->setObjectName(fieldInfo.identifier + QStringLiteral("_input"));
    input->setAccessibleName(fieldInfo.name);
    label->setBuddy(input);
    actual = new ActualValueLabel(range);
    actual->setObjectName(fieldInfo.identifier + QStringLiteral("_actual"));
    const QString tip = toolTip();
    label->setToolTip(tip);
    input->setToolTip(tip);
    actual->setToolTip(tip);
    editor->showValue(value);
    actual->showValue(value);
    applyReadOnly();
}

void XmlRegisterWidgetPrivate::connectParts()
{
    editor->onEdited = [this](int newValue) { takeUserValue(newValue); };
    QObject::connect(field, &QObject::destroyed, q, [this] { applyReadOnly(); });
    if (module) {
        QObject::connect(
            module, &QVXLModuleInterface::registerOutputBufferHasWritten, q,
            [this](unsigned short address, int newValue, int, unsigned char writtenMotor) {
                follow(address, newValue, writtenMotor);
            });
    }
}

void XmlRegisterWidgetPrivate::setValue(int newValue)
{
    const bool isChanged = newValue != value;
    show(newValue);
    if (actual)
        actual->showValue(newValue);
    const QPointer<XmlRegisterWidget> self(q);
    write();
    // Whoever heard of the write may have set another value, which has then been told already.
    if (self && isChanged && value == newValue)
        emit q->valueChanged(newValue);
}

void XmlRegisterWidgetPrivate::takeUserValue(int newValue)
{
    if (isBound() && (newValue != value || hasWriteFailed))
        setValue(newValue);
}

void XmlRegisterWidgetPrivate::show(int newValue)
{
    value = newValue;
    if (input)
        editor->showValue(newValue);
}

void XmlRegisterWidgetPrivate::applyReadOnly()
{
    if (input)
        editor->setInputReadOnly(isInputReadOnly || !regInfo.writable || !isBound());
}

void XmlRegisterWidgetPrivate::follow(unsigned short address, int registerValue,
                                      unsigned char writtenMotor)
{
    const bool isOurs = address == static_cast<unsigned short>(regInfo.address);
    if (!isBound() || !isOurs || !isSameChip(writtenMotor))
        return;
    hasWriteFailed = false;
    const int newValue = FieldCoding::extract(fieldInfo, registerValue);
    if (actual)
        actual->showValue(newValue);
    if (newValue == value)
        return;
    show(newValue);
    emit q->valueChanged(newValue);
}

void XmlRegisterWidgetPrivate::write()
{
    if (!module || !regInfo.writable)
        return;
    const QPointer<XmlRegisterWidget> self(q);
    const bool hasWritten = module->writeAndReadChannelField(field, motor, value, nullptr);
    if (self)
        hasWriteFailed = !hasWritten;
}

bool XmlRegisterWidgetPrivate::isSameChip(unsigned char otherMotor) const
{
    const auto *const state = QVXLModuleInterfacePrivate::of(module);
    return state->chipMotor(otherMotor) == state->chipMotor(motor);
}

QString XmlRegisterWidgetPrivate::toolTip() const
{
    constexpr int addressDigits = 2;
    QStringList lines = {BasicTools::iToHex(regInfo.address, addressDigits, QStringLiteral("0x"))};
    lines << regInfo.description << regInfo.unit;
    lines.removeAll(QString());
    return lines.join(QLatin1Char('\n'));
}
