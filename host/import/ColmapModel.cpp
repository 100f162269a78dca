// Reading COLMAP's text form. cameras.txt has a line for each camera, with parameters
// as its model asks:
//
//   # CAMERA_ID, MODEL, WIDTH, HEIGHT, PARAMS[]
//   1 SIMPLE_RADIAL 2832 2128 2971.71 1416 1064 -0.164224
//
// images.txt two for each image, the second with triples of X, Y, POINT3D_ID:
//
//   # IMAGE_ID, QW, QX, QY, QZ, TX, TY, TZ, CAMERA_ID, NAME
//   10 0.935286 -0.0186376 0.349606 -0.0516467 -5.18498 -0.238152 0.0467711 1 100_7109.JPG
//   2271.95 4.56236 -1 2657.76 4.50529 8136
//
// points3D.txt one for each point, behind the error pairs of IMAGE_ID, POINT2D_IDX:
//
//   # POINT3D_ID, X, Y, Z, R, G, B, ERROR, TRACK[]
//   8137 1.09165 1.55921 9.56531 66 61 42 0.572416 4 4118 7 4586

#include "marlohost/ColmapModel.h"

#include "Host/KORV_Exception.h"
#include "TextLines.h"

#include <QFile>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <unordered_map>
#include <unordered_set>

namespace MarloHost
{

namespace
{

constexpr char CAMERAS[] = "cameras.txt";
constexpr char IMAGES[] = "images.txt";
constexpr char POINTS[] = "points3D.txt";

constexpr qint64 MAX_FILE_BYTES = 1LL << 30;

/// Of cameras, too.
constexpr std::size_t MAX_IMAGES = 10'000'000;
constexpr std::size_t MAX_POINTS = 10'000'000;
constexpr std::size_t MAX_NAME_BYTES = 4096;
constexpr int MAX_RASTER = 65'536;
constexpr double MAX_NUMBER = 1e9;

using Camera = ColmapModel::Camera;
using Image = ColmapModel::Image;
using Point = ColmapModel::Point;

QString pathIn(QString const& folder, char const* file)
{
    return folder.isEmpty() ? QLatin1String(file) : folder + QLatin1Char('/') + QLatin1String(file);
}

std::optional<std::uint64_t> idOf(Token token)
{
    std::uint64_t id = 0;
    auto const [end, error] = std::from_chars(token.data(), token.data() + token.size(), id);
    bool const isWhole = error == std::errc() && end == token.data() + token.size();
    return isWhole ? std::make_optional(id) : std::nullopt;
}

/// Whether a 2D point may say this of its 3D point: -1 is none.
bool isPointId(Token token)
{
    return token == "-1" || idOf(token);
}

/// The fields of a file's lines, from left to right.
class Fields
{
public:
    Fields(QByteArray const& text, QString const& fileName) : m_lines(text, fileName)
    {
    }

    /// Goes to the next line that is neither empty nor a comment; false at the end.
    bool nextRecord()
    {
        while (!m_lines.atEnd())
        {
            nextLine();
            if (!m_rest.empty() && m_rest.front() != '#')
            {
                return true;
            }
        }
        return false;
    }

    /// Goes to the next line, whatever it holds; an empty one at the end.
    void nextLine()
    {
        m_rest = m_lines.take();
        skipBlanks();
    }

    bool atLineEnd() const
    {
        return m_rest.empty();
    }

    int line() const
    {
        return m_lines.number();
    }

    [[noreturn]] void fail(QString const& cause) const
    {
        m_lines.fail(cause);
    }

    /// The next field; empty at the end of the line.
    Token word()
    {
        auto const end = std::find_if(m_rest.begin(), m_rest.end(), isBlank);
        Token const token = m_rest.substr(0, static_cast<std::size_t>(end - m_rest.begin()));
        m_rest.remove_prefix(token.size());
        skipBlanks();
        return token;
    }

    /// @param what of the field, for the error where there is none
    Token word(char const* what)
    {
        if (m_rest.empty())
        {
            fail(QStringLiteral("the line ends where %1 should stand").arg(QLatin1String(what)));
        }
        return word();
    }

    /// What is left of the line, without the blanks at its end.
    Token restOfLine()
    {
        Token token = m_rest;
        m_rest = {};
        while (!token.empty() && isBlank(token.back()))
        {
            token.remove_suffix(1);
        }
        return token;
    }

    /// A decimal number within the limits.
    double number(char const* what)
    {
        Token const token = word(what);
        std::optional<double> const number = numberOf(token);
        if (!number)
        {
            refuse(token, what, "a number");
        }
        if (std::fabs(*number) > MAX_NUMBER)
        {
            fail(QStringLiteral("%1 as %2 is beyond what a project takes (%3)")
                     .arg(quoted(token), QLatin1String(what))
                     .arg(MAX_NUMBER));
        }
        return *number;
    }

    /// A whole number, not negative.
    std::uint64_t id(char const* what)
    {
        Token const token = word(what);
        std::optional<std::uint64_t> const id = idOf(token);
        if (!id)
        {
            refuse(token, what, "a whole number from 0 up");
        }
        return *id;
    }

    void expectLineEnd()
    {
        if (!m_rest.empty())
        {
            fail(QStringLiteral("expected the end of the line, found %1").arg(quoted(word())));
        }
    }

    [[noreturn]] void refuse(Token token, char const* what, char const* expected) const
    {
        fail(QStringLiteral("expected %1, %2, found %3")
                 .arg(QLatin1String(what), QLatin1String(expected), quoted(token)));
    }

private:
    void skipBlanks()
    {
        while (!m_rest.empty() && isBlank(m_rest.front()))
        {
            m_rest.remove_prefix(1);
        }
    }

    TextLines m_lines;
    Token m_rest;
};

/// Where the parameters of a camera model go, in their order.
struct CameraForm
{
    using Place = void (*)(Camera&, double);

    char const* model;
    std::vector<Place> places;
};

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

std::vector<CameraForm> const& cameraForms()
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
    static std::vector<CameraForm> const forms{
        {"SIMPLE_PINHOLE", {setFocal, cx, cy}},       {"PINHOLE", {fx, fy, cx, cy}},
        {"SIMPLE_RADIAL", {setFocal, cx, cy, k1}},    {"RADIAL", {setFocal, cx, cy, k1, k2}},
        {"OPENCV", {fx, fy, cx, cy, k1, k2, p1, p2}}, {"FULL_OPENCV", {fx, fy, cx, cy, k1, k2, p1, p2, k3}}};
    return forms;
}

/// FULL_OPENCV ends with k4, k5 and k6 of a rational function, which Brown's model
/// hasn't.
void readDenominator(Fields& fields)
{
    for (char const* const what : {"k4", "k5", "k6"})
    {
        if (fields.number(what) != 0)
        {
            fields.fail(QStringLiteral("%1 of FULL_OPENCV isn't 0, which a project's lens can't follow; calibrate as "
                                       "OPENCV or undistort the images")
                            .arg(QLatin1String(what)));
        }
    }
}

CameraForm const& readForm(Fields& fields)
{
    Token const name = fields.word("the camera model");
    QStringList known;
    for (CameraForm const& form : cameraForms())
    {
        if (name == form.model)
        {
            return form;
        }
        known += QLatin1String(form.model);
    }
    fields.fail(QStringLiteral("the camera model %1 isn't one that a project's lens follows: %2; use one of these, or "
                               "undistort the images")
                    .arg(quoted(name), known.join(QStringLiteral(", "))));
}

int readExtent(Fields& fields, char const* what)
{
    std::uint64_t const pixels = fields.id(what);
    if (pixels < 1 || pixels > MAX_RASTER)
    {
        fields.fail(
            QStringLiteral("a %1 of %2 pixels; it is 1 to %3").arg(QLatin1String(what)).arg(pixels).arg(MAX_RASTER));
    }
    return static_cast<int>(pixels);
}

Camera readCamera(Fields& fields)
{
    Camera camera;
    camera.line = fields.line();
    camera.id = fields.id("the camera id");
    CameraForm const& form = readForm(fields);
    camera.width = readExtent(fields, "width");
    camera.height = readExtent(fields, "height");
    for (CameraForm::Place const place : form.places)
    {
        place(camera, fields.number("a camera parameter"));
    }
    if (Token(form.model) == "FULL_OPENCV")
    {
        readDenominator(fields);
    }
    fields.expectLineEnd();
    return camera;
}

using CameraIndex = std::unordered_map<std::uint64_t, std::size_t>;

CameraIndex readCameras(Fields fields, ColmapModel& model)
{
    CameraIndex index;
    while (fields.nextRecord())
    {
        Camera const camera = readCamera(fields);
        if (!index.emplace(camera.id, model.cameras.size()).second)
        {
            fields.fail(QStringLiteral("camera %1 stands twice").arg(camera.id));
        }
        if (model.cameras.size() == MAX_IMAGES)
        {
            fields.fail(QStringLiteral("more than %1 cameras").arg(MAX_IMAGES));
        }
        model.cameras.push_back(camera);
    }
    return index;
}

void readRotation(Fields& fields, Image& image)
{
    std::array<double, 4>& q = image.rotation;
    for (double& part : q)
    {
        part = fields.number("a number of the quaternion");
    }
    double const length = std::hypot(std::hypot(q[0], q[1]), std::hypot(q[2], q[3]));
    if (length < 1 / MAX_NUMBER)
    {
        fields.fail(QStringLiteral("the quaternion is 0, which is no rotation"));
    }
    std::for_each(q.begin(), q.end(), [length](double& part) { part /= length; });
}

QString readName(Fields& fields)
{
    Token const token = fields.restOfLine();
    QString const name = textOf(token);
    if (name.isEmpty())
    {
        fields.fail(QStringLiteral("the line ends where the image's name should stand"));
    }
    if (token.size() > MAX_NAME_BYTES)
    {
        fields.fail(QStringLiteral("the image's name is longer than %1 bytes").arg(MAX_NAME_BYTES));
    }
    bool const hasControls =
        std::any_of(token.begin(), token.end(), [](unsigned char c) { return c < ' ' || c == 0x7F; });
    if (hasControls || name.toUtf8() != QByteArray::fromRawData(token.data(), static_cast<int>(token.size())))
    {
        fields.fail(QStringLiteral("the name %1 has control characters or isn't UTF-8").arg(quoted(token)));
    }
    return name;
}

Image readImage(Fields& fields, CameraIndex const& cameras)
{
    Image image;
    image.line = fields.line();
    image.id = fields.id("the image id");
    readRotation(fields, image);
    for (double& part : image.translation)
    {
        part = fields.number("a number of the translation");
    }
    std::uint64_t const camera = fields.id("the camera id");
    auto const found = cameras.find(camera);
    if (found == cameras.end())
    {
        fields.fail(QStringLiteral("there is no camera %1 in %2").arg(camera).arg(QLatin1String(CAMERAS)));
    }
    image.camera = found->second;
    image.name = readName(fields);
    return image;
}

/// The line of triples behind an image.
/// @return how many there are
std::int64_t readObservations(Fields& fields, Image const& image)
{
    std::int64_t count = 0;
    fields.nextLine();
    for (; !fields.atLineEnd(); ++count)
    {
        Token const x = fields.word();
        Token const y = fields.word();
        Token const point = fields.word();
        // A line that isn't one is mostly the next image, as somebody took empty lines away.
        Token const* const wrong = !numberOf(x) ? &x : !numberOf(y) ? &y : !isPointId(point) ? &point : nullptr;
        if (wrong)
        {
            fields.fail(
                QStringLiteral("expected the 2D points of the image in line %1: X, Y, POINT3D_ID and again, or an "
                               "empty line; found ")
                    .arg(image.line) +
                (wrong->empty() ? QStringLiteral("the end of the line") : quoted(*wrong)));
        }
    }
    return count;
}

void readImages(Fields fields, CameraIndex const& cameras, ColmapModel& model)
{
    std::unordered_set<std::uint64_t> ids;
    while (fields.nextRecord())
    {
        Image image = readImage(fields, cameras);
        if (!ids.insert(image.id).second)
        {
            fields.fail(QStringLiteral("image %1 stands twice").arg(image.id));
        }
        if (model.images.size() == MAX_IMAGES)
        {
            fields.fail(QStringLiteral("more than %1 images").arg(MAX_IMAGES));
        }
        model.observations += readObservations(fields, image);
        model.images.push_back(std::move(image));
    }
}

Point readPoint(Fields& fields)
{
    Point point;
    point.line = fields.line();
    point.id = fields.id("the point id");
    for (double& part : point.position)
    {
        part = fields.number("a coordinate");
    }
    for (char const* const colour : {"red", "green", "blue"})
    {
        fields.id(colour);
    }
    point.error = fields.number("the error");
    while (!fields.atLineEnd())
    {
        fields.id("an image id of the track");
        fields.id("a 2D point's index of the track");
    }
    return point;
}

void readPoints(Fields fields, ColmapModel& model)
{
    while (fields.nextRecord())
    {
        if (model.points.size() == MAX_POINTS)
        {
            fields.fail(QStringLiteral("more than %1 points").arg(MAX_POINTS));
        }
        model.points.push_back(readPoint(fields));
    }
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
bool comesBefore(QByteArray const& left, QByteArray const& right)
{
    Token a(left.constData(), static_cast<std::size_t>(left.size()));
    Token b(right.constData(), static_cast<std::size_t>(right.size()));
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
            return order < 0;
        }
    }
    return a.empty() && b.empty() ? left < right : a.empty();
}

void sortImages(ColmapModel& model)
{
    std::vector<std::pair<QByteArray, std::size_t>> names;
    names.reserve(model.images.size());
    for (Image const& image : model.images)
    {
        names.emplace_back(image.name.toUtf8(), names.size());
    }
    std::stable_sort(names.begin(), names.end(),
                     [](auto const& a, auto const& b) { return comesBefore(a.first, b.first); });
    std::vector<Image> sorted;
    sorted.reserve(names.size());
    for (auto const& [name, index] : names)
    {
        Image& image = model.images[index];
        if (!sorted.empty() && sorted.back().name == image.name)
        {
            model.fail(IMAGES, image.line,
                       QStringLiteral("the image %1 stands in line %2 already")
                           .arg(quoted(Token(name.constData())), QString::number(sorted.back().line)));
        }
        sorted.push_back(std::move(image));
    }
    model.images = std::move(sorted);
}

void sortPoints(ColmapModel& model)
{
    std::stable_sort(model.points.begin(), model.points.end(),
                     [](Point const& a, Point const& b) { return a.id < b.id; });
    auto const same = std::adjacent_find(model.points.begin(), model.points.end(),
                                         [](Point const& a, Point const& b) { return a.id == b.id; });
    if (same != model.points.end())
    {
        model.fail(POINTS, (same + 1)->line,
                   QStringLiteral("point %1 stands in line %2 already").arg(same->id).arg(same->line));
    }
}

/// Brings a model together whose texts come one by one, so that one is in memory at a time.
class ModelReader
{
public:
    explicit ModelReader(QString const& folder)
    {
        m_model.folder = folder;
    }

    void cameras(QByteArray const& text)
    {
        m_cameras = readCameras(Fields(text, pathIn(m_model.folder, CAMERAS)), m_model);
    }

    void images(QByteArray const& text)
    {
        readImages(Fields(text, pathIn(m_model.folder, IMAGES)), m_cameras, m_model);
        if (m_model.images.empty())
        {
            throw KORV_BadFile(__FILE__, __LINE__,
                               pathIn(m_model.folder, IMAGES) + QStringLiteral(": no image, so there is no frame"),
                               QString());
        }
        sortImages(m_model);
    }

    void points(QByteArray const& text)
    {
        readPoints(Fields(text, pathIn(m_model.folder, POINTS)), m_model);
        sortPoints(m_model);
    }

    ColmapModel take()
    {
        return std::move(m_model);
    }

private:
    ColmapModel m_model;
    CameraIndex m_cameras;
};

/// Models are kept in binary form, mostly.
void refuseBinaryForm(QString const& folder)
{
    if (!QFile::exists(pathIn(folder, CAMERAS)) && QFile::exists(pathIn(folder, "cameras.bin")))
    {
        throw KORV_BadFile(__FILE__, __LINE__,
                           folder + QStringLiteral(": holds a model in binary form; convert it to text (cameras.txt, "
                                                   "images.txt, points3D.txt) with its own program"),
                           QString());
    }
}

}

void ColmapModel::fail(char const* file, int line, QString const& cause) const
{
    QString const place = QStringLiteral("line %1").arg(line);
    throw KORV_BadFile(__FILE__, __LINE__,
                       pathIn(folder, file) + QStringLiteral(": ") + place + QStringLiteral(": ") + cause, place);
}

ColmapModel readColmapModel(ColmapTexts const& texts, QString const& folder)
{
    ModelReader reader(folder);
    reader.cameras(texts.cameras);
    reader.images(texts.images);
    reader.points(texts.points);
    return reader.take();
}

ColmapModel readColmapFolder(QString const& folder)
{
    refuseBinaryForm(folder);
    ModelReader reader(folder);
    reader.cameras(readWholeFile(pathIn(folder, CAMERAS), MAX_FILE_BYTES));
    reader.images(readWholeFile(pathIn(folder, IMAGES), MAX_FILE_BYTES));
    reader.points(readWholeFile(pathIn(folder, POINTS), MAX_FILE_BYTES));
    return reader.take();
}

}
