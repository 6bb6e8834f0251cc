#pragma once

#include <QPolygonF>
#include <QStringList>

#include <array>

/// The ramp registers of an axis, in the order in which they are listed.
enum RampSetting { VMax, AMax, DMax, V1, A1, D1, V2, A2, D2, rampSettingCount };

/// Velocities in units/s, accelerations and decelerations in units/s².
using RampSettings = std::array<int, rampSettingCount>;

/// The register's name behind the prefix of its axis, for example "VMAX".
QString rampSettingName(int setting);

/// The names of the settings that a move needs and that are not above 0. A stage whose velocity is
/// not above 0 is left out of the ramp and needs nothing.
QStringList missingSettings(const RampSettings &settings);

/// The velocity over time of a move from standstill to standstill, as the corners of a line: x in
/// seconds from 0 on, y in units/s, negative for a negative `distance`. A1 and D1 hold below V1, A2
/// and D2 from there to V2, AMAX and DMAX above; the move cruises at VMAX when there is room. Empty
/// for a distance of 0 and while settings are missing.
QPolygonF velocityProfile(const RampSettings &settings, double distance);
