// The least that a host can be and still run a tool: every operation that a tool may call is there
// and answers; nothing is connected, listed or drawn. It mirrors the interfaces' shapes and nothing
// of their behaviour.

#include "AppSettings.h"
#include "BasicTools.h"
#include "CommandHandlerInterface.h"
#include "DebugCategories.h"
#include "DynamicProperty.h"
#include "HostLocale.h"
#include "PluginHandler.h"
#include "QVXLModuleInterface.h"
#include "XmlProductIC.h"
#include "XmlRegisterWidget.h"
#include "XmlRegisterWidgetContainer.h"
#include "XmlValueRegister.h"
#include "XmlValueRegisterField.h"

#include <QLayout>

const QLocale curLocale(QStringLiteral("fr_Fr"));
const export_type_t ExportTypes::RegisterList = {QStringLiteral("RergisterList"), QVariant::List};

namespace DynamicProperty {
const char *const WindowFlags = "dpWindowFlags";
const char *const DoNotAnimate = "dpNoAnimate";
} // namespace DynamicProperty

const QLoggingCategory &debLowLevel()
{
    static const QLoggingCategory category("minimal.host", QtWarningMsg);
    return category;
}

QString BasicTools::iToHex(unsigned int value, int digits, QString prefix)
{
    return prefix + QString::number(value, 16).rightJustified(digits, QLatin1Char('0'));
}

AppSettings::AppSettings()
    : QSettings(QStringLiteral("minimal"), QStringLiteral("host"))
{
}

void CommandHandlerInterface::setCircularMode(bool on)
{
    m_circular = on;
}

PluginHandler *PluginHandler::instance(bool)
{
    static PluginHandler handler;
    return &handler;
}

QHash<QString, PluginInterface *> PluginHandler::plugins() const
{
    return m_byKey;
}

QVXLModuleInterface::QVXLModuleInterface()
    : PluginInterface(QStringLiteral("module"), 1, nullptr)
{
}

QVXLModuleInterface::~QVXLModuleInterface() = default;

XmlProductIC *QVXLModuleInterface::getIcProduct(unsigned char)
{
    ++m_chipRequests;
    return &m_chip;
}

bool QVXLModuleInterface::readChannelRegister(XmlValueRegister *, unsigned char, int *)
{
    return false;
}

bool QVXLModuleInterface::writeChannelRegister(XmlValueRegister *, unsigned char, int)
{
    return false;
}

bool QVXLModuleInterface::writeAndReadChannelField(XmlValueRegisterField *, unsigned char, int,
                                                   int *)
{
    return false;
}

XmlValueRegister *XmlProductIC::getRegisterByName(QString, bool)
{
    ++m_lookUps;
    return nullptr;
}

XmlValueRegisterField *XmlProductIC::getRegisterFieldByIdentifier(QString, bool, bool)
{
    ++m_lookUps;
    return nullptr;
}

XmlRegisterSet *XmlProductIC::registerSet()
{
    return &m_registers;
}

XmlValueRegister *XmlRegisterSet::getRegister(unsigned int)
{
    return nullptr;
}

XmlValueRegister::~XmlValueRegister() = default;

unsigned int XmlValueRegister::address()
{
    return 0;
}

QString XmlValueRegister::name()
{
    return objectName();
}

XmlValueRegisterField::~XmlValueRegisterField() = default;

XmlValueRegister *XmlValueRegisterField::getRegister()
{
    return nullptr;
}

QString XmlValueRegisterField::getName()
{
    return objectName();
}

XmlRegisterWidget::XmlRegisterWidget(XmlValueRegisterField *field, QObject *parent)
    : QObject(parent)
    , m_field(field)
{
}

XmlRegisterWidget::~XmlRegisterWidget() = default;

void XmlRegisterWidget::setInputWidgetReadOnly(bool readOnly)
{
    m_readOnly = readOnly;
}

XmlValueRegisterField *XmlRegisterWidget::registerField()
{
    return m_field;
}

void XmlRegisterWidget::updateActualValue(int value, bool)
{
    m_actual = value;
}

void XmlRegisterWidget::setAndUpdateValue(unsigned long long value)
{
    if (!m_readOnly && m_actual != static_cast<int>(value))
        emit valueChanged(static_cast<int>(value));
}

XmlRegisterWidgetContainer::XmlRegisterWidgetContainer(QLayout *layout, QObject *parent,
                                                       QString title)
    : QObject(parent)
    , m_title(title)
    , m_page(new QWidget)
{
    m_page->setLayout(layout);
}

XmlRegisterWidgetContainer::~XmlRegisterWidgetContainer()
{
    delete m_page;
}

void XmlRegisterWidgetContainer::addXmlWidget(XmlRegisterWidget *widget)
{
    m_widgets.append(widget);
}

QList<XmlRegisterWidget *> XmlRegisterWidgetContainer::getXmlWidgets() const
{
    return m_widgets;
}

QWidget *XmlRegisterWidgetContainer::widget()
{
    return m_page;
}
