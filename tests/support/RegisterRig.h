#pragma once

#include "ToolRig.h"

#include "ProductBuilder.h"
#include "XmlRegisterWidget.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

/// The fields that have a row in the panel, in the rows' order.
inline const QStringList rowNames{QStringLiteral("M0_XACTUAL"), QStringLiteral("M1_XACTUAL"),
                                  QStringLiteral("M0_XTARGET"), QStringLiteral("M1_XTARGET")};

/// The fields of the rows that a tool has.
inline QStringList rowsOf(const ToolRig &rig)
{
    QStringList rows;
    for (XmlRegisterWidget *row : rig.tool()->findChildren<XmlRegisterWidget *>())
        rows << row->registerField()->getName().section(QLatin1Char(' '), 0, 0);
    return rows;
}

inline QStringList without(QStringList names, const QString &name)
{
    names.removeAll(name);
    return names;
}

inline XmlValueRegister *registerOf(const ToolRig &rig, const char *name)
{
    return rig.module()->getIcProduct(0)->getRegisterByName(QLatin1String(name), false);
}

inline QVariantList registerListOf(const ToolRig &rig)
{
    return rig.widget<QWidget>("btnShowRegister")->property("RegList").toList();
}

/// A tool on a chip of the test's own making. The module's link is a recording one.
class OwnChip
{
public:
    XmlValueRegister *add(unsigned int address, const char *name, bool isVisible = true)
    {
        RegisterInfo info;
        info.name = QLatin1String(name);
        info.address = address;
        info.visible = isVisible;
        return builder.addRegister(info);
    }

    void addField(XmlValueRegister *reg, const char *identifier, int lowBit = 0, int width = 32,
                  bool isVisible = true)
    {
        FieldInfo info;
        info.identifier = QLatin1String(identifier);
        info.name = info.identifier;
        info.lowBit = lowBit;
        info.width = width;
        info.isSigned = true;
        info.visible = isVisible;
        builder.addField(reg, info);
    }

    QWidget *makeTool(unsigned char motor = 0, unsigned char motorOfTheChip = 0)
    {
        const QString key = QStringLiteral("own module/");
        tool.reset();
        module = std::make_unique<HostModule>(QStringLiteral("module"), key, &link);
        module->setProduct(motorOfTheChip, builder.take());
        tool.reset(toolPrototype()->clone(QStringLiteral("own tool"), motor, module.get()));
        return tool.get();
    }

    QVariantList list(const char *button, const char *property) const
    {
        return tool->findChild<QWidget *>(QLatin1String(button))->property(property).toList();
    }

    RecordingLink link;
    std::unique_ptr<HostModule> module;
    std::unique_ptr<ToolsInterface> tool;

private:
    ProductBuilder builder;
};
