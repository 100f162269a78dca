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

#include "ColmapRecords.h"

#include "Host/KORV_Exception.h"

#include <algorithm>
#include <charconv>

namespace MarloHost
{

namespace
{

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
class Fields : public ColmapSource
{
public:
    Fields(QByteArray const& text, QString const& fileName) : m_lines(text, fileName)
    {
    }

    qint64 place() const override
    {
        return m_record;
    }

    [[noreturn]] void fail(QString const& cause) const override
    {
        m_lines.fail(cause);
    }

    /// Goes to the next line that is neither empty nor a comment; false at the end.
    bool nextRecord()
    {
        while (!m_lines.atEnd())
        {
            nextLine();
            if (!m_rest.empty() && m_rest.front() != '#')
            {
                m_record = m_lines.number();
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
        return checked(*number, what);
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

private:
    [[noreturn]] void refuse(Token token, char const* what, char const* expected) const
    {
        fail(QStringLiteral("expected %1, %2, found %3")
                 .arg(QLatin1String(what), QLatin1String(expected), quoted(token)));
    }

    void skipBlanks()
    {
        while (!m_rest.empty() && isBlank(m_rest.front()))
        {
            m_rest.remove_prefix(1);
        }
    }

    TextLines m_lines;
    Token m_rest;
    qint64 m_record = 0;
};

void readCamera(Fields& fields, ColmapRecords& records)
{
    ColmapModel::Camera camera;
    camera.id = fields.id("the camera id");
    Token const name = fields.word("the camera model");
    QByteArray const model(name.data(), static_cast<int>(name.size()));
    ColmapCameraForm const* const form = colmapCameraForm(model);
    if (!form)
    {
        fields.fail(refusalOfCameraForm(model));
    }
    std::uint64_t const width = fields.id("width");
    std::uint64_t const height = fields.id("height");
    std::vector<double> parameters(form->places.size());
    for (double& parameter : parameters)
    {
        parameter = fields.number("a camera parameter");
    }
    fields.expectLineEnd();
    records.addCamera(fields, camera, *form, {width, height}, parameters);
}

/// The line of triples behind an image.
/// @return how many there are
std::int64_t readObservations(Fields& fields)
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
                    .arg(fields.place()) +
                (wrong->empty() ? QStringLiteral("the end of the line") : quoted(*wrong)));
        }
    }
    return count;
}

void readImage(Fields& fields, ColmapRecords& records)
{
    ColmapModel::Image image;
    image.id = fields.id("the image id");
    for (double& part : image.rotation)
    {
        part = fields.number("a number of the quaternion");
    }
    for (double& part : image.translation)
    {
        part = fields.number("a number of the translation");
    }
    std::uint64_t const camera = fields.id("the camera id");
    Token const name = fields.restOfLine();
    records.addImage(fields, image, camera, name);
    records.addObservations(readObservations(fields));
}

void readPoint(Fields& fields, ColmapRecords& records)
{
    ColmapModel::Point point;
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
    for (; !fields.atLineEnd(); ++point.track)
    {
        fields.id("an image id of the track");
        fields.id("a 2D point's index of the track");
    }
    records.addPoint(fields, point);
}

}

void readColmapText(ColmapModel::File file, QByteArray const& text, ColmapRecords& records)
{
    Fields fields(text, records.pathOf(file));
    while (fields.nextRecord())
    {
        switch (file)
        {
        case ColmapModel::CamerasFile:
            readCamera(fields, records);
            break;
        case ColmapModel::ImagesFile:
            readImage(fields, records);
            break;
        case ColmapModel::PointsFile:
            readPoint(fields, records);
            break;
        }
    }
}

std::int64_t countColmapTextImages(QByteArray const& text)
{
    std::int64_t count = 0;
    try
    {
        Fields fields(text, QString());
        for (; fields.nextRecord(); ++count)
        {
            fields.nextLine();
        }
    }
    catch (KORV_BadFile const&)
    {
        return 0;
    }
    return count;
}

}
