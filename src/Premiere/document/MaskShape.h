#pragma once
// The binary record of an outline at a key.

#include "Core/ExportApi.h"

#include <QByteArray>
#include <QVector>

namespace Export::Premiere::Mask
{

/// A point or a handle, as a fraction of the picture: x from the left edge, y from the lower
/// edge up.
struct MARLO_EXPORT_API Coord
{
    float x = 0;
    float y = 0;

    void scale(float byX, float byY);

    bool operator==(Coord const& other) const
    {
        return x == other.x && y == other.y;
    }
};

struct MARLO_EXPORT_API Point
{
    Point() = default;

    /// A corner.
    Point(float x, float y);

    /// A bend between two handles. Handles are points of the picture, not relative ones.
    Point(Coord const& vertex, Coord const& inHandle, Coord const& outHandle);

    bool operator==(Point const& other) const
    {
        return kind == other.kind && vertex == other.vertex && inHandle == other.inHandle &&
               outHandle == other.outHandle;
    }

    /// 0 for a corner, 1 for a bend.
    qint32 kind = 0;
    Coord vertex;
    Coord inHandle;
    Coord outHandle;
};

enum ShapeType : qint32
{
    InvalidShape = -1,
    PenShape = 0
};

/// A closed outline.
class MARLO_EXPORT_API Shape
{
public:
    /// "kcin" as the first four bytes of the record.
    static constexpr quint32 kMaskMagicNumber = 1852400491;

    explicit Shape(ShapeType type);

    /// @param base64 what toBase64() gives
    explicit Shape(QByteArray const& base64);

    /// Takes what toBase64() gives. Anything that is shorter than it says, and an outline
    /// without points, leaves an invalid shape without points. The first four bytes may be
    /// any.
    Shape& operator=(QByteArray const& base64);

    Shape& operator<<(Point const& point);

    ShapeType shapeType() const
    {
        return m_type;
    }

    QVector<Point> const& points() const
    {
        return m_points;
    }

    /// Bytes of the record of an outline.
    static int flattenedSize(int points);

    /// The record: magic number, type, number of points, and for each point its kind, vertex,
    /// incoming and outgoing handle. All little-endian, in 32 bits each.
    QByteArray toBase64() const;

private:
    ShapeType m_type;
    QVector<Point> m_points;
};

}
