#pragma once
// Camera solves in COLMAP's text form, and the project that such a solve makes.

#include "Host/HostApi.h"
#include "marlohost/ProjectModel.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace MarloHost
{

/// A sparse model as its three texts list it, in their own axes: a camera looks along
/// +z with y down, pixels are measured from the upper left corner of the upper left
/// pixel, y down.
struct ColmapModel
{
    struct Camera
    {
        std::uint64_t id = 0;
        int width = 0;
        int height = 0;

        /// Pixels.
        double focalX = 0;
        double focalY = 0;
        double principalX = 0;
        double principalY = 0;

        /// k1, k2, k3 and p1, p2 of Brown's model; 0 where the camera's model lacks them.
        std::array<double, 3> radial{};
        std::array<double, 2> tangential{};

        /// Place in cameras.txt, from 1.
        int line = 0;
    };

    struct Image
    {
        std::uint64_t id = 0;
        QString name;

        /// From the world to the camera: a quaternion (w, x, y, z) of length 1, then a
        /// translation.
        std::array<double, 4> rotation{};
        std::array<double, 3> translation{};

        /// Index into `cameras`.
        std::size_t camera = 0;

        /// Place in images.txt, from 1.
        int line = 0;
    };

    struct Point
    {
        std::uint64_t id = 0;
        std::array<double, 3> position{};

        /// Mean distance in pixels of where it is seen from where it should be; negative
        /// when unknown.
        double error = -1;

        /// Place in points3D.txt, from 1.
        int line = 0;
    };

    /// Folder of the three files, for error texts.
    QString folder;

    /// In the order of the file.
    std::vector<Camera> cameras;

    /// At least one, by name: runs of digits count as numbers, so that image 10 comes
    /// after image 2.
    std::vector<Image> images;

    /// Ascending by id.
    std::vector<Point> points;

    /// How many image positions of points the model lists; they aren't kept.
    std::int64_t observations = 0;

    /// Refuses what stands in a line of one of the files.
    /// @throws KORV_BadFile "FOLDER/FILE: line N: CAUSE"
    [[noreturn]] void fail(char const* file, int line, QString const& cause) const;
};

/// The three texts of a model.
struct ColmapTexts
{
    QByteArray cameras;
    QByteArray images;
    QByteArray points;
};

/// Reads a model.
///
/// Empty lines and lines that start with "#" are skipped, but for the line behind an
/// image, which holds its 2D points and may be empty. Image names may have blanks in
/// them. What the project can't follow is an error: camera models other than
/// SIMPLE_PINHOLE, PINHOLE, SIMPLE_RADIAL, RADIAL, OPENCV and FULL_OPENCV without k4 to
/// k6, an id or name that stands twice, an image of an unknown camera, NaN.
///
/// @param folder stands in error texts
/// @throws KORV_BadFile with one line for the user: file, line number, what is wrong
MARLO_HOST_API ColmapModel readColmapModel(ColmapTexts const& texts, QString const& folder);

/// Reads cameras.txt, images.txt and points3D.txt of a folder.
/// @throws KORV_BadFile also when a file can't be opened or is too large
MARLO_HOST_API ColmapModel readColmapFolder(QString const& folder);

/// What a model doesn't say about itself.
struct ColmapImport
{
    QString clipName;

    /// Frames per second.
    double frameRate = 24.0;
};

/// A project, and what it couldn't take over from a model.
struct ColmapProject
{
    ProjectModel project;

    /// Whether the clip's footage is the images: their names are numbered without gaps.
    bool isSequence = false;

    /// Of the principal point that is farthest off the middle of the picture: pixels to
    /// the right and down. The camera of a solve looks through the middle.
    double principalRight = 0;
    double principalDown = 0;

    /// Median of the known errors of the points, in pixels.
    std::optional<double> medianError;

    /// What differs from the model, one line each.
    QStringList warnings;

    /// What the project doesn't hold, for a list.
    QStringList leftOut;
};

/// The project of a model: one clip with a frame per image, its lens, and a solve with
/// the points as one set of features. Points whose error is more than four times the
/// median are marked as inaccurate.
///
/// A pose x -> R x + t becomes a camera at A C with C = -R^T t, turned by A R^T A, and a
/// point P comes to A P: A = diag(1, -1, -1) turns about x, from y down and z forward
/// to y up and z backward.
///
/// @throws KORV_BadFile when the images differ in size, or numbers are beyond what a
///         project takes
MARLO_HOST_API ColmapProject projectFromColmap(ColmapModel const& model, ColmapImport const& import);

}
