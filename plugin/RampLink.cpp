#include "SynchronisedDriveTool.h"

#include "ToolConstants.h"
#include "ui_SynchronisedDriveTool.h"

#include "XmlValueRegister.h"

namespace {

const auto m0Prefix = QStringLiteral("M0_");
const auto m1Prefix = QStringLiteral("M1_");

/// Enough for settings that change while they are read; a host may report writes without end.
constexpr int mostRampReads = 3;

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

/// Marks the button that leads to the ramp settings when one that a move needs is zero. What is
/// written while they are being read makes them be read again, not this begin again from within.
void SynchronisedDriveTool::setRampLink()
{
    const bool isUnderWay = ui->btnShowPosition->property(drive::property::RampCheck).isValid();
    ui->btnShowPosition->setProperty(drive::property::RampCheck, true);
    if (isUnderWay)
        return;
    QStringList m0Zeros;
    QStringList m1Zeros;
    for (int reads = 0; reads < mostRampReads &&
                        ui->btnShowPosition->property(drive::property::RampCheck).toBool();
         ++reads) {
        ui->btnShowPosition->setProperty(drive::property::RampCheck, false);
        if (!listZeroSettings(m0Zeros, m1Zeros))
            return;
    }
    ui->btnShowPosition->setProperty(drive::property::RampCheck, QVariant());
    markRampLink(m0Zeros, m1Zeros);
}

/// False when the tool is gone.
bool SynchronisedDriveTool::listZeroSettings(QStringList &m0Zeros, QStringList &m1Zeros)
{
    m0Zeros.clear();
    m1Zeros.clear();
    return listZeroVelocity(m0VmaxRegister, QStringLiteral("M0_VMAX"), m0Zeros) &&
           listZeroVelocity(m1VmaxRegister, QStringLiteral("M1_VMAX"), m1Zeros) &&
           listZeroRampSettings(m0Prefix, m0Zeros) && listZeroRampSettings(m1Prefix, m1Zeros);
}

void SynchronisedDriveTool::markRampLink(const QStringList &m0Zeros, const QStringList &m1Zeros)
{
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

/// Lists the settings of one axis that are zero: AMAX and DMAX, and the accelerations of the two
/// stages where the stage is in use. The stages' decelerations do not count. False when the tool is
/// gone.
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
