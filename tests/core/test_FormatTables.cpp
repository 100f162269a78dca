// What every format is called, where it is offered and how it may be saved, in literal words.

#include "Core/DataFormat.h"
#include "CoreFixtures.h"
#include "Host/Product.h"

using namespace Export;

namespace
{

using T = TrackingDataFormat;
using S = ShapeDataFormat;
using C = CameraSolveFormat;
using L = LensDataFormat;

template <typename Format>
struct Row
{
    Format const& (*accessor)();

    /// Key, display name, extension, categories in alphabetical order; then the number of files,
    /// legacy, saving (1 clipboard, 2 file), flags and capabilities; a lens format's type of data.
    char const* fields;
    char const* description;
};

Row<T> const TRACKING[] = {
    {&T::AE_CORNER_PIN_LEGACY,
     "after_effects_cs3_corner_pin | After Effects CS3 Corner Pin | .txt | aftereffects-cs3 | 1 1 3 2 6",
     "Corner Pin Data for older versions of After Effects."},
    {&T::AE_TRANSFORM, "after_effects_transform | After Effects Transform Data | .txt | aftereffects | 1 0 3 2 6",
     "Transform Data for After Effects. Translation, Scale and Rotation."},
    {&T::ALEMBIC_MESH, "alembic_2D_mesh | Alembic 2D Mesh Data | .abc | alembic | 1 0 2 2 24",
     "2D Alembic Mesh Data from WarpLattice tracks. Distorts control points in X/Y plane only."},
    {&T::ALEMBIC_VERTEX_TRANSFORM, "alembic_2D_vertex | Alembic 2D Vertex Transform | .abc | alembic | 1 0 2 2 24",
     "2D Alembic Transform Data from WarpLattice tracks. Only vertex transforms, not meshes."},
    {&T::FINALCUT_BASICMOTION, "final_cut_basic_motion | Final Cut Basic Motion - 7.0.0 | .xml | finalcut | 1 1 3 2 6",
     "Basic Motion Data for Apple Final Cut 7. This is a Legacy Format and is no longer supported."},
    {&T::FINALCUT_DISTORT, "final_cut_distort | Final Cut Distort - 7.0.0 | .xml | finalcut | 1 1 3 2 6",
     "Distort Data for Apple Final Cut 7. This is a Legacy Format and is no longer supported."},
    {&T::IFFFSE_POINTS, "flame_point_tracker | Flame Point Tracker Data | .ascii | ifffse | 5 0 3 2 6",
     "Autodesk Flame Point Tracker Data."},
    {&T::IFFFSE_POINTS_FLAME_2014,
     "flame_point_tracker_2014 | Flame Point Tracker Data - 2014.0.0 | .ascii | ifffse | 5 0 3 2 6",
     "Autodesk Flame Point Tracker Data."},
    {&T::AUTODESK_FLAME_AXIS, "flame_axis | Flame Axis | .mask | ifffse | 1 0 2 2 32", "Autodesk Flame Axis Data."},
    {&T::SHAKE_SCRIPT, "shake_tracking | Shake Tracking Data | .shk | shake | 1 1 3 2 6",
     "Shape Tracking Data. This is a Legacy Format and is no longer supported."},
    {&T::AVID_DS, "avid_ds_tracking | Avid DS Tracking Data | .fraw | avid | 8 1 3 2 6",
     "Tracking Data for Avid DS Systems. This is a Legacy Format and is no longer supported."},
    {&T::NUKE_ASCII, "nuke_ascii | Nuke Ascii | .txt | nuke | 4 0 3 3 7", "Nuke Ascii Tracker Data."},
    {&T::NUKE_CORNER_PIN, "nuke_corner_pin | Nuke Corner Pin | .nk | nuke | 1 0 3 3 7", "Nuke Corner Pin Data."},
    {&T::NUKE_TRACKER, "nuke_tracker | Nuke Tracker Data - 7.0+ | .nk | nuke | 1 0 3 3 7", "Nuke Tracker Data."},
    {&T::NUKE_MESH_TRACKER, "nuke_warp_lattice_to_tracker | Nuke WarpLattice to Tracker Data | .nk | nuke | 1 0 3 3 7",
     "Nuke Tracker Data. Creates a separate tracker per-vertex in a single Tracker node."},
    {&T::XML_MATRICES, "xml_motion_matrix | XML Motion Matrix Data | .xml | generic | 1 0 3 2 6", ""},
    {&T::XML_CORNERPIN, "quantel_corner_pin | Quantel Corner Pin Data | .xml | quantel | 1 1 3 2 6",
     "Quantel Corner Pin Data. This is a Legacy Format and is no longer supported."},
    {&T::HITFILM_TRANSFORM_DATA, "hitfilm_transform | HitFilm Transform Data | .hfcs | hitfilm | 1 0 3 2 0",
     "FxHome HitFilm Transform Data."},
    {&T::HITFILM_CORNER_PIN_DATA,
     "hitfilm_corner_pin_with_motion_blur | HitFilm Corner Pin with Motion Blur | .hfcs | hitfilm | 1 0 3 2 0",
     "FxHome HitFilm Corner Pin Data (Supports Motion Blur)."},
    {&T::FUSION_COMP, "fusion_tracker | Fusion Tracker Data | .comp | fusion | 1 0 3 2 6",
     "Blackmagic Fusion Tracker Data."},
    {&T::AE_CORNER_PIN,
     "after_effects_corner_pin_with_motion_blur | After Effects Corner Pin with Motion Blur | .txt | aftereffects | 1 "
     "0 3 2 6",
     "Corner Pin Data for After Effects. Translation, Scale and Rotation keyframes are split out so Motion Blur can be "
     "applied."},
    {&T::AE_POWER_PIN,
     "after_effects_cc_power_pin | After Effects CC Power Pin | .txt | aftereffects vegas | 1 0 3 2 6",
     "CC Power Pin (Corner Pin) Data for After Effects."},
    {&T::DORIN_CORNER_PIN, "vantarium_corner_pin | Vantarium Corner Pin - 11.0.0 | .txt | dorin vegas | 1 1 3 2 6",
     "Corner Pin Data for Dorin FX Vantarium. This is a Legacy Format and is no longer supported."},
    {&T::DORIN_CENTER_POINT, "vantarium_center_point | Vantarium Center Point - 11.0.0 | .txt | dorin | 1 1 3 2 6",
     "Transform Data for Dorin FX Vantarium. This is a Legacy Format and is no longer supported."},
    {&T::AE_CORNER_PIN_SIMPLE,
     "after_effects_corner_pin | After Effects Corner Pin | .txt | aftereffects vegas | 1 0 3 2 6",
     "Corner Pin Data for After Effects."},
    {&T::MOTION_CORNER_PIN, "motion_corner_pin | Motion Corner Pin | .motn | motion | 1 1 3 2 6",
     "Corner Pin Data for Apple Motion."},
    {&T::MARLO_BLEND, "marlo_blend_tracking | MarloBlend Tracking Data | .txt | marloblend | 1 1 3 2 0",
     "MarloBlend Tracking Data."},
    {&T::MOTION_TRANSFORM, "motion_basic_transform | Motion Basic Transform Data | .motn | motion | 1 1 3 2 6",
     "Transform Data for Apple Motion."},
    {&T::IFFFSE_STABILIZER, "flame_stabilizer | Flame Stabilizer Data | .stabilizer | ifffse | 1 0 3 2 6",
     "Autodesk Flame Stabilizer Data."},
    {&T::IFFFSE_STABILIZER_FLAME_2014,
     "flame_stabilizer_2014 | Flame Point Stabilizer Data - 2014.0.0 | .stabilizer | ifffse | 1 0 3 2 6",
     "Autodesk Flame Stabilizer Data."},
    {&T::SCRATCH_CORNER_PIN, "scratch_corner_pin | SCRATCH Corner Pin Data | .txt | scratch | 1 0 3 2 6",
     "Assimilate SCRATCH Corner Pin Data."},
    {&T::FLOWBOX_CORNER_PIN, "flowbox_corner_pin | Flowbox Corner Pin | .flowbox | flowbox | 1 1 3 3 7",
     "Flowbox Corner Pin Data.  This is a Legacy Format and is no longer supported."},
    {&T::GLIMMERSET_CORNER_PIN, "glimmerset_corner_pin | Glimmerset Corner Pin | .txt | glimmerset vegas | 1 0 3 3 7",
     "Dorin FX Glimmerset Corner Pin Data."},
    {&T::KESTRELIA_TRACKERS, "kestrelia_2D | Kestrelia 2D Tracker Data | .kst | kestrelia | 1 0 2 2 40",
     "Dorin FX Kestrelia 2D Tracker Data."},
};

Row<S> const SHAPES[] = {
    {&S::AE_MARLO_SHAPE, "after_effects_mask | After Effects Mask Data | .shape4ae | aftereffects | 1 0 3 2 13",
     "Mask data for After Effects. Import into After Effects using 'Paste Marlo Mask' in the After Effects Edit menu."},
    {&S::SHAKE_SSF_SCRIPT, "shake_rotoshape | Shake RotoShape | .ssf | shake | 1 1 2 2 9", "Shake RotoShape Data."},
    {&S::FLAME_GMASK_SCRIPT, "flame_gmask | Flame Gmask Script | .gmask | ifffse | 1 0 3 2 9",
     "Autodesk Flame Gmasks. Baked Keyframes."},
    {&S::FLAME_TRACER_BASIC, "flame_tracer_basic | Flame Tracer [Basic] | .mask | ifffse | 1 0 2 2 9",
     "Autodesk Tracer Data. Baked Keyframes."},
    {&S::FLAME_TRACER_SHAPE_AND_AXIS,
     "flame_tracer_shape_and_axis | Flame Tracer [Shape & Axis] | .mask | ifffse | 1 0 2 2 9",
     "Autodesk Flame Tracer Data. Separate tracking and shape animation keyframes."},
    {&S::COMBUSTION_GMASK_SCRIPT, "combustion_gmask | Combustion GMask Script | .gmask | combustion | 1 1 3 2 9",
     "GMask for Autodesk Combution. This is a Legacy Format and is no longer supported."},
    {&S::FC_MARLO_SHAPE, "final_cut_marlo_shape | Final Cut Marlo Shape Data - 7.0.0 | .xml | finalcut | 1 1 3 2 9",
     "Shape Data for Final Cut 7. Requires the legacy plugin to import. This is a Legacy Format and is no longer "
     "supported."},
    {&S::FUSION_SHAPE, "fusion_poly_shape | Fusion Poly Shape Data | .comp | fusion | 1 0 3 2 5",
     "Blackmagic Fusion Poly Data. Creates a separate node per shape."},
    {&S::FUSION_MULTIPOLY_SHAPE, "fusion_multipoly_shape | Fusion MultiPoly Shape Data | .comp | fusion | 1 0 3 2 5",
     "Blackmagic Fusion 19+ MultiPoly Data."},
    {&S::NUKE_ROTO_PAINT_WITH_MATRIX,
     "nuke_rotopaint_transform_and_shape | Nuke RotoPaint [Transform & Shape] - 6.2+ | .nk | nuke | 1 0 3 3 15",
     "Nuke RotoPaint Data. Separate tracking and shape keyframes."},
    {&S::NUKE_ROTO_PAINT_NO_MATRIX, "nuke_rotopaint_basic | Nuke RotoPaint [Basic] | .nk | nuke | 1 0 3 3 15",
     "Nuke RotoPaint Data. Baked Keyframes."},
    {&S::NUKE_ROTO_WITH_MATRIX,
     "nuke_roto_transform_and_shape | Nuke Roto [Transform & Shape]-6.2+ | .nk | nuke | 1 0 3 3 15",
     "Nuke Roto Data. Separate tracking and shape keyframes."},
    {&S::NUKE_ROTO_NO_MATRIX, "nuke_roto_basic | Nuke Roto [Basic] | .nk | nuke | 1 0 3 3 15",
     "Nuke Roto Data. Baked Keyframes."},
    {&S::NUKE_SPLINE_WARP, "nuke_splinewarp | Nuke SplineWarp | .nk | nuke | 1 0 3 3 15", "Nuke SplineWarp Data."},
    {&S::HITFILM_WITH_MATRIX, "hitfilm_mask | HitFilm Mask Data | .hfcs | hitfilm | 1 0 3 2 5",
     "FxHome HitFilm Mask Data."},
    {&S::MARLO_BLEND, "marlo_blend_shape | MarloBlend Shape Data | .txt | marloblend | 1 1 3 3 15",
     "MarloBlend Shape Data."},
    {&S::GLIMMERSET_FXS, "glimmerset_shape | Glimmerset Shape Data | .fxs | glimmerset | 1 0 3 3 15",
     "Dorin FX Glimmerset Roto Shape Data."},
    {&S::PREMIERE_SHAPE, "premiere_shape | Premiere Shape Data | .xml | premiere | 1 0 1 2 9",
     "Adobe Premiere Shape Data."},
};

Row<C> const CAMERAS[] = {
    {&C::AE, "after_effects_3D_motion | After Effects 3D Motion Data | .txt | aftereffects | 1 0 3 12 0",
     "3D Transform Camera Solve Data for After Effects. Generates 3D nulls with transform hierarchy from the 'Paste "
     "Marlo Camera' option in the After Effects edit menu."},
    {&C::AE_legacy,
     "after_effects_3D_motion_pre_2025 | After Effects 3D Motion Data - pre-2025 | .txt | aftereffects | 1 1 3 12 0",
     "3D Transform Camera Solve Data for After Effects. Generates 3D nulls in world space from the 'Paste Marlo "
     "Camera' option in the After Effects edit menu. Compatible with all versions of the After Effects plugin; not "
     "recommended for moving objects with many nulls."},
    {&C::FBX_NUKE, "fbx_for_nuke | FBX 3D Data for Nuke - 7.7.0 | .fbx | fbx | 1 0 2 12 0",
     "3D FBX Camera Solve Data for Nuke. Version 7.7.0. A special FBX export for Nuke due to a different axis "
     "orientation."},
    {&C::FBX_MAYA6, "fbx_6_1_0 | FBX 3D Data - 6.1.0 | .fbx | fbx | 1 1 2 13 0",
     "3D FBX Camera Solve Data. Version 6.1.0."},
    {&C::FBX_MAYA7, "fbx_7_7_0 | FBX 3D Data - 7.7.0 | .fbx | fbx | 1 0 2 13 0",
     "3D FBX Camera Solve Data. Version 7.7.0."},
    {&C::HIT_FILM, "hitfilm_3D | HitFilm 3D Data | .hfcs | hitfilm | 1 0 2 8 0",
     "FxHome HitFilm 3D Camera Solve Data."},
    {&C::USD, "usd | USD 3D Data | .usda | usd | 1 0 2 12 0", "USD 3D Camera Solve Data."},
    {&C::KestreliaProjectFile, "kestrelia_3D | Kestrelia 3D Data | .kst | kestrelia | 1 0 2 12 0",
     "Dorin FX Kestrelia 3D Camera Solve Data."},
    {&C::Alembic, "alembic_3D | Alembic 3D Data | .abc | alembic | 1 0 2 13 0", "3D Alembic Camera Solve Data"},
};

Row<L> const LENSES[] = {
    {&L::OSTRANDER_XML, "marlo_xml | Marlo XML Lens Data | .lens | None | 1 0 3 0 0 | Korvane::LensMetadata", ""},
    {&L::MARLO_LENS_AE,
     "after_effects_marlo_lens | Marlo Lens for After Effects | .marloLens | AfterEffects | 1 0 3 0 0 | ", ""},
    {&L::DISTORTION_MAP_CLIP,
     "distortion_map | Distortion Map Clip |  | STMap | 0 0 2 0 0 | Korvane::STMapExportParams", ""},
};

int capabilitiesOf(DataFormatBase const& format)
{
    auto const* const tracking = dynamic_cast<T const*>(&format);
    auto const* const shape = dynamic_cast<S const*>(&format);
    return tracking ? int(tracking->capabilities()) : shape ? int(shape->capabilities()) : 0;
}

QString fieldsOf(DataFormatBase const& format)
{
    QStringList categories = format.options().values();
    categories.sort();
    int const saving = (format.supportsSaveToClipboard() ? 1 : 0) + (format.supportsSaveToFile() ? 2 : 0);
    QStringList numbers;
    for (int const number :
         {int(format.numFiles()), format.isLegacy() ? 1 : 0, saving, int(format.flags()), capabilitiesOf(format)})
    {
        numbers += QString::number(number);
    }
    QStringList fields{format.internalName(), format.displayName(), format.extension(), categories.join(' '),
                       numbers.join(' ')};
    if (auto const* const lens = dynamic_cast<L const*>(&format))
    {
        fields += lens->customDataTypeName();
    }
    return fields.join(" | ");
}

template <typename Format, std::size_t count>
void expectFormats(Row<Format> const (&rows)[count], QSet<QString> const& offered)
{
    for (Row<Format> const& row : rows)
    {
        Format const& format = row.accessor();
        EXPECT_EQ(fieldsOf(format), QString(row.fields));
        EXPECT_EQ(format.description(), QString(row.description)) << row.fields;
        EXPECT_TRUE(offered.contains(format.options())) << row.fields;
    }
}

TEST(FormatTables, HoldWhatUsersPresetsAndDialogsSee)
{
    expectFormats(TRACKING, Product::trackExportOptions());
    expectFormats(SHAPES, Product::shapeExportOptions());
    expectFormats(CAMERAS, Product::cameraSolveExportOptions());
    expectFormats(LENSES, {"None", "AfterEffects", "STMap"});
    EXPECT_EQ(L::FORMATS_BY_NAME().keys(), (QStringList{"after_effects_marlo_lens", "distortion_map", "marlo_xml"}));
}

}
