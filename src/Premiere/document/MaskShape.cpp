#include "Premiere/document/MaskShape.h"

#include <QtEndian>

#include <cstring>

namespace Export::Premiere::Mask
{

namespace
{

constexpr int HEADER_SIZE = 12;
constexpr int POINT_SIZE = 28;

void put(char*& at, quint32 value)
{
    qToLittleEndian(value, at);
    at += sizeof value;
}

void put(char*& at, Coord const& coord)
{
    for (float const value : {coord.x, coord.y})
    {
        quint32 bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        put(at, bits);
    }
}

quint32 takeInteger(char const*& at)
{
    auto const value = qFromLittleEndian<quint32>(at);
    at += sizeof value;
    return value;
}

Coord takeCoord(char const*& at)
{
    Coord coord;
    for (float* const value : {&coord.x, &coord.y})
    {
        quint32 const bits = takeInteger(at);
        std::memcpy(value, &bits, sizeof bits);
    }
    return coord;
}

}

void Coord::scale(float byX, float byY)
{
    x *= byX;
    y *= byY;
}

Point::Point(float x, float y) : vertex{x, y}, inHandle{x, y}, outHandle{x, y}
{
}

Point::Point(Coord const& atVertex, Coord const& incoming, Coord const& outgoing)
    : kind(1), vertex(atVertex), inHandle(incoming), outHandle(outgoing)
{
}

Shape::Shape(ShapeType type) : m_type(type)
{
}

Shape::Shape(QByteArray const& base64) : m_type(InvalidShape)
{
    *this = base64;
}

Shape& Shape::operator=(QByteArray const& base64)
{
    m_type = InvalidShape;
    m_points.clear();
    QByteArray const record = QByteArray::fromBase64(base64);
    if (record.size() <= HEADER_SIZE)
    {
        return *this;
    }
    char const* at = record.constData() + sizeof kMaskMagicNumber;
    auto const type = static_cast<ShapeType>(takeInteger(at));
    quint32 const count = takeInteger(at);
    if (static_cast<qint64>(count) * POINT_SIZE + HEADER_SIZE > record.size())
    {
        return *this;
    }
    m_type = type;
    m_points.reserve(static_cast<int>(count));
    for (quint32 i = 0; i < count; ++i)
    {
        Point point;
        point.kind = static_cast<qint32>(takeInteger(at));
        point.vertex = takeCoord(at);
        point.inHandle = takeCoord(at);
        point.outHandle = takeCoord(at);
        m_points.append(point);
    }
    return *this;
}

Shape& Shape::operator<<(Point const& point)
{
    m_points.append(point);
    return *this;
}

int Shape::flattenedSize(int points)
{
    return points * POINT_SIZE + HEADER_SIZE;
}

QByteArray Shape::toBase64() const
{
    QByteArray record(flattenedSize(m_points.size()), Qt::Uninitialized);
    char* at = record.data();
    put(at, kMaskMagicNumber);
    put(at, static_cast<quint32>(m_type));
    put(at, static_cast<quint32>(m_points.size()));
    for (Point const& point : m_points)
    {
        put(at, static_cast<quint32>(point.kind));
        put(at, point.vertex);
        put(at, point.inHandle);
        put(at, point.outHandle);
    }
    return record.toBase64();
}

}
