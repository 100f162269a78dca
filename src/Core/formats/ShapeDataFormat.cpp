#include "Core/DataFormat.h"

#include "Core/ExporterFactories.h"
#include "Core/formats/ExporterMap.h"
#include "Core/formats/FormatTable.h"
#include "Writing/ThrowHelpers.h"

namespace Export
{

using namespace FormatTable;

int ShapeDataFormat::s_enumCount = 0;

ShapeDataFormat::ShapeDataFormat(QString const& displayName, QString const& internalName, QString const& extension,
                                 QString const& category, QString const& description,
                                 QFlags<ExportCapability> capabilities, bool isLegacy, SaveOptions saveOptions)
    : DataFormatBase(s_enumCount++, displayName, internalName, extension, description, categorySet(category), 1,
                     capabilities.testFlag(SeveralViews), true, isLegacy, saveOptions),
      m_capabilities(capabilities)
{
}

ShapeDataFormat::~ShapeDataFormat() = default;

QMap<QString, ShapeDataFormat> ShapeDataFormat::MAP_ALL(TXIHost const* host)
{
    QMap<QString, ShapeDataFormat> formats;
    ShapeExporterFactory::forEachFormat(
        [&formats](ShapeDataFormat const& format) { formats.insert(format.internalName(), format); }, host);
    return formats;
}

ShapeDataFormat ShapeDataFormat::byName(KORV_ProjectManager const& project, QString const& internalName)
{
    QMap<QString, ShapeDataFormat> const formats = MAP_ALL(hostOf(project));
    auto const found = formats.constFind(internalName);
    if (found == formats.constEnd())
    {
        throwBadArgument(tr("Invalid export format name"));
    }
    return *found;
}

// The built-in formats.

#define FORMAT(accessor, key, name, extension, category, legacy, save, capabilities, description)                      \
    ShapeDataFormat const& ShapeDataFormat::accessor()                                                                 \
    {                                                                                                                  \
        static ShapeDataFormat const format(QStringLiteral(name), QStringLiteral(key), QStringLiteral(extension),      \
                                            QStringLiteral(category), QStringLiteral(description),                     \
                                            ExportCapabilities(QFlag(capabilities)), legacy, save);                    \
        return format;                                                                                                 \
    }

// clang-format off
// accessor, key, display name,
//     extension, category, legacy, saving, capabilities,
//     description
FORMAT(AE_MARLO_SHAPE, "after_effects_mask", "After Effects Mask Data",
       ".shape4ae", "aftereffects", CURRENT, BOTH, 13,
       "Mask data for After Effects. Import into After Effects using 'Paste Marlo Mask' in the After Effects Edit "
       "menu.")
FORMAT(SHAKE_SSF_SCRIPT, "shake_rotoshape", "Shake RotoShape",
       ".ssf", "shake", LEGACY, FILE_ONLY, 9,
       "Shake RotoShape Data.")
FORMAT(FLAME_GMASK_SCRIPT, "flame_gmask", "Flame Gmask Script",
       ".gmask", "ifffse", CURRENT, BOTH, 9,
       "Autodesk Flame Gmasks. Baked Keyframes.")
FORMAT(FLAME_TRACER_BASIC, "flame_tracer_basic", "Flame Tracer [Basic]",
       ".mask", "ifffse", CURRENT, FILE_ONLY, 9,
       "Autodesk Tracer Data. Baked Keyframes.")
FORMAT(FLAME_TRACER_SHAPE_AND_AXIS, "flame_tracer_shape_and_axis", "Flame Tracer [Shape & Axis]",
       ".mask", "ifffse", CURRENT, FILE_ONLY, 9,
       "Autodesk Flame Tracer Data. Separate tracking and shape animation keyframes.")
FORMAT(COMBUSTION_GMASK_SCRIPT, "combustion_gmask", "Combustion GMask Script",
       ".gmask", "combustion", LEGACY, BOTH, 9,
       "GMask for Autodesk Combution. This is a Legacy Format and is no longer supported.")
FORMAT(FC_MARLO_SHAPE, "final_cut_marlo_shape", "Final Cut Marlo Shape Data - 7.0.0",
       ".xml", "finalcut", LEGACY, BOTH, 9,
       "Shape Data for Final Cut 7. Requires the legacy plugin to import. This is a Legacy Format and is no "
       "longer supported.")
FORMAT(FUSION_SHAPE, "fusion_poly_shape", "Fusion Poly Shape Data",
       ".comp", "fusion", CURRENT, BOTH, 5,
       "Blackmagic Fusion Poly Data. Creates a separate node per shape.")
FORMAT(FUSION_MULTIPOLY_SHAPE, "fusion_multipoly_shape", "Fusion MultiPoly Shape Data",
       ".comp", "fusion", CURRENT, BOTH, 5,
       "Blackmagic Fusion 19+ MultiPoly Data.")
FORMAT(NUKE_ROTO_PAINT_WITH_MATRIX, "nuke_rotopaint_transform_and_shape", "Nuke RotoPaint [Transform & Shape] - 6.2+",
       ".nk", "nuke", CURRENT, BOTH, 15,
       "Nuke RotoPaint Data. Separate tracking and shape keyframes.")
FORMAT(NUKE_ROTO_PAINT_NO_MATRIX, "nuke_rotopaint_basic", "Nuke RotoPaint [Basic]",
       ".nk", "nuke", CURRENT, BOTH, 15,
       "Nuke RotoPaint Data. Baked Keyframes.")
FORMAT(NUKE_ROTO_WITH_MATRIX, "nuke_roto_transform_and_shape", "Nuke Roto [Transform & Shape]-6.2+",
       ".nk", "nuke", CURRENT, BOTH, 15,
       "Nuke Roto Data. Separate tracking and shape keyframes.")
FORMAT(NUKE_ROTO_NO_MATRIX, "nuke_roto_basic", "Nuke Roto [Basic]",
       ".nk", "nuke", CURRENT, BOTH, 15,
       "Nuke Roto Data. Baked Keyframes.")
FORMAT(NUKE_SPLINE_WARP, "nuke_splinewarp", "Nuke SplineWarp",
       ".nk", "nuke", CURRENT, BOTH, 15,
       "Nuke SplineWarp Data.")
FORMAT(HITFILM_WITH_MATRIX, "hitfilm_mask", "HitFilm Mask Data",
       ".hfcs", "hitfilm", CURRENT, BOTH, 5,
       "FxHome HitFilm Mask Data.")
FORMAT(MARLO_BLEND, "marlo_blend_shape", "MarloBlend Shape Data",
       ".txt", "marloblend", LEGACY, BOTH, 15,
       "MarloBlend Shape Data.")
FORMAT(GLIMMERSET_FXS, "glimmerset_shape", "Glimmerset Shape Data",
       ".fxs", "glimmerset", CURRENT, BOTH, 15,
       "Dorin FX Glimmerset Roto Shape Data.")
FORMAT(PREMIERE_SHAPE, "premiere_shape", "Premiere Shape Data",
       ".xml", "premiere", CURRENT, CLIPBOARD_ONLY, 9,
       "Adobe Premiere Shape Data.")
// clang-format on

#undef FORMAT

}
