#pragma once

#include "VelocityProfile.h"

#include <QWidget>

#include <array>

class NumberEditor;
class ProfilePlot;
class QLabel;
class QPushButton;
class XmlValueRegister;

/// The registers of one axis that the user edits. Null where the chip has none.
struct AxisRegisters
{
    XmlValueRegister *target = nullptr;
    std::array<XmlValueRegister *, rampSettingCount> settings{};
};

/// The widgets of position mode, without behaviour of their own. All belong to the panel.
class AxisPanel : public QWidget
{
    Q_OBJECT

public:
    /// Units, ranges and texts are taken from the registers, which are not kept.
    AxisPanel(const AxisRegisters &registers, QWidget *parent);

    /// Greyed when the value is an old one.
    void showPosition(const QString &text, bool isCurrent);
    void showVelocity(const QString &text, bool isCurrent);

    /// One line below; an empty text clears it.
    void showStatus(const QString &text);

    QLabel *position = nullptr;
    QLabel *velocity = nullptr;
    std::array<NumberEditor *, rampSettingCount> settings{}; ///< never null
    NumberEditor *target = nullptr;
    QPushButton *go = nullptr;
    QPushButton *stop = nullptr;
    ProfilePlot *plot = nullptr;
    QLabel *status = nullptr;

private:
    QWidget *makeActualBox();
    QWidget *makeSettingsBox(const AxisRegisters &registers);
    QWidget *makeMoveBox(const AxisRegisters &registers);
    QWidget *makeSettingsColumn(const AxisRegisters &registers);
};

/// " units/s", or nothing for a plain number.
QString unitSuffix(const XmlValueRegister *reg);
