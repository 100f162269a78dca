#pragma once
// The values of options below `import`. All errors are CLI::ValidationError.

#include "OptionTypes.h"

#include "Host/TrackingExporter.h"

#include <QSize>

#include <array>

/// A number between two bounds, both included.
/// @param expected words for what it should be, behind "isn't"
double numberFrom(std::string const& option, QString const& text, double least, double most,
                  std::string const& expected);

/// Frames per second: a number or a fraction.
double frameRate(QString const& text);

/// Three numbers with commas between.
std::array<double, 3> scenePoint(QString const& text);

/// WIDTHxHEIGHT in pixels.
QSize rasterSize(QString const& text);

/// The corners ul, ur, lr and ll, each once, in any order.
std::array<Korvane::TrackingExporterTypes::SurfaceCorner, 4> cornerOrder(QString const& text);
