#include "ModuleRequests.h"
#include "ToolConstants.h"
#include "ui_SynchronisedDriveTool.h"

namespace {

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

/// Lists the settings of one axis that are zero: AMAX and DMAX, and the accelerations of the two
/// stages where the stage is in use. The stages' decelerations do not count.
template <typename Read>
void listZeroRampSettings(const QString &prefix, QStringList &zeros, const Read &read)
{
    const auto listWhenZero = [&](const QString &name) {
        if (read(name) == 0)
            zeros << name;
    };
    for (const char *setting : {"AMAX", "DMAX"})
        listWhenZero(prefix + QLatin1String(setting));
    for (const char *stage : {"1", "2"}) {
        if (read(prefix + QLatin1Char('V') + QLatin1String(stage)) > 0)
            listWhenZero(prefix + QLatin1Char('A') + QLatin1String(stage));
    }
}

} // namespace

/// Marks the button that leads to the ramp settings when one that a move needs is zero. What is
/// written while they are being read makes them be read again, not this begin again from within.
void SynchronisedDriveTool::setRampLink()
{
    if (++begun.rampChecks > 1)
        return;
    ModuleRequests requests(this, motorByte());
    const auto read = [&requests](const QString &name) { return requests.read(name); };
    QStringList m0Zeros;
    QStringList m1Zeros;
    unsigned int asked = 0;
    for (int reads = 0; reads < mostRampReads && begun.rampChecks != asked; ++reads) {
        asked = begun.rampChecks;
        m0Zeros.clear();
        m1Zeros.clear();
        if (requests.read(&Tool::m0VmaxRegister) == 0)
            m0Zeros << QStringLiteral("M0_VMAX");
        if (requests.read(&Tool::m1VmaxRegister) == 0)
            m1Zeros << QStringLiteral("M1_VMAX");
        listZeroRampSettings(QStringLiteral("M0_"), m0Zeros, read);
        listZeroRampSettings(QStringLiteral("M1_"), m1Zeros, read);
        if (requests.isToolGone())
            return;
    }
    begun.rampChecks = 0;
    markRampLink(m0Zeros, m1Zeros);
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
