#include "ColmapCameras.h"

#include "TextLines.h"

#include <algorithm>

namespace MarloHost
{

namespace
{

using Camera = ColmapModel::Camera;

void setFocal(Camera& camera, double value)
{
    camera.focalX = value;
    camera.focalY = value;
}

template <double Camera::*Member>
void set(Camera& camera, double value)
{
    camera.*Member = value;
}

template <std::size_t Index>
void setRadial(Camera& camera, double value)
{
    camera.radial[Index] = value;
}

template <std::size_t Index>
void setTangential(Camera& camera, double value)
{
    camera.tangential[Index] = value;
}

// FULL_OPENCV ends with k4, k5 and k6 of a rational function, which Brown's model hasn't.
std::vector<ColmapCameraForm> const& followedForms()
{
    static constexpr auto fx = set<&Camera::focalX>;
    static constexpr auto fy = set<&Camera::focalY>;
    static constexpr auto cx = set<&Camera::principalX>;
    static constexpr auto cy = set<&Camera::principalY>;
    static constexpr auto k1 = setRadial<0>;
    static constexpr auto k2 = setRadial<1>;
    static constexpr auto k3 = setRadial<2>;
    static constexpr auto p1 = setTangential<0>;
    static constexpr auto p2 = setTangential<1>;
    static constexpr ColmapCameraForm::Place zero = nullptr;
    static std::vector<ColmapCameraForm> const forms{
        {"SIMPLE_PINHOLE", 0, {setFocal, cx, cy}},
        {"PINHOLE", 1, {fx, fy, cx, cy}},
        {"SIMPLE_RADIAL", 2, {setFocal, cx, cy, k1}},
        {"RADIAL", 3, {setFocal, cx, cy, k1, k2}},
        {"OPENCV", 4, {fx, fy, cx, cy, k1, k2, p1, p2}},
        {"FULL_OPENCV", 6, {fx, fy, cx, cy, k1, k2, p1, p2, k3, zero, zero, zero}}};
    return forms;
}

struct FisheyeForm
{
    char const* name;
    int number;
};

constexpr FisheyeForm FISHEYES[] = {{"OPENCV_FISHEYE", 5},        {"FOV", 7},
                                    {"SIMPLE_RADIAL_FISHEYE", 8}, {"RADIAL_FISHEYE", 9},
                                    {"THIN_PRISM_FISHEYE", 10},   {"RAD_TAN_THIN_PRISM_FISHEYE", 11}};

template <typename Forms, typename Test>
auto findIn(Forms const& forms, Test const& test) -> decltype(&*std::begin(forms))
{
    auto const found = std::find_if(std::begin(forms), std::end(forms), test);
    return found == std::end(forms) ? nullptr : &*found;
}

template <typename Forms>
auto findNamed(Forms const& forms, QByteArray const& name)
{
    return findIn(forms, [&](auto const& form) { return name == form.name; });
}

template <typename Forms>
auto findNumbered(Forms const& forms, int number)
{
    return findIn(forms, [=](auto const& form) { return number == form.number; });
}

QString refusal(FisheyeForm const* fisheye, QString const& name)
{
    if (fisheye)
    {
        return QStringLiteral("the camera model %1 is that of a fisheye, which a project's lens can't follow; let "
                              "\"colmap image_undistorter\" make images without distortion, and import the model in "
                              "the folder \"sparse\" that it writes beside them")
            .arg(QLatin1String(fisheye->name));
    }
    QStringList known;
    for (ColmapCameraForm const& form : followedForms())
    {
        known += QLatin1String(form.name);
    }
    return QStringLiteral("the camera model %1 isn't one that a project's lens follows: %2; use one of these, or "
                          "undistort the images")
        .arg(name, known.join(QStringLiteral(", ")));
}

}

ColmapCameraForm const* colmapCameraForm(QByteArray const& name)
{
    return findNamed(followedForms(), name);
}

ColmapCameraForm const* colmapCameraForm(int number)
{
    return findNumbered(followedForms(), number);
}

QString refusalOfCameraForm(QByteArray const& name)
{
    return refusal(findNamed(FISHEYES, name), quoted({name.constData(), static_cast<std::size_t>(name.size())}));
}

QString refusalOfCameraForm(int number)
{
    return refusal(findNumbered(FISHEYES, number), QString::number(number));
}

}
