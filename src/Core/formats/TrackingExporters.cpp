// Every exporter of tracking data, with what its format declares about itself. A new one is
// a row here, in the order of the formats.

#include "Core/formats/ExporterTables.h"

#include "AfterEffects/AECornerPinExporters.h"
#include "AfterEffects/AETransformExporter.h"
#include "Host/TrackingExporter.h"
#include "Interchange/Kestrelia2DTrackersExporter.h"
#include "Nuke/MarloBlendTrackingExporter.h"
#include "Nuke/NukeAsciiExporter.h"
#include "Nuke/NukeCornerPinExporter.h"
#include "Nuke/NukeMeshExporter.h"
#include "Nuke/NukeTrackerExporter.h"

namespace Export
{

namespace
{

constexpr FormatHonours MOTION(QFlag(HonoursMotion | HonoursInvert | HonoursUndistort));
constexpr FormatHonours MOTION_IN_VIEWS(QFlag(HonoursMotion | HonoursInvert | HonoursUndistort | HonoursViews));

// What means something to Tcl, whose words Nuke's scripts are made of.
constexpr char TCL[] = "{}[]\"\\;$";

constexpr char PASTE_KEYFRAMES[] =
    "Copy the text and paste it onto a layer, with the current time at the start of the clip.";
constexpr char PASTE_NODE[] = "Paste the text into the node graph, or open the file as a script.";

constexpr char SIX_DIGITS[] = "Six significant digits.";
constexpr char PIN_LIMITS[] = "Six significant digits; pins of interlaced material land one field height low.";
constexpr char CURVE_LIMITS[] =
    "Six significant digits; frames are whole numbers below 16777217, so that the two fields of a frame share one.";

// A row of keyframe text, "\t1001\t1234.56\t789.012\t\n", and a key of a curve,
// " x1001 1234.56", in bytes.
constexpr double KEYFRAME_ROW = 44;
constexpr double CURVE_KEY = 20;
constexpr FormatBytes PIN_ROWS(4 * KEYFRAME_ROW, 0, 0);
constexpr FormatBytes TRANSFORM_ROWS(3 * KEYFRAME_ROW, 0, 0);
constexpr FormatBytes PIN_CURVES(4 * 2 * CURVE_KEY, 0, 0);
constexpr FormatBytes MESH_CURVES(4 * CURVE_KEY, 512, 2 * CURVE_KEY);

// A line of a tracker, "    image 1001 1234.5678901234567 789.0123456789012", for each of four.
constexpr FormatBytes TRACKER_LINES(4 * 60, 0, 0);

}

// exporter, what it honours and needs, what breaks a field, the way in, limits, bytes
std::vector<TrackingRow> trackingRows()
{
    using F = TrackingDataFormat;
    using Row = TrackingRow;
    return {
        {&F::AE_CORNER_PIN_LEGACY,
         &Row::make<AELegacyCornerPinExporter>,
         {MOTION, NeedsTrack, "", PASTE_KEYFRAMES, PIN_LIMITS, PIN_ROWS}},
        {&F::AE_TRANSFORM,
         &Row::make<AETransformExporter>,
         {MOTION, NeedsTrack, "", PASTE_KEYFRAMES, SIX_DIGITS, TRANSFORM_ROWS}},
        {&F::NUKE_ASCII,
         &Row::make<NukeAsciiExporter>,
         {MOTION_IN_VIEWS, NeedsTrack, "",
          "Import each file into a track of a Tracker node (Import ascii), which asks for the first frame.",
          "Six significant digits; no frame numbers; every other field of interlaced material, in field lines.",
          PIN_ROWS}},
        {&F::NUKE_CORNER_PIN,
         &Row::make<NukeCornerPinExporter>,
         {MOTION_IN_VIEWS, NeedsTrack, TCL, PASTE_NODE, CURVE_LIMITS, PIN_CURVES}},
        {&F::NUKE_TRACKER,
         &Row::make<NukeTrackerExporter>,
         {MOTION_IN_VIEWS, NeedsTrack, TCL, PASTE_NODE, CURVE_LIMITS, PIN_CURVES}},
        {&F::NUKE_MESH_TRACKER,
         &Row::make<NukeMeshExporter>,
         {HonoursViews, NeedsTrack | NeedsMesh, TCL, PASTE_NODE,
          "Six significant digits; the mesh as it was tracked; meshes of interlaced material move at half their "
          "speed.",
          MESH_CURVES}},
        {&F::AE_CORNER_PIN,
         &Row::make<AECornerPinExporter>,
         {MOTION, NeedsTrack, "", PASTE_KEYFRAMES, PIN_LIMITS, PIN_ROWS}},
        {&F::AE_POWER_PIN,
         &Row::make<AEPowerPinExporter>,
         {MOTION, NeedsTrack, "", PASTE_KEYFRAMES, PIN_LIMITS, PIN_ROWS}},
        {&F::DORIN_CORNER_PIN,
         &Row::make<VNTCornerPinExporter>,
         {MOTION, NeedsTrack, "", "Copy the text and paste it onto the effect.",
          "Six significant digits; whole frames only; pins of interlaced material land one field height low.",
          PIN_ROWS}},
        {&F::DORIN_CENTER_POINT,
         &Row::make<KORV_VNTCenterPointExporter>,
         {MOTION, NeedsTrack, "", "Copy the text and paste it onto the effect.",
          "Six significant digits; the centre alone, at whole frames; one field height high in interlaced material.",
          PIN_ROWS}},
        {&F::AE_CORNER_PIN_SIMPLE,
         &Row::make<AESimpleCornerPinExporter, false, false>,
         {MOTION, NeedsTrack, "", PASTE_KEYFRAMES, PIN_LIMITS, PIN_ROWS}},
        {&F::MARLO_BLEND,
         &Row::make<MarloBlendTrackingExporter>,
         {MOTION, NeedsTrack, "", "Load the file with the blending plug-in.", PIN_LIMITS, PIN_ROWS}},
        {&F::SCRATCH_CORNER_PIN,
         &Row::make<ScratchCornerPinExporter>,
         {MOTION, NeedsTrack, "", "Copy the text and paste it onto the layer.", PIN_LIMITS, PIN_ROWS}},
        {&F::FLOWBOX_CORNER_PIN,
         &Row::make<NukeCornerPinExporter>,
         {MOTION_IN_VIEWS, NeedsTrack, TCL, "Paste the text into Flowbox.", CURVE_LIMITS, PIN_CURVES}},
        {&F::GLIMMERSET_CORNER_PIN,
         &Row::make<GlimmersetCornerPinExporter>,
         {MOTION, NeedsTrack, "", "Copy the text and paste it onto the layer.",
          "Six significant digits; one view; pins of interlaced material land one field height low.", PIN_ROWS}},
        {&F::KESTRELIA_TRACKERS,
         &Row::make<Kestrelia2DTrackersExporter>,
         {HonoursLayers, NeedsTrack, "", "Open the file as a project.",
          "Corners as they were tracked and adjusted, with the lens; one view; layers whose pictures have "
          "one size; the fields of interlaced material are frames, at the rate of frames.",
          TRACKER_LINES, LeftOut::IsTold, Untracked::HasNoFile}},
    };
}

}
