#pragma once
// Alembic archives in memory: what all exporters of them share.

#include "Interchange/parts/AlembicNames.h"

#include <Alembic/AbcGeom/All.h>

#include <QByteArray>

#include <functional>
#include <vector>

namespace Korvane
{
class ExporterHelperBase;
}

namespace Export
{

/// When the samples of an archive are.
struct AlembicTime
{
    /// Of the first sample, in seconds.
    double start;
    double samplesPerSecond;
};

/// The times of a range of host frames from `firstFrame` on: shown number divided by the
/// frame rate, so that programs at the same rate show each sample at the number that the user
/// knows. Fields are half a frame apart.
/// @param helper gives project, frame step and the offset of shown numbers
AlembicTime alembicTime(Korvane::ExporterHelperBase const& helper, int firstFrame);

/// An archive that is being filled.
struct AlembicContents
{
    /// Objects go below it.
    Alembic::AbcGeom::OObject top;

    /// Index of the time sampling, to be handed to each object.
    std::uint32_t timeSampling;

    /// The box around all geometry, a sample for each frame.
    Alembic::AbcGeom::OBox3dProperty bounds;
    AlembicNames names;

    /// Adds the sample of a frame; an empty box is one of no size in the origin.
    void addBounds(Imath::Box3d const& box);
};

/// The vertices of faces, each face the other way round. The host's run counter-clockwise as
/// seen from the front; in an archive they run clockwise, as importers turn them round.
std::vector<int> clockwise(std::vector<int> const& faceCounts, std::vector<int> faceIndices);

/// Makes an archive. The file is complete once the last handle on one of its objects is gone,
/// so `fill` must not keep any.
///
/// @param leastSize what the samples take at least, in bytes
/// @throws KORV_ExternalException with the words of the library where it refuses something
/// @throws KORV_OperationFailed when there isn't room for the file, before anything is computed
///         where `leastSize` says so
QByteArray writeAlembic(AlembicTime const& time, qint64 leastSize, std::function<void(AlembicContents&)> const& fill);

}
