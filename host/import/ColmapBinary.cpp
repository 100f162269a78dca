// Reading COLMAP's binary form. Numbers are little-endian, and each file starts with the
// count of its records (64 bits):
//
//   cameras.bin    id (32), model (32), width, height (64), parameters (double)
//   images.bin     id (32), quaternion w x y z, translation (double), camera id (32),
//                  name up to a zero, count of 2D points (64), each x, y (double), point (64)
//   points3D.bin   id (64), x, y, z (double), red, green, blue (8), error (double),
//                  length of the track (64), each image id, index of the 2D point (32)

#include "ColmapRecords.h"

#include "Host/KORV_Exception.h"

#include <QtEndian>

#include <cmath>
#include <cstring>

namespace MarloHost
{

namespace
{

class Bytes : public ColmapSource
{
public:
    Bytes(QByteArray const& bytes, QString const& fileName)
        : m_bytes(bytes.constData(), static_cast<std::size_t>(bytes.size())), m_fileName(fileName)
    {
    }

    qint64 place() const override
    {
        return static_cast<qint64>(m_record);
    }

    [[noreturn]] void fail(QString const& cause) const override
    {
        QString const place = QStringLiteral("byte %1").arg(m_record);
        throw KORV_BadFile(__FILE__, __LINE__, m_fileName + QStringLiteral(": ") + place + QStringLiteral(": ") + cause,
                           place);
    }

    /// The place of errors from here on.
    void startRecord()
    {
        m_record = m_at;
    }

    template <typename Integer>
    Integer integer()
    {
        return qFromLittleEndian<Integer>(take(sizeof(Integer)).data());
    }

    /// A double within the limits.
    double number(char const* what)
    {
        std::uint64_t const bits = integer<std::uint64_t>();
        double value = 0;
        static_assert(sizeof value == sizeof bits);
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value))
        {
            fail(QStringLiteral("%1 isn't a finite number").arg(QLatin1String(what)));
        }
        return checked(value, what);
    }

    /// The text up to the next zero, which is passed over.
    Token text()
    {
        std::size_t const end = m_bytes.find('\0', m_at);
        Token const token = take(end == Token::npos ? m_bytes.size() : end - m_at);
        take(1);
        return token;
    }

    /// A count, and as many things of `size` bytes, which are passed over.
    std::int64_t skipList(std::size_t size)
    {
        std::uint64_t const count = integer<std::uint64_t>();
        if (count > (m_bytes.size() - m_at) / size)
        {
            failCutOff();
        }
        m_at += static_cast<std::size_t>(count) * size;
        return static_cast<std::int64_t>(count);
    }

    void expectEnd()
    {
        startRecord();
        if (m_at != m_bytes.size())
        {
            fail(QStringLiteral("%1 bytes too many behind the records that the file says it has")
                     .arg(m_bytes.size() - m_at));
        }
    }

private:
    Token take(std::size_t count)
    {
        if (count > m_bytes.size() - m_at)
        {
            failCutOff();
        }
        Token const token = m_bytes.substr(m_at, count);
        m_at += count;
        return token;
    }

    [[noreturn]] void failCutOff() const
    {
        fail(QStringLiteral("the file ends in the middle of the record that starts here; it was cut off, or isn't in "
                            "COLMAP's binary form"));
    }

    Token m_bytes;
    QString m_fileName;
    std::size_t m_at = 0;
    std::size_t m_record = 0;
};

void readCamera(Bytes& bytes, ColmapRecords& records)
{
    ColmapModel::Camera camera;
    camera.id = bytes.integer<std::uint32_t>();
    int const model = bytes.integer<std::int32_t>();
    ColmapCameraForm const* const form = colmapCameraForm(model);
    if (!form)
    {
        bytes.fail(refusalOfCameraForm(model));
    }
    std::uint64_t const width = bytes.integer<std::uint64_t>();
    std::uint64_t const height = bytes.integer<std::uint64_t>();
    std::vector<double> parameters(form->places.size());
    for (double& parameter : parameters)
    {
        parameter = bytes.number("a camera parameter");
    }
    records.addCamera(bytes, camera, *form, {width, height}, parameters);
}

void readImage(Bytes& bytes, ColmapRecords& records)
{
    ColmapModel::Image image;
    image.id = bytes.integer<std::uint32_t>();
    for (double& part : image.rotation)
    {
        part = bytes.number("a number of the quaternion");
    }
    for (double& part : image.translation)
    {
        part = bytes.number("a number of the translation");
    }
    std::uint32_t const camera = bytes.integer<std::uint32_t>();
    Token const name = bytes.text();
    constexpr std::size_t OBSERVATION_BYTES = 24;
    records.addImage(bytes, image, camera, name);
    records.addObservations(bytes.skipList(OBSERVATION_BYTES));
}

void readPoint(Bytes& bytes, ColmapRecords& records)
{
    ColmapModel::Point point;
    point.id = bytes.integer<std::uint64_t>();
    for (double& part : point.position)
    {
        part = bytes.number("a coordinate");
    }
    for (int colour = 0; colour < 3; ++colour)
    {
        bytes.integer<std::uint8_t>();
    }
    point.error = bytes.number("the error");
    constexpr std::size_t TRACK_BYTES = 8;
    point.track = bytes.skipList(TRACK_BYTES);
    records.addPoint(bytes, point);
}

}

void readColmapBinary(ColmapModel::File file, QByteArray const& content, ColmapRecords& records)
{
    Bytes bytes(content, records.pathOf(file));
    std::uint64_t const count = bytes.integer<std::uint64_t>();
    for (std::uint64_t i = 0; i < count; ++i)
    {
        bytes.startRecord();
        switch (file)
        {
        case ColmapModel::CamerasFile:
            readCamera(bytes, records);
            break;
        case ColmapModel::ImagesFile:
            readImage(bytes, records);
            break;
        case ColmapModel::PointsFile:
            readPoint(bytes, records);
            break;
        }
    }
    bytes.expectEnd();
}

std::int64_t countColmapBinaryImages(QByteArray const& head)
{
    std::uint64_t const count = head.size() < 8 ? 0 : qFromLittleEndian<std::uint64_t>(head.constData());
    return static_cast<std::int64_t>(std::min<std::uint64_t>(count, INT32_MAX));
}

}
