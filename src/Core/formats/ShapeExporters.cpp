// Every exporter of shape data, with what its format declares about itself. A new one is a
// row here, in the order of the formats.

#include "Core/formats/ExporterTables.h"

#include "AfterEffects/MarloShapeAEExporter.h"
#include "Host/ShapeExporter.h"
#include "Legacy/KORV_ShakeSSFRotoShapeExporter.h"
#include "Nuke/MarloBlendExporter.h"
#include "Nuke/NukeRotoExporters.h"
#include "Premiere/PremiereShapeExporter.h"

namespace Export
{

namespace
{

constexpr FormatHonours IN_VIEWS(QFlag(HonoursLayers | HonoursViews));

constexpr FormatHolds MODES(QFlag(HoldsOpen | HoldsInvert | HoldsSubtract));
constexpr FormatHolds ROTO(QFlag(HoldsFeather | HoldsHidden | MODES));

// What ends a quoted name of the tree, and what means something to Tcl around it.
constexpr char TREE[] = "{}[]\"\\;$";

constexpr char PASTE_NODE[] = "Paste the text into the node graph, or open the file as a script.";
constexpr char BAKED[] =
    "Five significant digits and at most three decimals: 0.05 px from 1000 px on. A key for each frame; X-splines "
    "become Bezier curves.";
constexpr char WITH_MATRIX[] =
    "Five significant digits and at most three decimals: 0.05 px from 1000 px on. X-splines become Bezier curves.";

// A point of a contour, with its tangents, its feather and theirs, at a key or in a frame, and
// the matrix of a layer in a frame, in bytes. Masks hold eight rows of motion for each contour;
// contours that leave the picture are baked.
constexpr double ROTO_POINT = 12 * 50;
constexpr double ROTO_MATRIX = 640;
constexpr double MASK_POINT = 300;
// A mask's parameters count as those of its points.
constexpr FormatBytes PREMIERE_MASK(96, 2500, 40, 16384);
constexpr double FXS_POINT = 12 * 20;
constexpr double FXS_MATRIX = 9 * 24 + 64;
constexpr FormatBytes BAKED_ROTO(160, ROTO_POINT, ROTO_POINT);
constexpr FormatBytes KEYED_ROTO(ROTO_MATRIX, ROTO_POINT, 0);
constexpr FormatBytes MASK(160, MASK_POINT, MASK_POINT);
constexpr FormatBytes SHAKE_SHAPE(160, 0, 170);
constexpr FormatBytes FXS(FXS_MATRIX, FXS_POINT, 0);

}

// exporter, what it honours and needs, what breaks a field, the way in, limits, bytes, and at
// the end what it holds of layers
std::vector<ShapeRow> shapeRows()
{
    using F = ShapeDataFormat;
    using Row = ShapeRow;
    return {
        {&F::AE_MARLO_SHAPE,
         &Row::make<MarloShapeAEExporter>,
         {HonoursLayers, NeedsContours, "", "Copy the text and paste it with Paste Marlo Mask in the Edit menu.",
          "Six significant digits; one view; contours that leave 30000 px around the picture are baked; rows that "
          "aren't finite are left out without a word.",
          MASK, LeftOut::IsSilent, Untracked::IsTold, HoldsFeather | HoldsFieldLifetimes | MODES}},
        {&F::SHAKE_SSF_SCRIPT,
         &Row::make<KORV_ShakeSSFRotoShapeExporter>,
         {HonoursLayers, NeedsContours, "", "Load the file into a RotoShape node.",
          "Four decimals; one view; a key for each frame, in all shapes from the first frame of any layer to the last; "
          "X-splines become Bezier curves, open ones are closed; no inversion and no subtraction.",
          SHAKE_SHAPE, LeftOut::IsTold, Untracked::IsTold, HoldsFeather | HoldsFieldLifetimes}},
        {&F::NUKE_ROTO_PAINT_WITH_MATRIX,
         &Row::make<NukeRotoPaintExporter, true>,
         {IN_VIEWS, NeedsContours, TREE, PASTE_NODE, WITH_MATRIX, KEYED_ROTO, LeftOut::IsTold, Untracked::IsTold,
          ROTO}},
        {&F::NUKE_ROTO_PAINT_NO_MATRIX,
         &Row::make<NukeRotoPaintExporter, false>,
         {IN_VIEWS, NeedsContours, TREE, PASTE_NODE, BAKED, BAKED_ROTO, LeftOut::IsTold, Untracked::IsTold, ROTO}},
        {&F::NUKE_ROTO_WITH_MATRIX,
         &Row::make<NukeRotoExporter, true>,
         {IN_VIEWS, NeedsContours, TREE, PASTE_NODE, WITH_MATRIX, KEYED_ROTO, LeftOut::IsTold, Untracked::IsTold,
          ROTO}},
        {&F::NUKE_ROTO_NO_MATRIX,
         &Row::make<NukeRotoExporter, false>,
         {IN_VIEWS, NeedsContours, TREE, PASTE_NODE, BAKED, BAKED_ROTO, LeftOut::IsTold, Untracked::IsTold, ROTO}},
        {&F::NUKE_SPLINE_WARP,
         &Row::make<NukeSplineWarpExporter>,
         {IN_VIEWS, NeedsContours, TREE, PASTE_NODE, WITH_MATRIX, KEYED_ROTO, LeftOut::IsTold, Untracked::IsTold,
          ROTO}},
        {&F::MARLO_BLEND,
         &Row::make<MarloBlendExporter, false>,
         {IN_VIEWS, NeedsContours, TREE, "Load the file with the blending plug-in.", BAKED, BAKED_ROTO, LeftOut::IsTold,
          Untracked::IsTold, ROTO}},
        {&F::GLIMMERSET_FXS,
         &Row::make<Korvane::GlimmersetShapeExporter>,
         {IN_VIEWS, NeedsContours, "", "Open the file in Glimmerset.",
          "No frames that stand in for others are marked; Veil ML contours are refused.", FXS, LeftOut::IsTold,
          Untracked::IsTold, HoldsFeather | HoldsSecondClips | HoldsFieldLifetimes | MODES}},
        {&F::PREMIERE_SHAPE,
         &Row::make<Premiere::ShapeExporter>,
         {HonoursLayers, NeedsContours, "", "Copy, select a clip in the sequence and paste.",
          "Single-precision fractions of the picture; one view; a key for each frame; X-splines become Bezier curves; "
          "the pasted clip is a dummy of 1920 x 1080.",
          PREMIERE_MASK, LeftOut::IsTold, Untracked::IsTold, HoldsInvert}},
    };
}

}
