#include "SynchronisedDriveTool.h"

#include "ui_SynchronisedDriveTool.h"

#include "XmlValueRegister.h"

namespace {

const auto m0Prefix = QStringLiteral("M0_");
const auto m1Prefix = QStringLiteral("M1_");

QString zeroSettingsToolTip(const QStringList &m0Zeros, const QStringList &m1Zeros)
{
    QString text = QStringLiteral("Zero settings:");
    for (const QStringList &zeros : {m0Zeros, m1Zeros}) {
        if (!zeros.isEmpty())
            text += QStringLiteral("\n\n") + zeros.join(QLatin1Char('\n'));
    }
    return text;
}

} // namespace

/// Marks the button that leads to the ramp settings when one that a move needs is zero.
void SynchronisedDriveTool::setRampLink()
{
    QStringList m0Zeros;
    QStringList m1Zeros;
    const bool isRead = listZeroVelocity(m0VmaxRegister, QStringLiteral("M0_VMAX"), m0Zeros) &&
                        listZeroVelocity(m1VmaxRegister, QStringLiteral("M1_VMAX"), m1Zeros) &&
                        listZeroRampSettings(m0Prefix, m0Zeros) &&
                        listZeroRampSettings(m1Prefix, m1Zeros);
    if (!isRead)
        return;

    ui->btnShowPosition->setStyleSheet(QString());
    ui->btnShowPosition->setDescription(QString());
    ui->btnShowPosition->setToolTip(QString());
    if (m0Zeros.isEmpty() && m1Zeros.isEmpty())
        return;
    ui->btnShowPosition->setToolTip(zeroSettingsToolTip(m0Zeros, m1Zeros));
    ui->btnShowPosition->setDescription(QStringLiteral("At least one setting is zero!"));
    ui->btnShowPosition->setStyleSheet(QStringLiteral("QCommandLinkButton{border: 2px solid red}"));
}

/// False when the tool is gone.
bool SynchronisedDriveTool::listZeroVelocity(XmlValueRegister *reg, const QString &name,
                                             QStringList &zeros)
{
    int value = 0;
    if (!readRegister(reg, motorByte(), &value))
        return false;
    if (value == 0)
        zeros << name;
    return true;
}

/// Lists the accelerations of one axis that are zero, those of the two stages only where the stage
/// is in use. The stages' decelerations do not count. False when the tool is gone.
bool SynchronisedDriveTool::listZeroRampSettings(const QString &prefix, QStringList &zeros)
{
    const QPointer<SynchronisedDriveTool> self(this);
    const auto listWhenZero = [&](const QString &name) {
        if (getRegisterValue(name) == 0)
            zeros << name;
        return !self.isNull();
    };
    for (const char *setting : {"AMAX", "DMAX"}) {
        if (!listWhenZero(prefix + QLatin1String(setting)))
            return false;
    }
    for (const char *stage : {"1", "2"}) {
        const int velocity = getRegisterValue(prefix + QLatin1Char('V') + QLatin1String(stage));
        if (!self)
            return false;
        if (velocity > 0 && !listWhenZero(prefix + QLatin1Char('A') + QLatin1String(stage)))
            return false;
    }
    return true;
}
