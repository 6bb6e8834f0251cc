#pragma once

#include "VelocityProfile.h"

#include "ToolsInterface.h"
#include "XmlValueRegister.h"

#include <QBasicTimer>
#include <QPointer>

#include <array>
#include <optional>

class AxisPanel;

/// Edits the ramp settings of one axis, moves it to a position, and shows the velocity over time
/// that the next move will have. The motor is the axis.
class PositionModeTool : public ToolsInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.qvx.ToolsInterface/2.0" FILE "../tools.json")
    Q_INTERFACES(ToolsInterface)

public:
    /// The prototype: it has no panel and answers everything quietly.
    PositionModeTool();

    QString version() override;
    void showPlugin() override;
    void hidePlugin() override;
    ToolsInterface *clone(QString name, unsigned char motor, QVXLModuleInterface *module) override;

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    /// A register and the value last heard of.
    struct Value
    {
        QPointer<XmlValueRegister> reg;
        std::optional<int> value;
    };

    PositionModeTool(const QString &name, unsigned char motor, QVXLModuleInterface *module);

    void findRegisters();
    void buildPanel();
    void connectPanel();
    void followModule();

    bool read(Value *target);
    void poll();
    bool pollMotion();
    void readUnknown();
    void showMotion(bool isCurrent);

    void takeWrite(unsigned int address, int value, unsigned char writtenFor);
    using RegisterWrite = std::pair<QPointer<XmlValueRegister>, int>;

    bool writeAll(std::initializer_list<RegisterWrite> writes);
    void writeSetting(std::size_t index, int value);
    void showSetting(std::size_t index);
    void showTarget();
    void go();
    void stop();
    void hold();
    void handleModuleGone();
    void report(const QString &text);

    void updatePlot();
    QString missingText() const;

    AxisPanel *panel = nullptr;
    Value rampMode;
    Value position;
    Value velocity;
    Value target;
    std::array<Value, rampSettingCount> settings;
    std::optional<int> restPosition; ///< where the next move begins
    QBasicTimer pollTimer;
    bool isStopping = false;
    bool isSilent = false; ///< the last poll got no answer
};
