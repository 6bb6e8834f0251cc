#pragma once

#include "ToolRig.h"

#include <QCommandLinkButton>

inline const auto descriptionText = QStringLiteral("At least one setting is zero!");
inline const auto redBorder = QStringLiteral("QCommandLinkButton{border: 2px solid red}");

inline QStringList words(const QString &text)
{
    return text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

/// The requests of one check in which all stages are in use.
inline QStringList readsOfAll(int motor = 0)
{
    QStringList reads;
    for (const QString &name :
         words(QStringLiteral("M0_VMAX M1_VMAX M0_AMAX M0_DMAX M0_V1 M0_A1 M0_V2 M0_A2 "
                              "M1_AMAX M1_DMAX M1_V1 M1_A1 M1_V2 M1_A2")))
        reads << QStringLiteral("read %1 m%2").arg(name).arg(motor);
    return reads;
}

inline QString toolTipFor(const QStringList &m0, const QStringList &m1)
{
    QString text = QStringLiteral("Zero settings:");
    for (const QStringList &zeros : {m0, m1}) {
        if (!zeros.isEmpty())
            text += QStringLiteral("\n\n") + zeros.join(QLatin1Char('\n'));
    }
    return text;
}

/// The tool with its link button, on a chip whose settings are all 1000.
struct RampRig : ToolRig
{
    explicit RampRig(unsigned char motor = 0, const RigGaps &gaps = {})
        : ToolRig(motor, gaps)
        , button(widget<QCommandLinkButton>("btnShowPosition"))
    {
    }

    /// Lets the tool check, as when the host shows it; returns the reads of the check.
    QStringList check()
    {
        link.takeCalls();
        tool()->showPlugin();
        return takeCalls().filter(QStringLiteral("read"));
    }

    void tellWritten(unsigned int address, unsigned char motor = 0)
    {
        emit module()->registerOutputBufferHasWritten(static_cast<unsigned short>(address), 5, 6,
                                                      motor);
    }

    bool isUnmarked() const
    {
        return button->toolTip().isEmpty() && button->description().isEmpty() &&
               button->styleSheet().isEmpty();
    }

    bool isMarked(const QStringList &m0, const QStringList &m1) const
    {
        return button->toolTip() == toolTipFor(m0, m1) &&
               button->description() == descriptionText && button->styleSheet() == redBorder;
    }

    QCommandLinkButton *button;
};
