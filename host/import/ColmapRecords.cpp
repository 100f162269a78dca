#include "ColmapRecords.h"

#include "Host/KORV_Exception.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

/// Of cameras, too.
constexpr std::size_t MAX_IMAGES = 10'000'000;
constexpr std::size_t MAX_POINTS = 10'000'000;
constexpr std::size_t MAX_NAME_BYTES = 4096;
constexpr std::uint64_t MAX_RASTER = 65'536;
constexpr double MAX_NUMBER = 1e9;

using Camera = ColmapModel::Camera;
using Image = ColmapModel::Image;
using Point = ColmapModel::Point;

int checkedExtent(ColmapSource const& source, std::uint64_t pixels, char const* what)
{
    if (pixels < 1 || pixels > MAX_RASTER)
    {
        source.fail(
            QStringLiteral("a %1 of %2 pixels; it is 1 to %3").arg(QLatin1String(what)).arg(pixels).arg(MAX_RASTER));
    }
    return static_cast<int>(pixels);
}

void normalise(ColmapSource const& source, std::array<double, 4>& q)
{
    double const length = std::hypot(std::hypot(q[0], q[1]), std::hypot(q[2], q[3]));
    if (length < 1 / MAX_NUMBER)
    {
        source.fail(QStringLiteral("the quaternion is 0, which is no rotation"));
    }
    std::for_each(q.begin(), q.end(), [length](double& part) { part /= length; });
}

QString checkedName(ColmapSource const& source, Token token)
{
    QString const name = textOf(token);
    if (name.isEmpty())
    {
        source.fail(QStringLiteral("the image has no name"));
    }
    if (token.size() > MAX_NAME_BYTES)
    {
        source.fail(QStringLiteral("the image's name is longer than %1 bytes").arg(MAX_NAME_BYTES));
    }
    bool const hasControls =
        std::any_of(token.begin(), token.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; });
    if (hasControls || name.toUtf8() != QByteArray::fromRawData(token.data(), static_cast<int>(token.size())))
    {
        source.fail(QStringLiteral("the name %1 has control characters or isn't UTF-8").arg(quoted(token)));
    }
    return name;
}

/// Takes the run of digits that a text starts with.
Token takeDigits(Token& text)
{
    std::size_t const count =
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin());
    Token const digits = text.substr(0, count);
    text.remove_prefix(count);
    return digits;
}

/// Compares numbers of any length; negative when the first is less.
int compareDigits(Token a, Token b)
{
    a.remove_prefix(std::min(a.find_first_not_of('0'), a.size()));
    b.remove_prefix(std::min(b.find_first_not_of('0'), b.size()));
    return a.size() != b.size() ? (a.size() < b.size() ? -1 : 1) : a.compare(b);
}

/// Runs of digits as numbers, all else as bytes; names that are equal so far by bytes.
/// Negative when the first comes before the second.
int compareNames(Token left, Token right)
{
    Token a = left;
    Token b = right;
    while (!a.empty() && !b.empty())
    {
        int order = 0;
        if (isDigit(a.front()) && isDigit(b.front()))
        {
            order = compareDigits(takeDigits(a), takeDigits(b));
        }
        else
        {
            order = a.substr(0, 1).compare(b.substr(0, 1));
            a.remove_prefix(1);
            b.remove_prefix(1);
        }
        if (order != 0)
        {
            return order;
        }
    }
    return a.empty() && b.empty() ? left.compare(right) : (a.empty() ? -1 : 1);
}

/// A name as UTF-8, and how long its folder is.
struct SortedName
{
    SortedName(QString const& name, std::size_t place)
        : bytes(name.toUtf8()), folderLength(static_cast<std::size_t>(bytes.lastIndexOf('/') + 1)), index(place)
    {
    }

    Token folder() const
    {
        return Token(bytes.constData(), folderLength);
    }

    Token file() const
    {
        return Token(bytes.constData() + folderLength, static_cast<std::size_t>(bytes.size()) - folderLength);
    }

    bool operator<(SortedName const& other) const
    {
        int const order = compareNames(folder(), other.folder());
        return order != 0 ? order < 0 : compareNames(file(), other.file()) < 0;
    }

    QByteArray bytes;
    std::size_t folderLength;

    /// In the order of the file.
    std::size_t index;
};

}

double ColmapSource::checked(double number, char const* what) const
{
    if (!(std::fabs(number) <= MAX_NUMBER))
    {
        fail(QStringLiteral("%1 as %2 is beyond what a project takes (%3)")
                 .arg(number)
                 .arg(QLatin1String(what))
                 .arg(MAX_NUMBER));
    }
    return number;
}

ColmapRecords::ColmapRecords(QString const& folder, ColmapForm form)
{
    m_model.folder = folder;
    m_model.form = form;
}

QString ColmapRecords::pathOf(ColmapModel::File file) const
{
    QString const name = m_model.fileName(file);
    return m_model.folder.isEmpty() ? name : m_model.folder + QLatin1Char('/') + name;
}

void ColmapRecords::addCamera(ColmapSource const& source, Camera camera, ColmapCameraForm const& form,
                              std::array<std::uint64_t, 2> const& extent, std::vector<double> const& parameters)
{
    camera.place = source.place();
    camera.width = checkedExtent(source, extent[0], "width");
    camera.height = checkedExtent(source, extent[1], "height");
    for (std::size_t i = 0; i < form.places.size(); ++i)
    {
        double const parameter = source.checked(parameters[i], "a camera parameter");
        if (form.places[i])
        {
            form.places[i](camera, parameter);
        }
        else if (parameter != 0)
        {
            source.fail(QStringLiteral("k%1 of %2 isn't 0, which a project's lens can't follow; calibrate as OPENCV or "
                                       "undistort the images")
                            .arg(i - 5)
                            .arg(QLatin1String(form.name)));
        }
    }
    if (!m_cameraPlaces.emplace(camera.id, m_model.cameras.size()).second)
    {
        source.fail(QStringLiteral("camera %1 stands twice").arg(camera.id));
    }
    if (m_model.cameras.size() == MAX_IMAGES)
    {
        source.fail(QStringLiteral("more than %1 cameras").arg(MAX_IMAGES));
    }
    m_model.cameras.push_back(camera);
}

void ColmapRecords::addImage(ColmapSource const& source, Image image, std::uint64_t cameraId, Token name)
{
    image.place = source.place();
    normalise(source, image.rotation);
    auto const camera = m_cameraPlaces.find(cameraId);
    if (camera == m_cameraPlaces.end())
    {
        source.fail(QStringLiteral("there is no camera %1 in %2")
                        .arg(cameraId)
                        .arg(m_model.fileName(ColmapModel::CamerasFile)));
    }
    image.camera = camera->second;
    image.name = checkedName(source, name);
    if (!m_imageIds.insert(image.id).second)
    {
        source.fail(QStringLiteral("image %1 stands twice").arg(image.id));
    }
    if (m_model.images.size() == MAX_IMAGES)
    {
        source.fail(QStringLiteral("more than %1 images").arg(MAX_IMAGES));
    }
    m_model.images.push_back(std::move(image));
}

void ColmapRecords::addObservations(std::int64_t count)
{
    m_model.observations += count;
}

void ColmapRecords::addPoint(ColmapSource const& source, Point const& point)
{
    if (m_model.points.size() == MAX_POINTS)
    {
        source.fail(QStringLiteral("more than %1 points").arg(MAX_POINTS));
    }
    m_model.points.push_back(point);
    m_model.points.back().place = source.place();
}

ColmapModel ColmapRecords::take()
{
    if (m_model.images.empty())
    {
        throw KORV_BadFile(__FILE__, __LINE__,
                           pathOf(ColmapModel::ImagesFile) + QStringLiteral(": no image, so there is no frame"),
                           QString());
    }
    sortImages();
    sortPoints();
    return std::move(m_model);
}

void ColmapRecords::sortImages()
{
    std::vector<SortedName> names;
    names.reserve(m_model.images.size());
    for (Image const& image : m_model.images)
    {
        names.emplace_back(image.name, names.size());
    }
    std::stable_sort(names.begin(), names.end());
    std::vector<Image> sorted;
    sorted.reserve(names.size());
    for (SortedName const& name : names)
    {
        Image& image = m_model.images[name.index];
        if (!sorted.empty() && sorted.back().name == image.name)
        {
            m_model.fail(ColmapModel::ImagesFile, image.place,
                         QStringLiteral("the image %1 stands twice, as image %2 too")
                             .arg(quoted(Token(name.bytes.constData())), QString::number(sorted.back().id)));
        }
        sorted.push_back(std::move(image));
    }
    m_model.images = std::move(sorted);
}

void ColmapRecords::sortPoints()
{
    std::vector<Point>& points = m_model.points;
    std::stable_sort(points.begin(), points.end(), [](Point const& a, Point const& b) { return a.id < b.id; });
    auto const same =
        std::adjacent_find(points.begin(), points.end(), [](Point const& a, Point const& b) { return a.id == b.id; });
    if (same != points.end())
    {
        m_model.fail(ColmapModel::PointsFile, (same + 1)->place, QStringLiteral("point %1 stands twice").arg(same->id));
    }
}

}
