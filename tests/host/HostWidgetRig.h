#pragma once

#include "HostModule.h"
#include "RecordingLink.h"
#include "ToolsInterface.h"
#include "XmlRegisterWidget.h"

#include <QPointer>

#include <memory>

class QSpinBox;
class XmlRegisterWidgetContainer;

/// Base of the tests of register widgets: a visible tool of motor 0 with an empty container, on a
/// module whose one chip serves motors 0 and 1. The chip has a target (0x2D, reset value 100), a
/// read-only actual value of 24 bits (0x21), and a mode register (0x20, reset value 0x101) with the
/// fields SPEED, a byte from bit 8 on, and LATCH, bit 0.
class HostWidgetRig : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

protected:
    /// A widget for a field, owned by the tool and added to the container.
    XmlRegisterWidget *makeWidget(const char *identifier);
    XmlValueRegisterField *field(const char *identifier) const;
    QSpinBox *spinBox(const char *identifier) const;
    QString actualText(const char *identifier) const;

    /// A value in the form in which setAndUpdateValue() takes it.
    static unsigned long long passed(qint64 value);

    /// How the link notes a write.
    static QString write(int address, int value);

    RecordingLink link;
    std::unique_ptr<HostModule> module;
    std::unique_ptr<ToolsInterface> tool;
    QPointer<XmlRegisterWidgetContainer> container;
};
