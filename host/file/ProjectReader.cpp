// From the text of a project file to plain records. Keys, types and ranges are
// checked where they are read; names that refer to other records afterwards.

#include "Host/KORV_Exception.h"
#include "marlohost/ClipLens.h"
#include "marlohost/ProjectFile.h"
#include "plane/Homography.h"
#include "ProjectReading.h"

#include <QFile>
#include <QHash>
#include <QSet>

#include <functional>
#include <limits>

namespace MarloHost
{

namespace
{

constexpr int VERSION = 1;
constexpr qint64 MAX_FILE_BYTES = 1LL << 30;
constexpr int MAX_FRAME = 10'000'000;
constexpr int MAX_RASTER = 65'536;
constexpr std::size_t MAX_VIEWS = 100;

/// Groups that lie in one another; whoever asks a layer whether it is seen goes through
/// all that hold it.
constexpr int MAX_GROUP_DEPTH = 64;

LensModel readLens(JsonCursor const& cursor, int frameCount)
{
    constexpr double ANY = -1000;
    constexpr double POSITIVE = 1e-3;
    JsonObject const object(cursor, {"focalLength", "centreX", "centreY", "radial1", "radial2", "radial3",
                                     "tangential1", "tangential2", "squeeze"});
    LensModel lens;
    readKeyed(object, "focalLength", frameCount, POSITIVE, lens.focalLength);
    readKeyed(object, "centreX", frameCount, ANY, lens.centreX);
    readKeyed(object, "centreY", frameCount, ANY, lens.centreY);
    readKeyed(object, "radial1", frameCount, ANY, lens.radial[0]);
    readKeyed(object, "radial2", frameCount, ANY, lens.radial[1]);
    readKeyed(object, "radial3", frameCount, ANY, lens.radial[2]);
    readKeyed(object, "tangential1", frameCount, ANY, lens.tangential[0]);
    readKeyed(object, "tangential2", frameCount, ANY, lens.tangential[1]);
    readKeyed(object, "squeeze", frameCount, POSITIVE, lens.squeeze);
    return lens;
}

void checkLens(JsonCursor const& cursor, ClipModel const& clip)
{
    if (std::optional<int> const frame = firstFoldedFrame(clip))
    {
        cursor.fail(
            QStringLiteral("at frame %1 the lens folds over inside the picture; check its coefficients").arg(*frame));
    }
}

QString nonEmpty(JsonCursor const& cursor)
{
    QString const text = cursor.string();
    if (text.isEmpty())
    {
        cursor.fail(QStringLiteral("must not be empty"));
    }
    return text;
}

FootageModel readFootage(JsonCursor const& cursor)
{
    JsonObject const object(cursor, {"kind", "directory", "prefix", "suffix", "indexWidth", "firstIndex", "file"});
    FootageModel footage;
    JsonCursor const kind = object.required("kind");
    QString const word = kind.string();
    std::vector<char const*> others;
    if (word == QLatin1String("sequence"))
    {
        footage.kind = FootageModel::Sequence;
        footage.directory = nonEmpty(object.required("directory"));
        footage.prefix = object.string("prefix", QString());
        footage.suffix = object.string("suffix", QString());
        footage.indexWidth = object.required("indexWidth").integer(1, 20);
        footage.firstIndex = object.integer("firstIndex", 0, 0, MAX_FRAME);
        others = {"file"};
    }
    else if (word == QLatin1String("movie"))
    {
        footage.kind = FootageModel::Movie;
        footage.file = nonEmpty(object.required("file"));
        others = {"directory", "prefix", "suffix", "indexWidth", "firstIndex"};
    }
    else if (word == QLatin1String("solid"))
    {
        others = {"directory", "prefix", "suffix", "indexWidth", "firstIndex", "file"};
    }
    else
    {
        kind.fail(QStringLiteral("expected \"sequence\", \"movie\" or \"solid\", found \"%1\"").arg(word));
    }
    for (char const* const other : others)
    {
        if (std::optional<JsonCursor> const found = object.optional(other))
        {
            found->fail(QStringLiteral("footage of the kind \"%1\" doesn't have it").arg(word));
        }
    }
    return footage;
}

ClipModel readClip(JsonCursor const& cursor, QSet<QString>& names)
{
    JsonObject const object(cursor, {"name", "width", "height", "pixelAspect", "frameCount", "frameOffset",
                                     "interlaced", "lowerFieldFirst", "pulldown", "footage", "filmBack", "lens"});
    ClipModel clip;
    clip.name = uniqueName(object, names);
    clip.width = object.required("width").integer(1, MAX_RASTER);
    clip.height = object.required("height").integer(1, MAX_RASTER);
    clip.pixelAspect = object.number("pixelAspect", clip.pixelAspect, 0.01, 100);
    clip.frameCount = object.required("frameCount").integer(1, MAX_FRAME);
    clip.frameOffset = object.integer("frameOffset", clip.frameOffset, -MAX_FRAME, MAX_FRAME);
    clip.interlaced = object.boolean("interlaced", clip.interlaced);
    if (clip.interlaced && clip.height % 2 != 0)
    {
        cursor.fail(QStringLiteral("an interlaced clip needs an even height, found %1").arg(clip.height));
    }
    clip.lowerFieldFirst = object.boolean("lowerFieldFirst", false);
    clip.pulldown = object.optionalInteger("pulldown", 0, 4);
    if (std::optional<JsonCursor> const footage = object.optional("footage"))
    {
        clip.footage = readFootage(*footage);
    }
    if (std::optional<JsonCursor> const filmBack = object.optional("filmBack"))
    {
        JsonObject const size(*filmBack, {"width", "height"});
        clip.filmBack = {size.required("width").number(0.1, 1000), size.required("height").number(0.1, 1000)};
    }
    if (std::optional<JsonCursor> const lens = object.optional("lens"))
    {
        clip.lens = readLens(*lens, clip.frameCount);
        checkLens(*lens, clip);
    }
    return clip;
}

GroupModel readGroup(JsonCursor const& cursor, QSet<QString>& names, ClipModel const& firstClip)
{
    JsonObject const object(cursor, {"name", "parent", "hidden", "selected", "moving", "pose"});
    GroupModel group;
    group.name = uniqueName(object, names);
    group.parent = object.string("parent", QString());
    group.hidden = object.boolean("hidden", false);
    group.selected = object.boolean("selected", false);
    group.moving = object.boolean("moving", false);
    readGroupObject(object, group, firstClip);
    return group;
}

std::array<double, 8> readCorners(JsonCursor const& cursor)
{
    std::vector<double> const numbers = cursor.takeNumbers(8);
    std::array<double, 8> corners;
    std::copy(numbers.begin(), numbers.end(), corners.begin());
    return corners;
}

void checkHomographies(JsonCursor const& cursor, std::vector<double> const& numbers, ClipModel const& clip)
{
    Homography h;
    for (std::size_t i = 0; i < numbers.size(); i += 9)
    {
        std::copy_n(numbers.begin() + static_cast<std::ptrdiff_t>(i), 9, h.m.begin());
        if (!isRegular(h, clip.width, clip.height))
        {
            cursor.fail(QStringLiteral("homography %1 (numbers %2 to %3) is singular; leave its frame out")
                            .arg(i / 9)
                            .arg(i)
                            .arg(i + 8));
        }
    }
}

TrackModel readTrack(JsonCursor const& cursor, LayerModel const& layer, ClipModel const& clip)
{
    JsonObject const object(cursor, {"view", "frames", "firstFrame", "homographies"});
    TrackModel track;
    track.view = object.string("view", QString());
    JsonCursor const homographies = object.required("homographies");
    track.homographies = homographies.takeNumbers();
    if (track.homographies.size() % 9 != 0)
    {
        homographies.fail(
            QStringLiteral("%1 numbers; expected nine for each homography").arg(track.homographies.size()));
    }
    checkHomographies(homographies, track.homographies, clip);
    track.frames =
        readFrames(object, layer.inPoint.value_or(0), clip.frameCount, track.homographies.size() / 9, "homographies");
    return track;
}

AdjustKeyModel readAdjustKey(JsonCursor const& cursor, LayerModel const& layer, ClipModel const& clip)
{
    JsonObject const object(cursor, {"frame", "offsets"});
    AdjustKeyModel key;
    JsonCursor const frame = object.required("frame");
    key.frame = frame.integer(0, clip.frameCount - 1);
    if (!layer.adjust.empty() && key.frame <= layer.adjust.back().frame)
    {
        frame.fail(QStringLiteral("adjust keys must ascend in time"));
    }
    key.offsets = readCorners(object.required("offsets"));
    return key;
}

StabilizeModel readStabilize(JsonCursor const& cursor, ClipModel const& clip)
{
    JsonObject const object(cursor, {"rangeStart", "rangeEnd", "fixedFrames"});
    StabilizeModel stabilize;
    stabilize.rangeStart = object.optionalInteger("rangeStart", 0, clip.frameCount - 1);
    stabilize.rangeEnd = object.optionalInteger("rangeEnd", 0, clip.frameCount - 1);
    if (stabilize.rangeEnd && *stabilize.rangeEnd < stabilize.rangeStart.value_or(0))
    {
        object.required("rangeEnd").fail(QStringLiteral("the range ends before it starts"));
    }
    if (std::optional<JsonCursor> const fixed = object.optional("fixedFrames"))
    {
        stabilize.fixedFrames = fixed->ascendingIntegers(0, clip.frameCount - 1);
    }
    return stabilize;
}

void readSurface(JsonCursor const& cursor, LayerModel& layer, ClipModel const& clip)
{
    JsonObject const object(cursor, {"referenceFrame", "corners"});
    layer.referenceFrame = object.integer("referenceFrame", layer.inPoint.value_or(0), 0, clip.frameCount - 1);
    JsonCursor const corners = object.required("corners");
    layer.corners = readCorners(corners);
    std::array<double, 8> const& c = layer.corners;
    Quad const quad{{{c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}, {c[6], c[7]}}};
    if (!isProperQuad(quad))
    {
        corners.fail(QStringLiteral("three of the corners lie on a line; a surface needs four proper corners"));
    }
    if (!isConvexQuad(quad))
    {
        corners.fail(QStringLiteral("the surface crosses itself or bends inward; the corners are lower left, lower "
                                    "right, upper left, upper right"));
    }
}

/// Reads the document and resolves the names in it.
class ProjectReader
{
public:
    ProjectModel read(JsonCursor const& root)
    {
        JsonObject const object(root,
                                {"marloProject", "frameRate", "clips", "views", "groups", "layers", "currentFrame",
                                 "currentLayer", "currentView", "displayClip", "playback", "trim", "solve"});
        JsonCursor const version = object.required("marloProject");
        if (version.number(0, std::numeric_limits<double>::max()) != VERSION)
        {
            version.fail(QStringLiteral("this program reads version %1 of the project file").arg(VERSION));
        }
        m_project.frameRate = object.number("frameRate", m_project.frameRate, 0.001, 100'000);
        readClips(object);
        readViews(object);
        readGroups(object);
        JsonElements const layers = limitedElements(object, "layers", MAX_RECORDS);
        m_project.layers.reserve(layers.size());
        for (JsonCursor const& layer : layers)
        {
            m_project.layers.push_back(readLayer(layer));
        }
        if (std::optional<JsonCursor> const solve = object.optional("solve"))
        {
            m_project.solve = readSolve(*solve, m_project);
        }
        readState(object);
        return std::move(m_project);
    }

private:
    void readClips(JsonObject const& object)
    {
        JsonCursor const cursor = object.required("clips");
        JsonElements const clips = limitedElements(object, "clips", MAX_RECORDS);
        m_project.clips.reserve(clips.size());
        for (JsonCursor const& clip : clips)
        {
            m_project.clips.push_back(readClip(clip, m_clipNames));
            m_clipIndices.insert(m_project.clips.back().name, m_project.clips.size() - 1);
        }
        if (m_project.clips.empty())
        {
            cursor.fail(QStringLiteral("a project needs at least one clip"));
        }
    }

    void readViews(JsonObject const& object)
    {
        std::optional<JsonCursor> const cursor = object.optional("views");
        if (!cursor)
        {
            return;
        }
        m_project.views.clear();
        for (JsonCursor const& view : limitedElements(object, "views", MAX_VIEWS))
        {
            QString const name = view.string();
            if (name.isEmpty() || m_project.views.contains(name))
            {
                view.fail(QStringLiteral("view names must differ and must not be empty"));
            }
            m_project.views.append(name);
        }
        if (m_project.views.isEmpty())
        {
            cursor->fail(QStringLiteral("a project needs at least one view"));
        }
    }

    void readGroups(JsonObject const& object)
    {
        JsonElements const elements = limitedElements(object, "groups", MAX_RECORDS);
        m_project.groups.reserve(elements.size());
        QHash<QString, int> indices;
        for (JsonCursor const& group : elements)
        {
            m_project.groups.push_back(readGroup(group, m_groupNames, m_project.clips.front()));
            indices.insert(m_project.groups.back().name, indices.size());
        }
        std::vector<int> parents;
        for (GroupModel const& group : m_project.groups)
        {
            parents.push_back(indices.value(group.parent, -1));
        }
        int index = 0;
        for (JsonCursor const& group : elements)
        {
            checkParents(group, index, parents);
            ++index;
        }
    }

    // Follows the parents up. Only where that goes too deep, whether it ends at all.
    void checkParents(JsonCursor const& cursor, int group, std::vector<int> const& parents) const
    {
        QString const& parent = m_project.groups[static_cast<std::size_t>(group)].parent;
        if (!parent.isEmpty() && parents[static_cast<std::size_t>(group)] < 0)
        {
            cursor.fail(QStringLiteral("there is no group \"%1\" to be the parent").arg(parent));
        }
        auto const endsWithin = [&](std::size_t most)
        {
            int above = group;
            for (std::size_t depth = 0; depth < most && above >= 0; ++depth)
            {
                above = parents[static_cast<std::size_t>(above)];
            }
            return above < 0;
        };
        if (!endsWithin(MAX_GROUP_DEPTH))
        {
            cursor.fail(endsWithin(parents.size())
                            ? QStringLiteral("groups lie in one another deeper than %1 levels").arg(MAX_GROUP_DEPTH)
                            : QStringLiteral("the group lies inside itself"));
        }
    }

    ClipModel const& clipOf(JsonObject const& object, QString const& name) const
    {
        auto const found = m_clipIndices.constFind(name);
        if (found == m_clipIndices.constEnd() && !name.isEmpty())
        {
            object.required("clip").fail(QStringLiteral("there is no clip \"%1\"").arg(name));
        }
        return m_project.clips[name.isEmpty() ? 0 : *found];
    }

    LayerModel readLayer(JsonCursor const& cursor)
    {
        JsonObject const object(cursor, {"name",          "clip",          "insertClip", "group",  "in",
                                         "out",           "hidden",        "selected",   "moving", "surface",
                                         "tracking",      "adjust",        "stabilize",  "invert", "blend",
                                         "colour",        "overlayColour", "contours",   "mesh",   "pose",
                                         "surfacePoints", "meshPoints"});
        LayerModel layer;
        JsonCursor const name = object.required("name");
        layer.name = name.string();
        if (layer.name.isEmpty())
        {
            name.fail(QStringLiteral("a name must not be empty"));
        }
        layer.clip = object.string("clip", QString());
        ClipModel const& clip = clipOf(object, layer.clip);
        layer.insertClip = object.string("insertClip", QString());
        if (!layer.insertClip.isEmpty() && !m_clipNames.contains(layer.insertClip))
        {
            object.required("insertClip").fail(QStringLiteral("there is no clip \"%1\"").arg(layer.insertClip));
        }
        layer.group = object.string("group", QString());
        if (!layer.group.isEmpty() && !m_groupNames.contains(layer.group))
        {
            object.required("group").fail(QStringLiteral("there is no group \"%1\"").arg(layer.group));
        }
        readLayerRange(object, layer, clip);
        layer.hidden = object.boolean("hidden", false);
        layer.selected = object.boolean("selected", false);
        layer.moving = object.boolean("moving", false);
        readSurface(object.required("surface"), layer, clip);
        readTracks(object, layer, clip);
        JsonElements const adjust = object.elements("adjust");
        layer.adjust.reserve(adjust.size());
        for (JsonCursor const& key : adjust)
        {
            layer.adjust.push_back(readAdjustKey(key, layer, clip));
        }
        if (std::optional<JsonCursor> const stabilize = object.optional("stabilize"))
        {
            layer.stabilize = readStabilize(*stabilize, clip);
        }
        readLayerShapes(object, layer, clip, m_project.views);
        readLayerObject(object, layer, clip);
        return layer;
    }

    static void readLayerRange(JsonObject const& object, LayerModel& layer, ClipModel const& clip)
    {
        layer.inPoint = object.optionalInteger("in", 0, clip.frameCount - 1);
        layer.outPoint = object.optionalInteger("out", 0, clip.frameCount - 1);
        if (layer.outPoint && *layer.outPoint < layer.inPoint.value_or(0))
        {
            object.required("out").fail(QStringLiteral("the layer ends before it starts"));
        }
    }

    void readTracks(JsonObject const& object, LayerModel& layer, ClipModel const& clip) const
    {
        QSet<QString> taken;
        for (JsonCursor const& cursor : object.elements("tracking"))
        {
            TrackModel track = readTrack(cursor, layer, clip);
            QString const view = track.view.isEmpty() ? m_project.views.front() : track.view;
            if (!m_project.views.contains(view))
            {
                cursor.fail(QStringLiteral("there is no view \"%1\"").arg(view));
            }
            if (taken.contains(view))
            {
                cursor.fail(QStringLiteral("the view \"%1\" has tracking data already").arg(view));
            }
            taken.insert(view);
            layer.tracks.push_back(std::move(track));
        }
    }

    void readState(JsonObject const& object)
    {
        int const lastFrame = m_project.clips.front().frameCount - 1;
        m_project.currentFrame = object.integer("currentFrame", 0, 0, lastFrame);
        m_project.currentLayer = readName(object, "currentLayer", "layer",
                                          [&](QString const& name)
                                          {
                                              for (LayerModel const& layer : m_project.layers)
                                              {
                                                  if (layer.name == name)
                                                  {
                                                      return true;
                                                  }
                                              }
                                              return false;
                                          });
        m_project.currentView = readName(object, "currentView", "view",
                                         [&](QString const& name) { return m_project.views.contains(name); });
        m_project.displayClip =
            readName(object, "displayClip", "clip", [&](QString const& name) { return m_clipNames.contains(name); });
        readRange(object, "playback", lastFrame, m_project.playbackIn, m_project.playbackOut);
        readRange(object, "trim", lastFrame, m_project.trimIn, m_project.trimOut);
    }

    static QString readName(JsonObject const& object, char const* key, char const* what,
                            std::function<bool(QString const&)> const& exists)
    {
        std::optional<JsonCursor> const cursor = object.optional(key);
        if (!cursor)
        {
            return QString();
        }
        QString const name = cursor->string();
        if (!exists(name))
        {
            cursor->fail(QStringLiteral("there is no %1 \"%2\"").arg(QLatin1String(what), name));
        }
        return name;
    }

    static void readRange(JsonObject const& object, char const* key, int lastFrame, std::optional<int>& first,
                          std::optional<int>& last)
    {
        std::optional<JsonCursor> const cursor = object.optional(key);
        if (!cursor)
        {
            return;
        }
        std::vector<double> const numbers = cursor->takeNumbers(2);
        for (double const number : numbers)
        {
            if (number < 0 || number > lastFrame || number != static_cast<int>(number))
            {
                cursor->fail(
                    QStringLiteral("%1 is not a frame of the first clip (0 to %2)").arg(number).arg(lastFrame));
            }
        }
        if (numbers[0] > numbers[1])
        {
            cursor->fail(QStringLiteral("the range ends before it starts"));
        }
        first = static_cast<int>(numbers[0]);
        last = static_cast<int>(numbers[1]);
    }

    ProjectModel m_project;
    QSet<QString> m_clipNames;
    QHash<QString, std::size_t> m_clipIndices;
    QSet<QString> m_groupNames;
};

}

ProjectModel readProject(QByteArray const& json, QString const& fileName)
{
    JsonTree tree(json, fileName);
    return ProjectReader().read(JsonCursor(tree));
}

ProjectModel readProjectFile(QString const& path)
{
    auto const refuse = [&](QString const& cause)
    { return KORV_BadFile(__FILE__, __LINE__, QStringLiteral("%1: %2").arg(path, cause), QString()); };

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
    {
        throw refuse(QStringLiteral("can't be opened (%1)").arg(file.errorString()));
    }
    if (file.size() > MAX_FILE_BYTES)
    {
        throw refuse(QStringLiteral("larger than %1 bytes").arg(MAX_FILE_BYTES));
    }
    QByteArray bytes = file.readAll();
    // An error behind the first bytes shows as missing ones only.
    if (file.error() != QFileDevice::NoError || bytes.size() < file.size())
    {
        throw refuse(QStringLiteral("can't be read (%1)").arg(file.errorString()));
    }
    JsonTree tree(bytes, path);
    bytes.clear();
    return ProjectReader().read(JsonCursor(tree));
}

}
