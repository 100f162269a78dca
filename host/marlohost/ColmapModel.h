#pragma once
// Camera solves of COLMAP, in text and in binary form, and the project that such a solve
// makes.

#include "Host/HostApi.h"
#include "marlohost/ProjectModel.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace MarloHost
{

/// The files of a model: cameras.txt, images.txt and points3D.txt, or the same ending in .bin.
enum class ColmapForm
{
    Text,
    Binary
};

/// A sparse model as its three files list it, in their own axes: a camera looks along
/// +z with y down, pixels are measured from the upper left corner of the upper left
/// pixel, y down.
///
/// The `place` of a record in its file is its line, from 1; in binary form the byte, from 0,
/// that it starts at.
struct ColmapModel
{
    enum File
    {
        CamerasFile,
        ImagesFile,
        PointsFile
    };

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
        qint64 place = 0;
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
        qint64 place = 0;
    };

    struct Point
    {
        std::uint64_t id = 0;
        std::array<double, 3> position{};

        /// Mean distance in pixels of where it is seen from where it should be; negative
        /// when unknown.
        double error = -1;

        /// In how many images it is seen.
        std::int64_t track = 0;
        qint64 place = 0;
    };

    /// Folder of the three files, for error texts.
    QString folder;
    ColmapForm form = ColmapForm::Text;

    /// In the order of the file.
    std::vector<Camera> cameras;

    /// At least one, by name, folder by folder: runs of digits count as numbers, so that
    /// image 10 comes after image 2.
    std::vector<Image> images;

    /// Ascending by id.
    std::vector<Point> points;

    /// How many image positions of points the model lists; they aren't kept.
    std::int64_t observations = 0;

    /// The name of one of the files in the model's form.
    QString fileName(File file) const;

    /// Refuses a record of one of the files.
    /// @throws KORV_BadFile "FOLDER/FILE: line N: CAUSE", in binary form "byte N"
    [[noreturn]] void fail(File file, qint64 place, QString const& cause) const;
};

/// The three files of a model.
struct ColmapFiles
{
    QByteArray cameras;
    QByteArray images;
    QByteArray points;
    ColmapForm form = ColmapForm::Text;
};

/// Reads a model.
///
/// In texts, empty lines and lines that start with "#" are skipped, but for the line behind
/// an image, which holds its 2D points and may be empty. Image names may have blanks in
/// them. What the project can't follow is an error: camera models other than
/// SIMPLE_PINHOLE, PINHOLE, SIMPLE_RADIAL, RADIAL, OPENCV and FULL_OPENCV without k4 to
/// k6, an id or name that stands twice, an image of an unknown camera, NaN.
///
/// @param folder stands in error texts
/// @throws KORV_BadFile with one line for the user: file, place, what is wrong
MARLO_HOST_API ColmapModel readColmapModel(ColmapFiles const& files, QString const& folder);

/// A folder with the files of a model.
struct ColmapFolder
{
    QString path;
    ColmapForm form = ColmapForm::Text;

    /// As far as can be told without reading it: a broken model may say anything.
    std::int64_t images = 0;
};

/// Finds the models of a folder: the folder itself, or else, for the root of a project, those
/// in "sparse", in the folders of that and in its own folders. Where a model is there in both
/// forms the text counts.
///
/// @return at least one, the one with the most images first
/// @throws KORV_BadFile when there is none
MARLO_HOST_API std::vector<ColmapFolder> findColmapModels(QString const& root);

/// Reads the files of a folder.
/// @throws KORV_BadFile also when a file can't be opened or is too large
MARLO_HOST_API ColmapModel readColmapFolder(ColmapFolder const& folder);

/// What a model doesn't say about itself.
struct ColmapImport
{
    QString clipName;

    /// Frames per second.
    double frameRate = 24.0;

    /// Point of the model, in its own axes, that becomes the origin of the scene. Unset keeps
    /// the model's, unless it is so far off that six digits of a position can be seen.
    std::optional<std::array<double, 3>> origin{};

    /// Scene units to a unit of the model, above 0.
    double scale = 1.0;

    /// Points that fewer images see are left out, and those with a larger error, in pixels, or
    /// with an unknown one.
    std::int64_t leastTrack = 0;
    std::optional<double> mostError{};
};

/// A project, and what it couldn't take over from a model.
struct ColmapProject
{
    /// What tells which frame an image is.
    enum Numbering
    {
        /// The number in its name.
        ByNumber,
        /// The same, in several runs of numbers that follow on one another.
        ByRuns,
        /// Its place among the names, as these have no such number.
        ByPlace
    };

    ProjectModel project;
    Numbering numbering = ByPlace;

    /// Whether the clip's footage is the images.
    bool isSequence = false;

    /// In the order of time.
    QString firstImage;
    QString lastImage;

    /// Shown numbers of the frames without an image, as ranges with both ends included.
    std::vector<std::pair<int, int>> missing;

    /// Point of the model that is the origin of the scene.
    std::array<double, 3> origin{};

    /// Of the principal point that is farthest off the middle of the picture: pixels to
    /// the right and down. The camera of a solve looks through the middle.
    double principalRight = 0;
    double principalDown = 0;

    /// Median of the known errors of the model's points, in pixels.
    std::optional<double> medianError;

    /// What differs from the model, one line each.
    QStringList warnings;

    /// What the project doesn't hold, for a list.
    QStringList leftOut;
};

/// The project of a model: one clip, its lens, and a solve with the points as one set of
/// features. Points whose error is more than four times the median are marked as
/// inaccurate, and so are those that no image sees where the model tells who sees what.
///
/// A frame is what the number in an image's name says: an image that the solve lost leaves a
/// frame to which its neighbours lead.
///
/// A pose x -> R x + t becomes a camera at s A (C - o) with C = -R^T t, turned by A R^T A, and
/// a point P comes to s A (P - o), o and s from `import`: A = diag(1, -1, -1) turns about x,
/// from y down and z forward to y up and z backward.
///
/// @throws KORV_BadFile when the images differ in size, or numbers are beyond what a
///         project takes
MARLO_HOST_API ColmapProject projectFromColmap(ColmapModel const& model, ColmapImport const& import);

}
