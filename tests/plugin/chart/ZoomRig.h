#pragma once

#include "ToolRig.h"

#include <QPushButton>
#include <QTest>

#include <cmath>

/// A tool on screen that records the history that it is given.
struct ZoomRig : ToolRig
{
    ZoomRig(int m0min, int m0max, int m1min, int m1max)
    {
        setLimits(m0min, m0max, m1min, m1max);
        show();
        updateTick();
    }

    QPushButton *in() const { return widget<QPushButton>("btnZoomIn"); }
    QPushButton *out() const { return widget<QPushButton>("btnZoomOut"); }

    void start()
    {
        call("on_pbStart_clicked");
        history.clear();
    }
    void sampled(int x, int y)
    {
        QVERIFY(sample(x, y));
        history << QPointF(x, y);
    }
    /// Drives along a path that crosses itself, stands on pixels and leaves the middle.
    void driveAround(double size)
    {
        start();
        for (int i = 1; i <= 300; ++i) {
            const double t = i / 300.0;
            sampled(static_cast<int>(size * std::sin(9 * t)),
                    static_cast<int>(size * std::cos(14 * t) * t) + i % 2);
        }
        QVERIFY(deliverTimer(50));
    }
    /// Draws an actual position without a history.
    void standAt(int x, int y)
    {
        link.position0 = x;
        link.position1 = y;
        tool()->showPlugin();
        updateTick();
        QCOMPARE(actual()->at(0), QPointF(x, y));
    }

    QVector<QPointF> history;
};
