// From the cameras of a COLMAP model to the pixels and the lens of a clip.

#include "ColmapParts.h"
#include "marlohost/ClipLens.h"
#include "text/NumberText.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

using Camera = ColmapModel::Camera;

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
    for (ColmapModel::Image const& image : model.images)
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
            model.fail(ColmapModel::CamerasFile, camera->place,
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
        double const millimetres = camera->focalX / camera->width * COLMAP_FILM_WIDTH;
        double const shape = camera->focalY / camera->focalX;
        bool const isFine = heights >= 1e-3 && heights <= 1000 && millimetres >= 0.1 && millimetres <= 10'000 &&
                            shape >= 0.1 && shape <= 10;
        if (!isFine)
        {
            model.fail(
                ColmapModel::CamerasFile, camera->place,
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

/// The middle one of the shapes that the images' cameras give to a pixel: width by height.
/// What a solver finds within 1 % of a square is a square.
double pixelAspectOf(ColmapModel const& model)
{
    constexpr double NEARLY_SQUARE = 0.01;
    std::vector<double> shapes;
    shapes.reserve(model.images.size());
    for (ColmapModel::Image const& image : model.images)
    {
        Camera const& camera = model.cameras[image.camera];
        shapes.push_back(camera.focalY / camera.focalX);
    }
    auto const middle = shapes.begin() + static_cast<std::ptrdiff_t>(shapes.size() / 2);
    std::nth_element(shapes.begin(), middle, shapes.end());
    return std::fabs(*middle - 1) <= NEARLY_SQUARE ? 1 : *middle;
}

void warnOfOtherShapes(std::vector<Camera const*> const& used, double pixelAspect, QStringList& warnings)
{
    double most = 0;
    for (Camera const* const camera : used)
    {
        most = std::max(most, std::fabs(camera->focalX * pixelAspect / camera->focalY - 1));
    }
    double const pixels = most * used.front()->height / 2;
    if (pixels > COLMAP_VISIBLE_PIXELS)
    {
        constexpr double PERCENT = 100;
        warnings += QStringLiteral("the focal lengths across and down don't fit the pixel aspect %1, by up to %2 % of "
                                   "one another; the camera of the scene is off by up to %3 pixels at the upper and "
                                   "lower edge (cameras with one focal length, such as RADIAL, have none of this)")
                        .arg(pixelAspect)
                        .arg(Text::fixedText(PERCENT * most, 2), Text::fixedText(pixels, 2));
    }
}

/// Lengths in heights of the picture, y up. With y turned over, p1 changes its sign: it
/// stands with the odd powers of y.
LensModel lensOf(ColmapModel const& model, std::vector<ColmapShot> const& shots, ClipModel const& clip)
{
    double const height = clip.height;
    auto const keyed = [&](auto const& value) { return overShots(model, shots, value); };
    LensModel lens;
    lens.focalLength = keyed([=](Camera const& c) { return c.focalY / height; });
    lens.squeeze = keyed(
        [&](Camera const& c)
        {
            double const shape = c.focalY / c.focalX;
            return shape == clip.pixelAspect ? 1 : clip.pixelAspect / shape;
        });
    lens.centreX =
        keyed([&](Camera const& c) { return (c.principalX - clip.width / 2.0) * clip.pixelAspect / height; });
    lens.centreY = keyed([=](Camera const& c) { return (height / 2 - c.principalY) / height; });
    for (std::size_t i = 0; i < lens.radial.size(); ++i)
    {
        lens.radial[i] = keyed([=](Camera const& c) { return c.radial[i]; });
    }
    lens.tangential[0] = keyed([](Camera const& c) { return 0 - c.tangential[0]; });
    lens.tangential[1] = keyed([](Camera const& c) { return c.tangential[1]; });
    return lens;
}

/// Whether a lens like this is worth writing down.
bool saysSomething(LensModel const& lens)
{
    auto const isNothing = [](KeyedNumber const& number)
    { return all(number, [](double value) { return value == 0; }); };
    return !(std::all_of(lens.radial.begin(), lens.radial.end(), isNothing) &&
             std::all_of(lens.tangential.begin(), lens.tangential.end(), isNothing) && isNothing(lens.centreX) &&
             isNothing(lens.centreY) && all(lens.squeeze, [](double value) { return value == 1; }));
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

void setLens(LensModel const& lens, QString const& camerasFile, ClipModel& clip, ColmapProject& result)
{
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
                                                   "coefficients in ") +
                                        camerasFile
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
    if (std::hypot(result.principalRight, result.principalDown) > COLMAP_VISIBLE_PIXELS)
    {
        result.warnings +=
            QStringLiteral("the principal point lies off the middle of the picture, by %1 pixels to the right and %2 "
                           "down; the camera of the scene looks through the middle, so move its picture by as much")
                .arg(Text::fixedText(result.principalRight, 2), Text::fixedText(result.principalDown, 2));
    }
}

}

void takeColmapCameras(ColmapModel const& model, std::vector<ColmapShot> const& shots, ClipModel& clip,
                       ColmapProject& result)
{
    std::vector<Camera const*> const used = usedCameras(model);
    checkCameras(model, used);
    clip.width = used.front()->width;
    clip.height = used.front()->height;
    clip.pixelAspect = pixelAspectOf(model);
    setLens(lensOf(model, shots, clip), model.fileName(ColmapModel::CamerasFile), clip, result);
    warnOfOtherShapes(used, clip.pixelAspect, result.warnings);
    notePrincipalPoint(used, result);
    if (std::size_t const unused = model.cameras.size() - used.size(); unused > 0)
    {
        result.leftOut += unused == 1 ? QStringLiteral("a camera without images")
                                      : QStringLiteral("%1 cameras without images").arg(unused);
    }
}

}
