#pragma once
// A project as plain records: what a project file says, and nothing computed.
// docs/project-file.md explains every field with its unit. Frames are host
// frames (fields in interlaced material), points are pixels with y up.

#include <QString>
#include <QStringList>

#include <array>
#include <optional>
#include <vector>

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

/// A place in the scene, at rest or keyed over ascending host frames: positions and
/// scales are linear between keys, rotations take the shortest way; held outside of them.
struct PoseModel
{
    /// Empty for a pose at rest, which has one sample or none (the origin).
    std::vector<int> frames;

    /// x, y, z for each sample; in scene units, relative to what it hangs on.
    std::vector<double> positions;

    /// Three angles in degrees for each sample, static order XYZ; empty for none.
    std::vector<double> rotations;

    /// A factor for each sample; empty for 1.
    std::vector<double> scales;
};

/// Solved points that move as one, and the mesh that they may form.
struct PointCloudModel
{
    /// Host frames of points that move by themselves; empty for points at rest.
    std::vector<int> frames;

    /// x, y, z of each point, and that for each of `frames`.
    std::vector<double> positions;

    /// One for each point; empty for numbered names.
    QStringList names;

    /// Ascending indices of points that nothing should be pinned to.
    std::vector<int> inaccurate;

    /// Vertices per face, and the vertices of all faces one after another.
    std::vector<int> faceCounts;
    std::vector<int> faceIndices;

    /// u and v of each point; empty for none.
    std::vector<double> uvs;

    int pointCount() const
    {
        std::size_t const samples = frames.empty() ? 1 : frames.size();
        return static_cast<int>(positions.size() / 3 / samples);
    }
};

struct FeatureSetModel
{
    QString name;

    /// Name of the layer that the points move with; empty for none.
    QString layer;
    bool hidden = false;
    bool selected = false;
    PointCloudModel points;
};

struct FileAssetModel
{
    QString path;

    /// Name of the layer that carries it; empty for none.
    QString layer;

    /// At rest.
    PoseModel pose{};
};

/// Numbers of a stereo rig, which moves as the camera says.
struct StereoModel
{
    bool converged = false;
    KeyedNumber separation;

    /// Degrees.
    KeyedNumber convergence;

    /// Pixels to the right, of the left and the right eye's picture.
    std::array<KeyedNumber, 2> shift;
};

struct CameraModel
{
    /// Without scales.
    PoseModel pose{};

    /// Millimetres.
    KeyedNumber focalLength{35.0, {}, {}};

    /// Millimetres; unset means that of the first clip.
    std::optional<double> filmBackWidth;
};

/// A camera solve. Right-handed, y up; a camera looks along -z with y up in its picture.
struct SolveModel
{
    /// Solved by an old version, whose axes and units some formats keep.
    bool legacy = false;
    int referenceFrame = 0;

    /// The pose that the user gave to the scene as a whole; at rest.
    PoseModel scene;
    CameraModel camera;

    /// Set when the camera is the middle of a stereo rig; the project has two views then.
    std::optional<StereoModel> stereo;
    std::vector<FeatureSetModel> features;

    /// What feature sets without a layer hang on; at rest.
    QString featureRootName = QStringLiteral("Static_auto_features");
    PoseModel featureRoot;
    std::vector<FileAssetModel> assets;
};

/// A contour at one frame. Numbers are pixels of the clip's raster as the contour lies in
/// the surface's reference frame, or as it is seen: for each vertex of a Bezier curve x, y, the handle that
/// arrives there and the handle that leaves (both relative to the vertex); for each point
/// of an X-spline x, y, weight.
struct ContourKeyModel
{
    int frame = 0;
    std::vector<double> points;

    /// The feather curve in the same form; empty where there is no feather.
    std::vector<double> feather;
};

struct ContourModel
{
    QString name;
    bool xspline = false;
    bool closed = true;
    bool active = true;

    /// Names of the views in which the outline comes from a Veil ML model.
    QStringList veilML;

    /// At least one, ascending, with as many vertices each; linear between them.
    std::vector<ContourKeyModel> keys;

    /// Whether the keys are as they are seen at their frames, in the first view. A project
    /// that is made of the records has them in the plane.
    bool inImage = false;

    /// Numbers that a vertex has in `points`.
    std::size_t stride() const
    {
        return xspline ? 3 : 6;
    }
};

/// Tracked positions of a mesh in one view: x and y in pixels of the clip's raster for each
/// vertex, and that for each of `frames`.
struct MeshTrackModel
{
    QString view;
    std::vector<int> frames;
    std::vector<double> positions;
};

/// A mesh that was tracked with a layer.
struct MeshModel
{
    int vertexCount = 0;
    std::vector<int> faceCounts;
    std::vector<int> faceIndices;
    std::vector<MeshTrackModel> tracks;
};

struct GroupModel
{
    QString name;

    /// Name of the group that holds this one; empty at the top.
    QString parent;
    bool hidden = false;
    bool selected = false;
    bool moving = false;

    /// As a moving object of the solve, relative to the group that holds it.
    PoseModel pose{};
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

    /// Whether what is outside of the contours belongs to the layer.
    bool invert = false;

    /// Whether the layer takes away from those below it.
    bool subtract = false;

    /// Red, green, blue, alpha, 0 to 255.
    std::array<int, 4> colour{255, 255, 255, 255};

    /// Of the outline; unset means `colour`.
    std::optional<std::array<int, 4>> overlayColour;

    /// In drawing order.
    std::vector<ContourModel> contours;
    std::optional<MeshModel> mesh;

    /// As an object of the solve, relative to the group that holds it; keyed only when the
    /// layer is moving, and relative to the scene when it isn't.
    PoseModel pose{};

    /// Solved points on the surface, and solved vertices of the mesh.
    std::optional<PointCloudModel> surfacePoints;
    std::optional<PointCloudModel> meshPoints;
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
    std::optional<SolveModel> solve;

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
