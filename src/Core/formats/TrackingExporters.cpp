// Every exporter of tracking data, with what its format declares about itself. A new one is
// a row here, in the order of the formats.

#include "Core/formats/ExporterTables.h"

#include "AfterEffects/AECornerPinExporters.h"
#include "AfterEffects/AETransformExporter.h"
#include "Autodesk/KORV_IFFFSEPointsExporter.h"
#include "Autodesk/KORV_IFFFSEStabilizerExporter.h"
#include "Fusion/FusionCompExporter.h"
#include "Host/TrackingExporter.h"
#include "Interchange/AlembicMeshExporter.h"
#include "Interchange/AlembicVertexTransformExporter.h"
#include "Interchange/Kestrelia2DTrackersExporter.h"
#include "Legacy/KORV_AvidDSExporter.h"
#include "Legacy/KORV_ShakeScriptExporter.h"
#include "Nuke/MarloBlendTrackingExporter.h"
#include "Nuke/NukeAsciiExporter.h"
#include "Nuke/NukeCornerPinExporter.h"
#include "Nuke/NukeMeshExporter.h"
#include "Nuke/NukeTrackerExporter.h"
#include "XML/XmlCornerPinExporter.h"
#include "XML/XmlMatricesExporter.h"

namespace Export
{

namespace
{

constexpr FormatHonours MOTION(QFlag(HonoursMotion | HonoursInvert | HonoursUndistort));
constexpr FormatHonours MOTION_IN_VIEWS(QFlag(HonoursMotion | HonoursInvert | HonoursUndistort | HonoursViews));

// What means something to Tcl, whose words Nuke's scripts are made of.
constexpr char TCL[] = "{}[]\"\\;$";

// What means something to XML, in texts that are written as they are.
constexpr char MARKUP[] = "<>&";

constexpr char PASTE_KEYFRAMES[] =
    "Copy the text and paste it onto a layer, with the current time at the start of the clip.";
constexpr char PASTE_NODE[] = "Paste the text into the node graph, or open the file as a script.";

constexpr char ALEMBIC_LIMITS[] = "Single floats; the mesh as it was tracked, without UVs; its camera doesn't see it; "
                                  "pixels count as square, and lines "
                                  "of fields as lines.";
constexpr char LOAD_TRACKERS[] = "Load each file into the tracker of its number.";
constexpr char LOAD_STABILIZER[] = "Load the setup in the stabilizer's menu.";

constexpr char TRACKER_LIMITS[] = "Two decimals; one view; fields are half frames.";
constexpr char STABILIZER_LIMITS[] =
    "Six significant digits; one view; the centre has no tracker; fields are half frames.";
constexpr char SIX_DIGITS[] = "Six significant digits.";
constexpr char PIN_LIMITS[] = "Six significant digits; pins of interlaced material land one field height low.";
constexpr char CURVE_LIMITS[] =
    "Six significant digits; frames are whole numbers below 16777217, so that the two fields of a frame share one.";

// A row of keyframe text, "\t1001\t1234.56\t789.012\t\n", and a key of a curve,
// " x1001 1234.56", in bytes.
constexpr double KEYFRAME_ROW = 44;
constexpr double CURVE_KEY = 20;
constexpr FormatBytes FUSION_PATHS(4 * 150, 0, 0, 8192);
constexpr FormatBytes SHAKE_KEYS(3 * 8 * 16, 0, 0, 8192);
constexpr FormatBytes RAW_CURVES(8 * 40, 0, 0);
constexpr FormatBytes MATRIX_ELEMENTS(700, 0, 0);
constexpr FormatBytes CORNER_ELEMENTS(820, 0, 0);
constexpr FormatBytes PIN_ROWS(4 * KEYFRAME_ROW, 0, 0);
constexpr FormatBytes FLAME_LINES(5 * 30, 0, 0);
constexpr FormatBytes STABILIZER_KEYS(4 * 2 * 130, 0, 0, 12000);
constexpr FormatBytes TRANSFORM_ROWS(3 * KEYFRAME_ROW, 0, 0);
constexpr FormatBytes PIN_CURVES(4 * 2 * CURVE_KEY, 0, 0);
constexpr FormatBytes MESH_CURVES(4 * CURVE_KEY, 512, 2 * CURVE_KEY);

// A line of a tracker, "    image 1001 1234.5678901234567 789.0123456789012", for each of four.
constexpr FormatBytes TRACKER_LINES(4 * 60, 0, 0);

// Arrays of single floats; transforms of double ones, each with a place in a table.
constexpr FormatBytes ALEMBIC_POINTS(256, 64, 12, 16384);
constexpr FormatBytes ALEMBIC_TRANSFORMS(64, 1024, 64, 16384);

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
        {&F::ALEMBIC_MESH,
         &Row::make<AlembicMeshExporter>,
         {FormatHonours(), NeedsMesh, "", "Import the file as Alembic.", ALEMBIC_LIMITS, ALEMBIC_POINTS}},
        {&F::ALEMBIC_VERTEX_TRANSFORM,
         &Row::make<AlembicVertexTransformExporter>,
         {FormatHonours(), NeedsMesh, "", "Import the file as Alembic.", ALEMBIC_LIMITS, ALEMBIC_TRANSFORMS}},
        {&F::IFFFSE_POINTS,
         &Row::make<KORV_IFFFSEPointsExporter>,
         {MOTION, NeedsTrack, "", LOAD_TRACKERS, TRACKER_LIMITS, FLAME_LINES}},
        {&F::IFFFSE_POINTS_FLAME_2014,
         &Row::make<KORV_IFFFSEPointsExporterFlame2014>,
         {MOTION, NeedsTrack, "", LOAD_TRACKERS, TRACKER_LIMITS, FLAME_LINES}},
        {&F::SHAKE_SCRIPT,
         &Row::make<KORV_ShakeScriptExporter>,
         {MOTION, NeedsTrack, "",
          "Open the file as a script or paste the text into the node view, and connect the inputs of the node that is "
          "wanted.",
          "Six significant digits; one view; the match move has more corners than those that Shake saves; interlaced "
          "material in field lines.",
          SHAKE_KEYS}},
        {&F::AVID_DS,
         &Row::make<KORV_AvidDSExporter>,
         {MOTION, NeedsTrack, "", "Load each of the eight curves into the parameter that its name says.",
          "Six significant digits, also of times; one view; y in lines of square pixels by the clip that is shown.",
          RAW_CURVES}},
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
        {&F::XML_MATRICES,
         &Row::make<KORV_XmlMatricesExporter>,
         {HonoursMotion | HonoursInvert, NeedsTrack, MARKUP, "By programs that read the matrices.",
          "Six significant digits; one view, over the span that is tracked in the first one; plain motion counts from "
          "the surface's reference frame; the lens stays on; frame and file numbers of interlaced material count "
          "fields.",
          MATRIX_ELEMENTS, LeftOut::IsTold, Untracked::IsRefused}},
        {&F::XML_CORNERPIN,
         &Row::make<KORV_XmlCornerPinExporter>,
         {MOTION, NeedsTrack, MARKUP, "Load the file as the corner pin of the effect.",
          "Six significant digits; one view; frame numbers without the clip's offset, halves for fields.",
          CORNER_ELEMENTS}},
        {&F::FUSION_COMP,
         &Row::make<KORV_FusionCompExporter>,
         {MOTION, NeedsTrack, "", "Open the file as a composition.",
          "Six significant digits; one view; ranges start at the clip's offset, in fields where keys are in frames; "
          "the path of a corner that never moves has shares that read nan.",
          FUSION_PATHS}},
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
        {&F::IFFFSE_STABILIZER,
         &Row::make<KORV_IFFFSEStabilizerExporter>,
         {MOTION, NeedsTrack, "", LOAD_STABILIZER, STABILIZER_LIMITS, STABILIZER_KEYS}},
        {&F::IFFFSE_STABILIZER_FLAME_2014,
         &Row::make<KORV_IFFFSEStabilizerExporterFlame2014>,
         {MOTION, NeedsTrack, "", LOAD_STABILIZER, STABILIZER_LIMITS, STABILIZER_KEYS}},
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
