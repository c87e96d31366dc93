#pragma once

#include "prepare/chords.h"

#include <QMetaType>
#include <QString>

#include <functional>
#include <vector>

/// A true curve: its places for t from 0 to 1.
using Curve = std::function<prep::Planar(double)>;

Q_DECLARE_METATYPE(Curve)

/// The greatest distance of a point of the curve to the chords, over thousands of samples.
double deviation(const Curve& curve, const std::vector<prep::Planar>& chords);

/// The greatest distance of one of the places to the curve.
double distanceFrom(const Curve& curve, const std::vector<prep::Planar>& places);

/// The places in a line of outline(); a closed contour ends where it begins.
std::vector<prep::Planar> placesOf(const QString& outline);
