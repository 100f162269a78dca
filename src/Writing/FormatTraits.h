#pragma once

#include <QFlags>

namespace Export
{

/// Which of the user's choices an export of a format follows. The others change nothing in
/// its files.
enum FormatHonour
{
    /// One export holds all layers that were chosen, else the first or the current one.
    HonoursLayers = 1,

    /// One export holds all views that were chosen, else one.
    HonoursViews = 2,

    /// Which motion is exported: basic, adjusted, offset or stabilized.
    HonoursMotion = 4,
    HonoursInvert = 8,
    HonoursUndistort = 16,

    /// Which objects of the scene are exported.
    HonoursObjects = 32
};
Q_DECLARE_FLAGS(FormatHonours, FormatHonour)
Q_DECLARE_OPERATORS_FOR_FLAGS(FormatHonours)

/// What an export of a format is about: without it there is nothing to write.
enum FormatNeed
{
    NeedsTrack = 1,
    NeedsMesh = 2,
    NeedsContours = 4,
    NeedsSolve = 8,
    NeedsLens = 16
};
Q_DECLARE_FLAGS(FormatNeeds, FormatNeed)
Q_DECLARE_OPERATORS_FOR_FLAGS(FormatNeeds)

/// What a format of shapes holds of layers beside their outlines. A project that has what isn't
/// held loses it in the export.
enum FormatHold
{
    HoldsFeather = 1,

    /// Whether a layer is hidden.
    HoldsHidden = 2,
    HoldsGroups = 4,

    /// Layers of several clips, each in the size and the time of its own.
    HoldsSecondClips = 8,

    /// Lifetimes of layers of interlaced clips, in the time that their keys are in.
    HoldsFieldLifetimes = 16
};
Q_DECLARE_FLAGS(FormatHolds, FormatHold)
Q_DECLARE_OPERATORS_FOR_FLAGS(FormatHolds)

/// How an export says that it left something out, as its value isn't finite.
enum class LeftOut
{
    /// By a count or by messages.
    IsTold,

    /// Not at all: the result of its kind has no place for it.
    IsSilent
};

/// What an export makes of a layer without tracking data.
enum class Untracked
{
    /// A document without rows, and a message.
    IsTold,
    IsRefused,

    /// No file, and a message.
    HasNoFile
};

/// How many bytes an export takes at most, so that a hopeless one can be refused before
/// anything is computed. An export of any format is taken to have
///
///     layers x views x (perLayer + frames x (perFrame + pixels x perPixelFrame)
///                       + keyed points x perPoint + points x frames x perPointFrame)
///
/// bytes, of all its files together. Too little refuses nothing of what is too large, and too
/// much refuses what people need: a figure is the most that usual values take (numbers in
/// all their digits, names of usual length), not what the worst imaginable ones could.
///
/// What is counted:
/// - layers: those that one export holds; of formats of solves the camera and every object,
///   of lens formats the clip, as one.
/// - views: those that one export holds.
/// - frames: of the layer's range, fields in interlaced material; of formats of solves and
///   lenses those of the project.
/// - points: of what the format needs: control points of the contours (four for one of an
///   X-spline, which becomes so many Bezier points as a rule), vertices of the mesh, points of
///   the solve that move (a mesh's vertices among them; those at rest count as keyed ones only).
///   None for the others: corners are part of `perFrame`.
/// - keyed points: points times the frames in which contours of the layer are keyed, its first
///   and last one among them; once where nothing is keyed.
/// - pixels: of one picture of the clip.
///
/// There is no FormatBytes without figures: a row of the table that lacks it doesn't compile.
struct FormatBytes
{
    /// Of each frame of a layer in a view: its row or keys, whatever the number of points. No less
    /// than some hundred bytes, which the helpers take for a frame.
    double perFrame;

    /// Of each keyed point, once: what is written for keys or of the point itself.
    double perPoint;

    /// Of each point in each frame: where points are baked. 0 where none are.
    double perPointFrame;

    /// Once for each layer in each view: heads, names, knobs.
    double perLayer;

    /// Of each pixel of each frame, of formats that write pictures.
    double perPixelFrame;

    constexpr FormatBytes(double ofFrame, double ofPoint, double ofPointFrame, double ofLayer = 4096,
                          double ofPixelFrame = 0)
        : perFrame(ofFrame),
          perPoint(ofPoint),
          perPointFrame(ofPointFrame),
          perLayer(ofLayer),
          perPixelFrame(ofPixelFrame)
    {
    }
};

/// What a format declares about itself, beside its exporter in the table of its data kind.
/// Callers warn, skip or refuse by it; nothing of it changes what exporters write.
struct FormatTraits
{
    FormatHonours honours;
    FormatNeeds needs;

    /// Printable characters of a name (layer, contour, view) that would leave their field
    /// in the format's text. Control characters do in every format.
    char const* breaksField = "";

    /// How the user gets the files into the target program, a sentence or two.
    char const* wayIn = "";

    /// What the target can't hold or the text can't say, in sentences; the format's page has
    /// the details.
    char const* limits = "";

    /// How large its exports get.
    FormatBytes bytes;

    LeftOut leftOut = LeftOut::IsTold;
    Untracked untracked = Untracked::IsTold;

    /// Of shape formats; the other kinds have no use for it.
    FormatHolds holds{};
};

}
