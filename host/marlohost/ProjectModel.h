#pragma once
// A project as plain records: what a project file says, and nothing computed.
// docs/project-file.md explains every field with its unit. Frames are host
// frames (fields in interlaced material), points are pixels with y up.

#include <QList>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>
#include <vector>

#include <boost/shared_ptr.hpp>

namespace Korvane
{
class Contour;
}

namespace MarloHost
{

/// A number that stays, or that is keyed over host frames: linear between keys,
/// held outside of them.
struct KeyedNumber
{
    double value = 0.0;
    std::vector<int> frames;

    /// One per entry of `frames`; empty when the number isn't keyed.
    std::vector<double> values;
};

/// The lens of a clip; ClipLens.h says what the numbers do. Lengths are in heights
/// of the picture.
struct LensModel
{
    KeyedNumber focalLength{1.0, {}, {}};
    KeyedNumber centreX;
    KeyedNumber centreY;
    std::array<KeyedNumber, 3> radial;
    std::array<KeyedNumber, 2> tangential;
    KeyedNumber squeeze{1.0, {}, {}};
};

/// Where the frames of a clip come from.
struct FootageModel
{
    enum Kind
    {
        Sequence = 0,
        Movie = 1,
        Solid = 2
    };

    Kind kind = Solid;

    /// Folder of a sequence.
    QString directory;

    /// File name of a sequence around its index; of a movie the whole path is `file`.
    QString prefix;
    QString suffix;

    /// Digits of the index, filled up with zeros, and the index of host frame 0.
    int indexWidth = 0;
    int firstIndex = 0;
    QString file;
};

/// Size of what the picture was recorded on, in millimetres.
struct FilmBackModel
{
    double width = 36.0;
    double height = 24.0;
};

struct ClipModel
{
    QString name;

    /// Raster of a full frame; a field of interlaced material has half the lines.
    int width = 0;
    int height = 0;

    /// Width of a pixel divided by its height.
    double pixelAspect = 1.0;
    int frameCount = 0;

    /// Added to a host frame to show it; in host frames.
    int frameOffset = 0;
    bool interlaced = false;

    /// Which field of interlaced or pulled-down footage comes first.
    bool lowerFieldFirst = false;

    /// Position in the 3:2 pattern, 0 to 4; unset for footage without pulldown.
    std::optional<int> pulldown;
    FootageModel footage;

    /// Unset means 36 mm wide, and as high as the shape of the picture asks.
    std::optional<FilmBackModel> filmBack;

    /// Unset means a lens that distorts nothing.
    std::optional<LensModel> lens;
};

struct GroupModel
{
    QString name;

    /// Name of the group that holds this one; empty at the top.
    QString parent;
    bool hidden = false;
    bool selected = false;
    bool moving = false;
};

/// Homographies of one view: `homographies` holds nine numbers, row by row, for
/// each of `frames`, which ascend.
struct TrackModel
{
    QString view;
    std::vector<int> frames;
    std::vector<double> homographies;
};

/// Per-corner offsets that the user added at a frame: x and y of lower left,
/// lower right, upper left, upper right.
struct AdjustKeyModel
{
    int frame = 0;
    std::array<double, 8> offsets{};
};

struct StabilizeModel
{
    std::optional<int> rangeStart;
    std::optional<int> rangeEnd;
    std::vector<int> fixedFrames;
};

struct LayerModel
{
    QString name;

    /// Name of the clip that the layer was tracked on; empty means the first.
    QString clip;

    /// Name of the clip that is shown inside the surface; empty for none.
    QString insertClip;

    /// Name of the group that holds the layer; empty at the top.
    QString group;

    /// First and last frame of the layer; unset means those of the clip.
    std::optional<int> inPoint;
    std::optional<int> outPoint;
    bool hidden = false;
    bool selected = false;
    bool moving = false;

    /// Frame in which the surface corners were placed.
    int referenceFrame = 0;

    /// x and y of lower left, lower right, upper left, upper right.
    std::array<double, 8> corners{};

    /// One per view; a view without one has no tracking data.
    std::vector<TrackModel> tracks;
    std::vector<AdjustKeyModel> adjust;
    StabilizeModel stabilize;

    /// Contours that a program brings along; project files don't hold them yet.
    QList<boost::shared_ptr<Korvane::Contour const>> contours;
};

struct ProjectModel
{
    /// Frames (not fields) per second.
    double frameRate = 24.0;
    std::vector<ClipModel> clips;

    /// At least one; their order gives the view ids.
    QStringList views = {QStringLiteral("main")};
    std::vector<GroupModel> groups;

    /// From the top of the stack.
    std::vector<LayerModel> layers;

    int currentFrame = 0;

    /// Names; empty means none for the layer, the first for view and clip.
    QString currentLayer;
    QString currentView;
    QString displayClip;

    /// Playback range and trimmed range; unset means the first clip.
    std::optional<int> playbackIn;
    std::optional<int> playbackOut;
    std::optional<int> trimIn;
    std::optional<int> trimOut;
};

}
