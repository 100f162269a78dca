// From a COLMAP model to a project.

#include "marlohost/ClipLens.h"
#include "marlohost/ColmapModel.h"
#include "model/Median.h"
#include "mtx/SFMEulerAngles.h"
#include "text/NumberText.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

using Camera = ColmapModel::Camera;
using Image = ColmapModel::Image;
using Point = ColmapModel::Point;

constexpr double FILM_WIDTH = FilmBackModel().width;

/// What is reported and what isn't: the bound that exports are held to.
constexpr double VISIBLE_PIXELS = 0.05;

/// A number of the camera for each image; keyed where it changes.
template <typename Value>
KeyedNumber overImages(ColmapModel const& model, Value const& value)
{
    auto const at = [&](std::size_t image) { return value(model.cameras[model.images[image].camera]); };
    std::size_t const count = model.images.size();
    KeyedNumber number;
    number.value = at(0);
    for (std::size_t i = 0; i < count; ++i)
    {
        // Inside of a run of equal numbers a key says nothing.
        double const here = at(i);
        if (i == 0 || i + 1 == count || here != at(i - 1) || here != at(i + 1))
        {
            number.frames.push_back(static_cast<int>(i));
            number.values.push_back(here);
        }
    }
    if (std::all_of(number.values.begin(), number.values.end(), [&](double v) { return v == number.value; }))
    {
        number.frames.clear();
        number.values.clear();
    }
    return number;
}

/// The first number and its keys satisfy `test`.
template <typename Test>
bool all(KeyedNumber const& number, Test const& test)
{
    return test(number.value) && std::all_of(number.values.begin(), number.values.end(), test);
}

/// The cameras that images were taken with.
std::vector<Camera const*> usedCameras(ColmapModel const& model)
{
    std::vector<bool> isUsed(model.cameras.size());
    for (Image const& image : model.images)
    {
        isUsed[image.camera] = true;
    }
    std::vector<Camera const*> used;
    for (std::size_t i = 0; i < isUsed.size(); ++i)
    {
        if (isUsed[i])
        {
            used.push_back(&model.cameras[i]);
        }
    }
    return used;
}

void checkCameras(ColmapModel const& model, std::vector<Camera const*> const& used)
{
    Camera const& first = *used.front();
    for (Camera const* const camera : used)
    {
        if (camera->width != first.width || camera->height != first.height)
        {
            model.fail("cameras.txt", camera->line,
                       QStringLiteral("camera %1 has pictures of %2x%3 pixels, camera %4 of %5x%6; a clip has one size")
                           .arg(camera->id)
                           .arg(camera->width)
                           .arg(camera->height)
                           .arg(first.id)
                           .arg(first.width)
                           .arg(first.height));
        }
        // The limits of a project file, for a lens in heights and a camera in millimetres;
        // beyond those of the shape somebody mistook the parameters.
        double const heights = camera->focalY / camera->height;
        double const millimetres = camera->focalX / camera->width * FILM_WIDTH;
        double const shape = camera->focalY / camera->focalX;
        bool const isFine = heights >= 1e-3 && heights <= 1000 && millimetres >= 0.1 && millimetres <= 10'000 &&
                            shape >= 0.1 && shape <= 10;
        if (!isFine)
        {
            model.fail(
                "cameras.txt", camera->line,
                QStringLiteral("camera %1 has focal lengths of %2 and %3 pixels, which no lens has on a picture of "
                               "%4x%5")
                    .arg(camera->id)
                    .arg(camera->focalX)
                    .arg(camera->focalY)
                    .arg(camera->width)
                    .arg(camera->height));
        }
    }
}

/// The numbers that stand in the names at the place where these differ, when they are
/// alike otherwise.
struct Numbering
{
    QString prefix;
    QString suffix;

    /// Digits of the first, and whether the others are filled up with zeros to as many.
    int width = 0;
    bool isEven = true;
    std::vector<int> numbers;

    bool isWithoutGaps() const
    {
        return static_cast<std::size_t>(numbers.back() - numbers.front()) + 1 == numbers.size();
    }
};

bool isDigit(QChar c)
{
    return c >= QLatin1Char('0') && c <= QLatin1Char('9');
}

int digitsAt(QString const& text, int from)
{
    int end = from;
    while (end < text.size() && isDigit(text[end]))
    {
        ++end;
    }
    return end - from;
}

std::optional<Numbering> numberingOf(std::vector<Image> const& images)
{
    constexpr int MOST_DIGITS = 7; // 9999999, below the frame numbers that a project takes
    QString const& first = images.front().name;
    QString const& last = images.back().name;
    int start =
        static_cast<int>(std::mismatch(first.begin(), first.end(), last.begin(), last.end()).first - first.begin());
    while (start > 0 && isDigit(first[start - 1]))
    {
        --start;
    }
    Numbering numbering;
    numbering.prefix = first.left(start);
    numbering.width = digitsAt(first, start);
    numbering.suffix = first.mid(start + numbering.width);
    if (images.size() < 2 || numbering.suffix.contains(QLatin1Char('/')))
    {
        return std::nullopt;
    }
    for (Image const& image : images)
    {
        int const width = digitsAt(image.name, start);
        if (width < 1 || width > MOST_DIGITS || !image.name.startsWith(numbering.prefix) ||
            image.name.midRef(start + width) != numbering.suffix)
        {
            return std::nullopt;
        }
        bool const isFilled = width > numbering.width && image.name[start] == QLatin1Char('0');
        numbering.isEven = numbering.isEven && width >= numbering.width && !isFilled;
        numbering.numbers.push_back(image.name.midRef(start, width).toInt());
    }
    return numbering;
}

/// @return whether the footage is the images
bool setFootage(ColmapModel const& model, ClipModel& clip, QStringList& warnings)
{
    std::optional<Numbering> const numbering = numberingOf(model.images);
    if (!numbering)
    {
        return false;
    }
    if (!numbering->isWithoutGaps() || !numbering->isEven)
    {
        warnings +=
            QStringLiteral("the numbers in the names of the images, %1 to %2, have gaps or are written unevenly; "
                           "frames count the images")
                .arg(numbering->numbers.front())
                .arg(numbering->numbers.back());
        return false;
    }
    int const slash = numbering->prefix.lastIndexOf(QLatin1Char('/'));
    clip.footage.kind = FootageModel::Sequence;
    clip.footage.directory = slash > 0 ? numbering->prefix.left(slash) : QStringLiteral(".");
    clip.footage.prefix = numbering->prefix.mid(slash + 1);
    clip.footage.suffix = numbering->suffix;
    clip.footage.indexWidth = numbering->width;
    clip.footage.firstIndex = numbering->numbers.front();
    clip.frameOffset = numbering->numbers.front();
    return true;
}

/// The middle one of the shapes that the images' cameras give to a pixel: width by height.
double pixelAspectOf(ColmapModel const& model)
{
    std::vector<double> shapes;
    shapes.reserve(model.images.size());
    for (Image const& image : model.images)
    {
        Camera const& camera = model.cameras[image.camera];
        shapes.push_back(camera.focalY / camera.focalX);
    }
    auto const middle = shapes.begin() + static_cast<std::ptrdiff_t>(shapes.size() / 2);
    std::nth_element(shapes.begin(), middle, shapes.end());
    return *middle;
}

void warnOfOtherShapes(std::vector<Camera const*> const& used, double pixelAspect, QStringList& warnings)
{
    double most = 0;
    for (Camera const* const camera : used)
    {
        double const height = camera->focalX * pixelAspect / camera->focalY;
        most = std::max(most, std::fabs(height - 1) * camera->height / 2);
    }
    if (most > VISIBLE_PIXELS)
    {
        warnings += QStringLiteral("the cameras disagree about the shape of a pixel; with the pixel aspect %1 the "
                                   "camera of the scene is off by up to %2 pixels at the upper and lower edge")
                        .arg(pixelAspect)
                        .arg(Text::fixedText(most, 2));
    }
}

/// Lengths in heights of the picture, y up. With y turned over, p1 changes its sign: it
/// stands with the odd powers of y.
LensModel lensOf(ColmapModel const& model, ClipModel const& clip)
{
    double const height = clip.height;
    LensModel lens;
    lens.focalLength = overImages(model, [=](Camera const& c) { return c.focalY / height; });
    lens.squeeze = overImages(model,
                              [&](Camera const& c)
                              {
                                  double const shape = c.focalY / c.focalX;
                                  return shape == clip.pixelAspect ? 1 : clip.pixelAspect / shape;
                              });
    lens.centreX = overImages(model, [&](Camera const& c)
                              { return (c.principalX - clip.width / 2.0) * clip.pixelAspect / height; });
    lens.centreY = overImages(model, [=](Camera const& c) { return (height / 2 - c.principalY) / height; });
    for (std::size_t i = 0; i < lens.radial.size(); ++i)
    {
        lens.radial[i] = overImages(model, [=](Camera const& c) { return c.radial[i]; });
    }
    lens.tangential[0] = overImages(model, [](Camera const& c) { return 0 - c.tangential[0]; });
    lens.tangential[1] = overImages(model, [](Camera const& c) { return c.tangential[1]; });
    return lens;
}

bool isZero(double value)
{
    return value == 0;
}

/// Whether a lens like this is worth writing down.
bool saysSomething(LensModel const& lens)
{
    auto const isNothing = [](KeyedNumber const& number) { return all(number, isZero); };
    return !(std::all_of(lens.radial.begin(), lens.radial.end(), isNothing) &&
             std::all_of(lens.tangential.begin(), lens.tangential.end(), isNothing) && isNothing(lens.centreX) &&
             isNothing(lens.centreY));
}

/// Whether the numbers are within the limits of a project file.
bool isWithinLimits(LensModel const& lens)
{
    auto const isFine = [](KeyedNumber const& number)
    { return all(number, [](double value) { return std::fabs(value) <= 1000; }); };
    return std::all_of(lens.radial.begin(), lens.radial.end(), isFine) &&
           std::all_of(lens.tangential.begin(), lens.tangential.end(), isFine) && isFine(lens.centreX) &&
           isFine(lens.centreY);
}

void setLens(ColmapModel const& model, ClipModel& clip, ColmapProject& result)
{
    LensModel const lens = lensOf(model, clip);
    if (!saysSomething(lens))
    {
        return;
    }
    clip.lens = lens;
    bool const isFine = isWithinLimits(lens);
    if (!isFine || firstFoldedFrame(clip))
    {
        clip.lens.reset();
        result.warnings += isFine ? QStringLiteral("the lens folds over inside the picture and is left out; check the "
                                                   "coefficients in cameras.txt")
                                  : QStringLiteral("the lens has coefficients beyond 1000 and is left out");
        result.leftOut += QStringLiteral("the lens");
    }
}

void notePrincipalPoint(std::vector<Camera const*> const& used, ColmapProject& result)
{
    for (Camera const* const camera : used)
    {
        double const right = camera->principalX - camera->width / 2.0;
        double const down = camera->principalY - camera->height / 2.0;
        if (std::hypot(right, down) > std::hypot(result.principalRight, result.principalDown))
        {
            result.principalRight = right;
            result.principalDown = down;
        }
    }
    if (std::hypot(result.principalRight, result.principalDown) > VISIBLE_PIXELS)
    {
        result.warnings +=
            QStringLiteral("the principal point lies off the middle of the picture, by %1 pixels to the right and %2 "
                           "down; the camera of the scene looks through the middle, so move its picture by as much")
                .arg(Text::fixedText(result.principalRight, 2), Text::fixedText(result.principalDown, 2));
    }
}

/// Turned about x by half a turn, on both sides: A R^T A of the quaternion of R.
Mtx_Vector4 cameraTurn(Image const& image)
{
    auto const [w, x, y, z] = image.rotation;
    return {-x, y, z, w};
}

PoseModel cameraPath(ColmapModel const& model)
{
    PoseModel pose;
    std::size_t const count = model.images.size();
    pose.positions.reserve(3 * count);
    pose.rotations.reserve(3 * count);
    Mtx_Vector4 angles{};
    for (Image const& image : model.images)
    {
        Mtx_Vector4 const turn = cameraTurn(image);
        angles = SFMEulerAngles::eul_continued(SFMEulerAngles::eul_from_quat(turn, 0, &angles), angles);
        Mtx_Vector4 const degrees = SFMEulerAngles::eul_to_degrees(angles);
        pose.rotations.insert(pose.rotations.end(), {degrees.x, degrees.y, degrees.z});

        // A C = -(A R^T A) A t.
        auto const [tx, ty, tz] = image.translation;
        Sabrel::Vector3 const position = SFMEulerAngles::quat_to_matrix(turn) * Sabrel::Vector3{-tx, ty, tz};
        pose.positions.insert(pose.positions.end(), {position.x, position.y, position.z});
        if (count > 1)
        {
            pose.frames.push_back(static_cast<int>(pose.frames.size()));
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
    if (errors.empty())
    {
        return std::nullopt;
    }
    return median(errors);
}

FeatureSetModel featuresOf(ColmapModel const& model, std::optional<double> const& medianError)
{
    constexpr double FAR_ABOVE_THE_REST = 4;
    FeatureSetModel set;
    set.name = QStringLiteral("COLMAP");
    PointCloudModel& cloud = set.points;
    cloud.positions.reserve(3 * model.points.size());
    cloud.names.reserve(static_cast<int>(model.points.size()));
    for (Point const& point : model.points)
    {
        if (medianError && point.error > FAR_ABOVE_THE_REST * *medianError)
        {
            cloud.inaccurate.push_back(cloud.names.size());
        }
        auto const [x, y, z] = point.position;
        cloud.positions.insert(cloud.positions.end(), {x, 0 - y, 0 - z});
        cloud.names += QStringLiteral("Point %1").arg(point.id);
    }
    return set;
}

SolveModel solveOf(ColmapModel const& model, std::optional<double> const& medianError)
{
    SolveModel solve;
    solve.camera.pose = cameraPath(model);
    solve.camera.focalLength = overImages(model, [](Camera const& c) { return c.focalX / c.width * FILM_WIDTH; });
    if (!model.points.empty())
    {
        solve.features.push_back(featuresOf(model, medianError));
    }
    return solve;
}

QStringList leftOutOf(ColmapModel const& model, std::size_t usedCameras)
{
    QStringList list;
    if (model.observations > 0)
    {
        list += QStringLiteral("%1 2D points and their tracks").arg(model.observations);
    }
    if (!model.points.empty())
    {
        list += QStringLiteral("colours of the points");
    }
    if (std::size_t const unused = model.cameras.size() - usedCameras; unused > 0)
    {
        list += unused == 1 ? QStringLiteral("a camera without images")
                            : QStringLiteral("%1 cameras without images").arg(unused);
    }
    return list;
}

}

ColmapProject projectFromColmap(ColmapModel const& model, ColmapImport const& import)
{
    std::vector<Camera const*> const used = usedCameras(model);
    checkCameras(model, used);

    ColmapProject result;
    result.leftOut = leftOutOf(model, used.size());
    result.medianError = medianErrorOf(model.points);

    ClipModel clip;
    clip.name = import.clipName;
    clip.width = used.front()->width;
    clip.height = used.front()->height;
    clip.pixelAspect = pixelAspectOf(model);
    clip.frameCount = static_cast<int>(model.images.size());
    result.isSequence = setFootage(model, clip, result.warnings);
    setLens(model, clip, result);
    warnOfOtherShapes(used, clip.pixelAspect, result.warnings);
    notePrincipalPoint(used, result);

    result.project.frameRate = import.frameRate;
    result.project.clips.push_back(clip);
    result.project.solve = solveOf(model, result.medianError);
    return result;
}

}
