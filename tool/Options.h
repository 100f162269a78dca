#pragma once
// What the command line says, before anything is looked up in a project.

#include "FrameRange.h"
#include "marlohost/ColmapModel.h"
#include "marlohost/CornerTable.h"

#include "Host/CameraSolveExporter.h"
#include "Host/ExportEnums.h"

#include <QSize>
#include <QString>
#include <QStringList>

#include <optional>

/// What `export` and `all` let the user choose about the data.
struct ExportChoices
{
    /// A layer by name, or a mode; neither takes the current layer or the only one.
    std::optional<QString> layer;
    std::optional<ZN::LayerExportMode> layers;
    bool eachLayer = false;

    KV::CameraSolveExporter::ObjectsToExport objects = KV::CameraSolveExporter::AllObjects;
    ZN_TRACKING_OPTION track = ZN_TRACKING_OPTION_ADJUSTED;
    bool invert = false;
    bool undistort = false;

    /// A number as users see it.
    std::optional<double> referenceFrame;
    std::optional<FrameRange> frames;

    /// Names; "all" means all. Empty means the current view.
    QStringList views;

    /// Name; unset means the displayed clip.
    std::optional<QString> clip;

    /// KEY=VALUE as given.
    QStringList formatOptions;

    /// The options that were given and that only some kinds of formats know, as
    /// the user writes them.
    QStringList given;
};

/// How `export` and `all` write.
struct WritingChoices
{
    std::optional<QString> output;
    bool overwrite = false;
    bool strict = false;
    bool dryRun = false;

    /// Frames that stand in for others are no failures.
    bool acceptGaps = false;

    /// Write names that leave their field in the text.
    bool unsafeNames = false;

    /// The files that the command reads, onto which nothing is written.
    QStringList inputs;
};

/// Where the commands below `import` write.
struct ImportTarget
{
    QString project;
    bool overwrite = false;
};

struct CornerImportChoices
{
    /// Path, or "-" for standard input.
    QString table;
    ImportTarget target;
    MarloHost::CornerImport import;

    /// Number of the first frame; unset means the table's.
    std::optional<int> start;
};

struct ColmapImportChoices
{
    QString folder;
    ImportTarget target;
    MarloHost::ColmapImport import;
};

/// What `batch` and `preset` say about the presets file. What a stored export holds is
/// in ExportChoices, with two differences: the reference frame is a host frame, and
/// views are ids.
struct PresetChoices
{
    QString file;

    /// Of the preset to change.
    QString name;

    /// Of the presets to run; empty means all.
    QStringList names;
};

struct Options
{
    enum Command
    {
        Formats,
        Info,
        Export,
        All,
        Batch,
        PresetList,
        PresetAdd,
        PresetRemove,
        ImportCorners,
        ImportColmap
    };

    Command command = Formats;
    QString language = QStringLiteral("en");
    bool json = false;
    bool quiet = false;
    bool verbose = false;

    /// Word of a data kind, or empty for all.
    QString kind;
    QString project;
    QString format;
    ExportChoices choices;
    WritingChoices writing;
    PresetChoices presets;
    CornerImportChoices corners;
    ColmapImportChoices colmap;
};

/// Reads the command line.
/// @return empty when only help or the version was asked for; `text` is then what to print
/// @throws Failure as wrong usage
std::optional<Options> parseOptions(int argc, char const* const* argv, QString& text);
