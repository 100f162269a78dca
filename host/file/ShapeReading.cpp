// Contours and meshes in a project file.

#include "ProjectReading.h"
#include "shapes/ImageContours.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

constexpr double FARTHEST = 1e7;
constexpr int MAX_VERTICES = 10'000'000;

std::array<int, 4> readColour(JsonCursor const& cursor)
{
    cursor.expectNumbers(4);
    std::vector<int> const numbers = cursor.integers(0, 255);
    return {numbers[0], numbers[1], numbers[2], numbers[3]};
}

void checkFarthest(JsonCursor const& cursor, std::vector<double> const& numbers)
{
    auto const far =
        std::find_if(numbers.begin(), numbers.end(), [](double number) { return !(std::fabs(number) <= FARTHEST); });
    if (far != numbers.end())
    {
        cursor.fail(QStringLiteral("element %1 is %2; expected -%3 to %3 pixels")
                        .arg(far - numbers.begin())
                        .arg(*far)
                        .arg(FARTHEST));
    }
}

QString readBlend(JsonCursor const& cursor)
{
    QString const word = cursor.string();
    if (word != QLatin1String("add") && word != QLatin1String("subtract"))
    {
        cursor.fail(QStringLiteral("expected \"add\" or \"subtract\", found \"%1\"").arg(word));
    }
    return word;
}

/// Reads a contour key by key, each held against the first one.
class ContourReader
{
public:
    ContourReader(JsonCursor const& cursor, LayerModel const& layer, ClipModel const& clip, QStringList const& views)
        : m_object(cursor, {"name", "type", "space", "closed", "active", "veilML", "keys"}),
          m_layer(layer),
          m_clip(clip),
          m_views(views)
    {
    }

    ContourModel read()
    {
        JsonCursor const name = m_object.required("name");
        m_contour.name = name.string();
        if (m_contour.name.isEmpty())
        {
            name.fail(QStringLiteral("a name must not be empty"));
        }
        readType();
        m_contour.closed = m_object.boolean("closed", true);
        m_contour.active = m_object.boolean("active", true);
        readVeilML();
        JsonCursor const keys = m_object.required("keys");
        m_contour.keys.reserve(keys.elements().size());
        for (JsonCursor const& key : keys.elements())
        {
            readKey(key);
        }
        if (m_contour.keys.empty())
        {
            keys.fail(QStringLiteral("a contour needs at least one key"));
        }
        checkOnSurface(keys);
        return std::move(m_contour);
    }

private:
    void readType()
    {
        std::optional<JsonCursor> const type = m_object.optional("type");
        QString const word = type ? type->string() : QStringLiteral("bezier");
        m_contour.xspline = word == QLatin1String("xspline");
        if (!m_contour.xspline && word != QLatin1String("bezier"))
        {
            type->fail(QStringLiteral("expected \"bezier\" or \"xspline\", found \"%1\"").arg(word));
        }
        std::optional<JsonCursor> const space = m_object.optional("space");
        QString const spaceWord = space ? space->string() : QStringLiteral("plane");
        m_contour.inImage = spaceWord == QLatin1String("image");
        if (!m_contour.inImage && spaceWord != QLatin1String("plane"))
        {
            space->fail(QStringLiteral("expected \"plane\" or \"image\", found \"%1\"").arg(spaceWord));
        }
    }

    void checkOnSurface(JsonCursor const& keys) const
    {
        if (!m_contour.inImage)
        {
            return;
        }
        SurfaceMotion const motion = motionOfImageContours(m_layer, m_views);
        std::size_t index = 0;
        for (JsonCursor const& cursor : keys.elements())
        {
            ContourKeyModel key = m_contour.keys[index++];
            if (!carryIntoPlane(key, m_contour.xspline, motion))
            {
                cursor.fail(QStringLiteral("a point lies beyond the horizon of the layer's surface at frame %1; "
                                           "leave the key out")
                                .arg(key.frame));
            }
        }
    }

    void readVeilML()
    {
        for (JsonCursor const& view : m_object.elements("veilML"))
        {
            QString const name = view.string();
            if (!m_views.contains(name))
            {
                view.fail(QStringLiteral("there is no view \"%1\"").arg(name));
            }
            if (m_contour.veilML.contains(name))
            {
                view.fail(QStringLiteral("the view \"%1\" stands here already").arg(name));
            }
            m_contour.veilML.append(name);
        }
    }

    void readKey(JsonCursor const& cursor)
    {
        JsonObject const object(cursor, {"frame", "points", "feather"});
        ContourKeyModel key;
        JsonCursor const frame = object.required("frame");
        key.frame = frame.integer(0, m_clip.frameCount - 1);
        if (!m_contour.keys.empty() && key.frame <= m_contour.keys.back().frame)
        {
            frame.fail(QStringLiteral("keys of a contour must ascend in time"));
        }
        key.points = readEdge(object.required("points"));
        if (std::optional<JsonCursor> const feather = object.optional("feather"))
        {
            key.feather = readEdge(*feather);
            checkCount(*feather, key.feather.size(), key.points.size());
        }
        if (!m_contour.keys.empty())
        {
            checkCount(object.required("points"), key.points.size(), m_contour.keys.front().points.size());
        }
        m_contour.keys.push_back(std::move(key));
    }

    std::vector<double> readEdge(JsonCursor const& cursor) const
    {
        std::vector<double> numbers = cursor.takeNumbers();
        std::size_t const stride = m_contour.stride();
        std::size_t const least = m_contour.xspline ? 3 : 2;
        if (numbers.size() % stride != 0 || numbers.size() < least * stride)
        {
            cursor.fail(QStringLiteral("%1 numbers; expected %2 for each vertex of %3, and at least %4 vertices")
                            .arg(QString::number(numbers.size()), QString::number(stride),
                                 m_contour.xspline ? QStringLiteral("an X-spline") : QStringLiteral("a Bezier curve"),
                                 QString::number(least)));
        }
        checkFarthest(cursor, numbers);
        for (std::size_t i = 2; m_contour.xspline && i < numbers.size(); i += stride)
        {
            if (!(std::fabs(numbers[i]) <= 1))
            {
                cursor.fail(QStringLiteral("element %1 is a weight of %2; expected -1 to 1").arg(i).arg(numbers[i]));
            }
        }
        return numbers;
    }

    void checkCount(JsonCursor const& cursor, std::size_t found, std::size_t expected) const
    {
        if (found != expected)
        {
            cursor.fail(QStringLiteral("%1 vertices where the contour has %2")
                            .arg(found / m_contour.stride())
                            .arg(expected / m_contour.stride()));
        }
    }

    JsonObject m_object;
    LayerModel const& m_layer;
    ClipModel const& m_clip;
    QStringList const& m_views;
    ContourModel m_contour;
};

MeshTrackModel readMeshTrack(JsonCursor const& cursor, int vertexCount, LayerModel const& layer, ClipModel const& clip)
{
    JsonObject const object(cursor, {"view", "frames", "firstFrame", "positions"});
    MeshTrackModel track;
    track.view = object.string("view", QString());
    JsonCursor const positions = object.required("positions");
    track.positions = positions.takeNumbers();
    std::size_t const numbersPerFrame = static_cast<std::size_t>(vertexCount) * 2;
    if (track.positions.empty() || track.positions.size() % numbersPerFrame != 0)
    {
        positions.fail(QStringLiteral("%1 numbers; expected %2 for each frame, x and y of %3 vertices, and at least "
                                      "one frame")
                           .arg(track.positions.size())
                           .arg(numbersPerFrame)
                           .arg(vertexCount));
    }
    checkFarthest(positions, track.positions);
    track.frames = readFrames(object, layer.inPoint.value_or(0), clip.frameCount,
                              track.positions.size() / numbersPerFrame, "positions");
    return track;
}

MeshModel readMesh(JsonCursor const& cursor, LayerModel const& layer, ClipModel const& clip, QStringList const& views)
{
    JsonObject const object(cursor, {"vertexCount", "faceCounts", "faceIndices", "tracks"});
    MeshModel mesh;
    mesh.vertexCount = object.required("vertexCount").integer(3, MAX_VERTICES);
    readFaces(object, mesh.vertexCount, mesh.faceCounts, mesh.faceIndices);
    QSet<QString> taken;
    JsonCursor const tracks = object.required("tracks");
    for (JsonCursor const& element : tracks.elements())
    {
        MeshTrackModel track = readMeshTrack(element, mesh.vertexCount, layer, clip);
        QString const view = track.view.isEmpty() ? views.front() : track.view;
        if (!views.contains(view))
        {
            element.fail(QStringLiteral("there is no view \"%1\"").arg(view));
        }
        if (taken.contains(view))
        {
            element.fail(QStringLiteral("the view \"%1\" has a track already").arg(view));
        }
        taken.insert(view);
        mesh.tracks.push_back(std::move(track));
    }
    if (mesh.tracks.empty())
    {
        tracks.fail(QStringLiteral("a mesh needs at least one track"));
    }
    return mesh;
}

}

void readLayerShapes(JsonObject const& object, LayerModel& layer, ClipModel const& clip, QStringList const& views)
{
    layer.invert = object.boolean("invert", false);
    if (std::optional<JsonCursor> const blend = object.optional("blend"))
    {
        layer.subtract = readBlend(*blend) == QLatin1String("subtract");
    }
    if (std::optional<JsonCursor> const colour = object.optional("colour"))
    {
        layer.colour = readColour(*colour);
    }
    if (std::optional<JsonCursor> const colour = object.optional("overlayColour"))
    {
        layer.overlayColour = readColour(*colour);
    }
    JsonElements const contours = object.elements("contours");
    layer.contours.reserve(contours.size());
    for (JsonCursor const& contour : contours)
    {
        layer.contours.push_back(ContourReader(contour, layer, clip, views).read());
    }
    if (std::optional<JsonCursor> const mesh = object.optional("mesh"))
    {
        layer.mesh = readMesh(*mesh, layer, clip, views);
    }
}

}
