// From the poses and points of a COLMAP model to a solve.

#include "ColmapParts.h"
#include "Host/KORV_Exception.h"
#include "model/Median.h"
#include "mtx/SFMEulerAngles.h"
#include "text/NumberText.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

using Image = ColmapModel::Image;
using Point = ColmapModel::Point;
using Position = std::array<double, 3>;

/// From the model's space to the scene's: s A (p - o).
struct Space
{
    Sabrel::Vector3 toScene(Sabrel::Vector3 const& p) const
    {
        return {scale * (p.x - origin[0]), scale * (origin[1] - p.y), scale * (origin[2] - p.z)};
    }

    Position origin{};
    double scale = 1.0;
};

/// Turned about x by half a turn, on both sides: A R^T A of the quaternion of R.
Mtx_Vector4 cameraTurn(Image const& image)
{
    auto const [w, x, y, z] = image.rotation;
    return {-x, y, z, w};
}

/// C = -R^T t, in the model's axes.
Sabrel::Vector3 cameraPosition(Image const& image)
{
    // A C = -(A R^T A) A t.
    auto const [tx, ty, tz] = image.translation;
    Sabrel::Vector3 const turned = SFMEulerAngles::quat_to_matrix(cameraTurn(image)) * Sabrel::Vector3{-tx, ty, tz};
    return {turned.x, -turned.y, -turned.z};
}

double distance(Position const& a, Position const& b)
{
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

/// The median of each coordinate.
template <typename List, typename PositionOf>
Position medianPosition(List const& list, PositionOf const& positionOf)
{
    Position middle{};
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        std::vector<double> numbers;
        numbers.reserve(list.size());
        for (auto const& element : list)
        {
            numbers.push_back(positionOf(element)[axis]);
        }
        middle[axis] = median(numbers);
    }
    return middle;
}

/// A number that people can type: a multiple of the power of ten at or below `size`.
double roundedTo(double number, double size)
{
    double const exponent = std::floor(std::log10(size));
    double const unit = std::pow(10.0, std::fabs(exponent));
    return exponent >= 0 ? std::round(number / unit) * unit : std::round(number * unit) / unit;
}

/// The origin that the model needs, when six digits of its positions can be seen in the picture.
std::optional<Position> originNearPoints(ColmapModel const& model, QStringList& warnings)
{
    if (model.points.empty())
    {
        return std::nullopt;
    }
    auto const positionOf = [](Point const& point) { return point.position; };
    Position const middle = medianPosition(model.points, positionOf);
    Position const camera = medianPosition(model.images,
                                           [](Image const& image)
                                           {
                                               Sabrel::Vector3 const p = cameraPosition(image);
                                               return Position{p.x, p.y, p.z};
                                           });
    std::vector<double> depths;
    depths.reserve(model.points.size());
    for (Point const& point : model.points)
    {
        depths.push_back(distance(point.position, camera));
    }
    double const depth = median(depths);
    double focal = 0;
    for (ColmapModel::Camera const& c : model.cameras)
    {
        focal = std::max({focal, c.focalX, c.focalY});
    }
    // Half a unit of the sixth digit is up to 5e-6 of a number. Nearer by, another origin would
    // win little, as cameras and points lie apart as far.
    constexpr double FAR_OFF = 10;
    double const offset = distance(middle, {});
    double const pixels = focal * 5e-6 * offset / depth;
    if (!(offset > FAR_OFF * depth && depth > 0 && pixels > COLMAP_VISIBLE_PIXELS))
    {
        return std::nullopt;
    }
    Position const origin{roundedTo(middle[0], depth), roundedTo(middle[1], depth), roundedTo(middle[2], depth)};
    warnings +=
        QStringLiteral("the model lies so far from its origin that six digits of a position are up to %1 pixels "
                       "in the picture; the scene's origin is at %2, %3, %4 of the model (--origin sets it, "
                       "--origin 0,0,0 keeps the model's)")
            .arg(Text::fixedText(pixels, 2))
            .arg(origin[0], 0, 'g', 15)
            .arg(origin[1], 0, 'g', 15)
            .arg(origin[2], 0, 'g', 15);
    return origin;
}

PoseModel cameraPath(std::vector<ColmapShot> const& shots, Space const& space)
{
    PoseModel pose;
    pose.positions.reserve(3 * shots.size());
    pose.rotations.reserve(3 * shots.size());
    Mtx_Vector4 angles{};
    for (ColmapShot const& shot : shots)
    {
        angles =
            SFMEulerAngles::eul_continued(SFMEulerAngles::eul_from_quat(cameraTurn(*shot.image), 0, &angles), angles);
        Mtx_Vector4 const degrees = SFMEulerAngles::eul_to_degrees(angles);
        pose.rotations.insert(pose.rotations.end(), {degrees.x, degrees.y, degrees.z});
        Sabrel::Vector3 const position = space.toScene(cameraPosition(*shot.image));
        pose.positions.insert(pose.positions.end(), {position.x, position.y, position.z});
        if (shots.size() > 1)
        {
            pose.frames.push_back(shot.frame);
        }
    }
    return pose;
}

std::optional<double> medianErrorOf(std::vector<Point> const& points)
{
    std::vector<double> errors;
    for (Point const& point : points)
    {
        if (point.error >= 0)
        {
            errors.push_back(point.error);
        }
    }
    return errors.empty() ? std::nullopt : std::make_optional(median(errors));
}

bool hasTracks(ColmapModel const& model)
{
    return std::any_of(model.points.begin(), model.points.end(), [](Point const& point) { return point.track > 0; });
}

bool isKept(Point const& point, ColmapImport const& import)
{
    bool const isNear = !import.mostError || (point.error >= 0 && point.error <= *import.mostError);
    return isNear && point.track >= import.leastTrack;
}

FeatureSetModel featuresOf(ColmapModel const& model, ColmapImport const& import, Space const& space,
                           std::optional<double> const& medianError)
{
    constexpr double FAR_ABOVE_THE_REST = 4;
    bool const tellsTracks = hasTracks(model);
    FeatureSetModel set;
    set.name = QStringLiteral("COLMAP");
    PointCloudModel& cloud = set.points;
    for (Point const& point : model.points)
    {
        if (!isKept(point, import))
        {
            continue;
        }
        bool const isFarOff = medianError && point.error > FAR_ABOVE_THE_REST * *medianError;
        if (isFarOff || (tellsTracks && point.track == 0))
        {
            cloud.inaccurate.push_back(cloud.names.size());
        }
        auto const [x, y, z] = point.position;
        Sabrel::Vector3 const p = space.toScene({x, y, z});
        cloud.positions.insert(cloud.positions.end(), {p.x, p.y, p.z});
        cloud.names += QStringLiteral("Point %1").arg(point.id);
    }
    return set;
}

void checkReach(ColmapModel const& model, std::vector<double> const& numbers)
{
    constexpr double MAX_NUMBER = 1e9;
    if (std::any_of(numbers.begin(), numbers.end(), [](double number) { return std::fabs(number) > MAX_NUMBER; }))
    {
        throw KORV_BadFile(__FILE__, __LINE__,
                           model.folder + QStringLiteral(": the scene would reach beyond %1 units, which is what a "
                                                         "project takes; check --origin and --scale")
                                              .arg(MAX_NUMBER),
                           QString());
    }
}

void checkTracks(ColmapModel const& model, ColmapImport const& import)
{
    if (import.leastTrack > 0 && !model.points.empty() && !hasTracks(model))
    {
        throw KORV_BadFile(
            __FILE__, __LINE__,
            model.folder + QLatin1Char('/') + model.fileName(ColmapModel::PointsFile) +
                QStringLiteral(": lists no tracks, so no point can be held to --min-track; leave it out"),
            QString());
    }
}

void noteWhatIsLeftOut(ColmapModel const& model, std::size_t kept, ColmapProject& result)
{
    if (model.observations > 0)
    {
        result.leftOut += QStringLiteral("%1 2D points and their tracks").arg(model.observations);
    }
    if (!model.points.empty())
    {
        result.leftOut += QStringLiteral("colours of the points");
    }
    if (kept < model.points.size())
    {
        result.leftOut += QStringLiteral("%1 of %2 points, by --min-track and --max-error")
                              .arg(model.points.size() - kept)
                              .arg(model.points.size());
    }
    if (kept == 0 && !model.points.empty())
    {
        result.warnings += QStringLiteral("--min-track and --max-error leave no point of the model");
    }
}

}

void takeColmapScene(ColmapModel const& model, std::vector<ColmapShot> const& shots, ColmapImport const& import,
                     ColmapProject& result)
{
    checkTracks(model, import);
    std::optional<Position> const origin = import.origin ? import.origin : originNearPoints(model, result.warnings);
    result.origin = origin.value_or(Position{});
    Space const space{result.origin, import.scale};

    SolveModel solve;
    solve.camera.pose = cameraPath(shots, space);
    solve.camera.focalLength =
        overShots(model, shots, [](ColmapModel::Camera const& c) { return c.focalX / c.width * COLMAP_FILM_WIDTH; });
    checkReach(model, solve.camera.pose.positions);

    result.medianError = medianErrorOf(model.points);
    FeatureSetModel const set = featuresOf(model, import, space, result.medianError);
    checkReach(model, set.points.positions);
    noteWhatIsLeftOut(model, set.points.positions.size() / 3, result);
    if (!set.points.positions.empty())
    {
        solve.features.push_back(set);
    }
    result.project.solve = solve;
}

}
