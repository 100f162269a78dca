// Every exporter of camera solves, with what its format declares about itself. A new one is
// a row here, in the order of the formats.

#include "Core/formats/ExporterTables.h"

#include "AfterEffects/AE3DMotionExporter.h"
#include "FBX/FBX3DExporterMaya.h"
#include "FBX/FBX3DExporterNuke.h"
#include "Host/CameraSolveExporter.h"
#include "Interchange/AlembicCameraSolveExporter.h"
#include "Interchange/KestreliaSolveExporter.h"
#include "Interchange/USDCameraSolveExporter.h"

namespace Export
{

namespace
{

constexpr char PASTE_CAMERA[] =
    "Copy the text and paste it with Paste Marlo Camera in the Edit menu, which the importer plug-in adds.";

constexpr char IMPORT_FILE[] = "Import the file (File, Import).";
constexpr FormatHonours OBJECTS_IN_VIEWS(QFlag(HonoursObjects | HonoursViews));

// Position, rotation and scale of a moving object in a frame, and a null that stands still, in
// bytes.
constexpr double POSE_ROWS = 200;
constexpr double STILL_NULL = 700;
constexpr FormatBytes SCENE_TEXT(POSE_ROWS, STILL_NULL, POSE_ROWS);
// The poses of camera, screen and trackers and the lens; a transform with its name, at rest or moving.
constexpr FormatBytes ALEMBIC_SCENE(1024, 512, 64, 32768);

// Of a matchmove project: twelve numbers in all their digits for a pose and two for the lens,
// and a tracker with its name, or a line of three numbers; as much again for vertices.
constexpr double POSE_LINES = 330;
constexpr double STILL_TRACKER = 200;
constexpr double POINT_LINE = 130;
constexpr FormatBytes MATCHMOVE(POSE_LINES, STILL_TRACKER, POINT_LINE);

constexpr char IMPORT_STAGE[] = "Reference the file, or import it, as any USD file.";

// A sample of a full transform, a prim with its name, and a sample of a position with the vertex
// that it may be.
constexpr FormatBytes STAGE_TEXT(280, 600, 160);

// Nine keys with their times, a pyramid with its mesh, and of a layer its node, its meshes and a
// share of what every file has: definitions, the camera, materials.
constexpr double POSE_KEYS = 200;
constexpr double PYRAMID = 4000;
constexpr double FBX_LAYER = 40000;
constexpr FormatBytes SCENE_FBX(POSE_KEYS, PYRAMID, POSE_KEYS, FBX_LAYER);

}

// exporter, what it honours and needs, what breaks a field, the way in, limits, bytes. The
// row of KestreliaProjectFile is to end in `true`: that format is offered whatever the product's
// categories are.
std::vector<CameraSolveRow> cameraSolveRows()
{
    using F = CameraSolveFormat;
    using Row = CameraSolveRow;
    return {
        {&F::AE,
         &Row::make<AE3DMotionExporter, 2>,
         {HonoursObjects, NeedsSolve, "", PASTE_CAMERA,
          "Six significant digits; one eye of a stereo pair; no lens; nulls are tied to their parents by name.",
          SCENE_TEXT}},
        {&F::AE_legacy,
         &Row::make<AE3DMotionExporter, 1>,
         {HonoursObjects, NeedsSolve, "", PASTE_CAMERA,
          "Six significant digits; one eye of a stereo pair; no lens; nulls without hierarchy.", SCENE_TEXT}},
        {&F::FBX_NUKE,
         &Row::make<FBX3DExporterNuke>,
         {HonoursObjects, NeedsSolve, "", "Choose the file in a Camera, Axis or ReadGeo node (read from file).",
          "Rates of FBX only; keys are single floats; one eye of a stereo pair; no lens; meshes at one frame; the far "
          "plane is at 10000, nearer than many points.",
          SCENE_FBX}},
        {&F::FBX_MAYA6,
         &Row::make<FBX3DExporterMaya6>,
         {OBJECTS_IN_VIEWS, NeedsSolve, "", IMPORT_FILE,
          "Rates of FBX only; keys are single floats; no lens; meshes at one frame; many programs read later versions "
          "only.",
          SCENE_FBX}},
        {&F::FBX_MAYA7,
         &Row::make<FBX3DExporterMaya7>,
         {OBJECTS_IN_VIEWS, NeedsSolve, "", IMPORT_FILE,
          "Rates of FBX only; keys are single floats; no lens; meshes at one frame.", SCENE_FBX}},
        {&F::USD,
         &Row::make<USDCameraSolveExporter>,
         {HonoursObjects, NeedsSolve, "", IMPORT_STAGE,
          "One camera, that of the rig in stereo; no lens; angles and mesh vertices are single floats; names keep only "
          "letters and digits.",
          STAGE_TEXT}},
        {&F::KestreliaProjectFile,
         &Row::make<KestreliaSolveExporter>,
         {HonoursObjects, NeedsSolve, "", "Open the file as a project.",
          "One eye of a stereo pair; no lens; the fields of interlaced material are frames, at the rate of frames.",
          MATCHMOVE},
         true},
        {&F::Alembic,
         &Row::make<AlembicCameraSolveExporter>,
         {HonoursObjects, NeedsSolve, "", "Import the file as Alembic.",
          "The rig's own camera of a solve in stereo; points as transforms; vertices of meshes are single floats; no "
          "lens.",
          ALEMBIC_SCENE}},
    };
}

}
