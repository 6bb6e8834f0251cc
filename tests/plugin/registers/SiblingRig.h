#pragma once

#include "ToolRig.h"

#include "HostRegistry.h"

#include <QAbstractButton>
#include <QCoreApplication>
#include <QTimerEvent>

inline const auto browserName = QStringLiteral("Register browser");
inline const auto positionName = QStringLiteral("Position mode");

/// A tool of another plug-in. Writes down what is exported to it.
class Sibling : public ToolsInterface
{
    Q_OBJECT
    Q_INTERFACES(ToolsInterface)

public:
    Sibling(const QString &key, const QString &title, unsigned char motor = 0,
            QWidget *parent = nullptr)
        : ToolsInterface(QStringLiteral("sibling"), QStringLiteral("Sibling"),
                         ToolsType::RegisterBrowser, motor, nullptr, QString(), parent)
    {
        setToolsName(title);
        HostRegistry::add(this, key);
    }

    void importValue(const export_type_t *type, QVariant value, QObject *sender) override
    {
        types << type;
        values << value;
        senders << sender;
    }

    QList<const export_type_t *> types;
    QVariantList values;
    QList<QObject *> senders;
};

/// The tool with its two link buttons; writes down what it asks the device tree for.
struct SiblingRig : ToolRig
{
    explicit SiblingRig(const RigGaps &gaps = {})
        : ToolRig(0, gaps)
        , browser(widget<QAbstractButton>("btnShowRegister"))
        , position(widget<QAbstractButton>("btnShowPosition"))
    {
        QObject::connect(tool(), &PluginInterface::signalDeviceTreeOperation,
                         [this](const eDeviceTreeOperation &operation, const QString &key,
                                const QVariant &value) {
                             requests << key;
                             allOpen = allOpen && static_cast<int>(operation) == 1;
                             allValid = allValid && !value.isValid();
                         });
    }

    /// A key that belongs to the rig's module.
    QString key(const char *name) const { return module()->key() + QLatin1String(name); }

    /// "browser" and "position" for the buttons that are enabled.
    QString enabled() const
    {
        return QString::fromLatin1(browser->isEnabled() ? "browser " : "- ") +
               QString::fromLatin1(position->isEnabled() ? "position" : "-");
    }

    QAbstractButton *browser;
    QAbstractButton *position;
    QStringList requests;
    bool allOpen = true;
    bool allValid = true;
};

/// The timers that wait to fire once, as objects of Qt's own below the event dispatcher.
struct SingleShot
{
    QPointer<QObject> object;
    QAbstractEventDispatcher::TimerInfo timer{0, 0, Qt::CoarseTimer};
};

inline QList<SingleShot> singleShots()
{
    QList<SingleShot> found;
    auto *dispatcher = QAbstractEventDispatcher::instance();
    for (QObject *child : dispatcher->children()) {
        for (const auto &timer : dispatcher->registeredTimers(child))
            found << SingleShot{child, timer};
    }
    return found;
}

/// Lets the delayed export happen at once.
inline void fireSingleShots()
{
    for (const SingleShot &shot : singleShots()) {
        QTimerEvent event(shot.timer.timerId);
        QCoreApplication::sendEvent(shot.object, &event);
    }
}
