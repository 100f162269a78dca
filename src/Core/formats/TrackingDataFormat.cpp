#include "Core/DataFormat.h"

#include "Core/ExporterFactories.h"
#include "Core/formats/ExporterMap.h"
#include "Core/formats/FormatTable.h"
#include "Writing/ThrowHelpers.h"

#include <QStringList>

namespace Export
{

using namespace FormatTable;

namespace
{

/// A display name with the word that tells it apart from equal texts elsewhere.
struct TrackingName
{
    char const* text;
    char const* disambiguation;
};

QSet<QString> categories(char const* words)
{
    QStringList const list = QString::fromLatin1(words).split(QLatin1Char(' '));
    return QSet<QString>(list.begin(), list.end());
}

}

int TrackingDataFormat::s_enumCount = 0;

TrackingDataFormat::TrackingDataFormat()
    : TrackingDataFormat(QString(), QString(), QString(), QString(), QSet<QString>(), QFlags<ExportCapability>(), false,
                         0, BOTH)
{
}

TrackingDataFormat::TrackingDataFormat(QString const& displayName, QString const& internalName,
                                       QString const& extension, QString const& description,
                                       QSet<QString> const& options, QFlags<ExportCapability> capabilities,
                                       bool isLegacy, unsigned int numFiles, SaveOptions saveOptions)
    : DataFormatBase(s_enumCount++, displayName, internalName, extension, description, options, numFiles,
                     capabilities.testFlag(SeveralViews), true, isLegacy, saveOptions),
      m_capabilities(capabilities)
{
}

TrackingDataFormat::~TrackingDataFormat() = default;

QMap<QString, TrackingDataFormat> TrackingDataFormat::MAP_ALL(TXIHost const* host)
{
    QMap<QString, TrackingDataFormat> formats;
    TrackingExporterFactory::forEachFormat(
        [&formats](TrackingDataFormat const& format) { formats.insert(format.internalName(), format); }, host);
    return formats;
}

TrackingDataFormat TrackingDataFormat::byName(KORV_ProjectManager const& project, QString const& internalName)
{
    QMap<QString, TrackingDataFormat> const formats = MAP_ALL(hostOf(project));
    auto const found = formats.constFind(internalName);
    if (found == formats.constEnd())
    {
        throwBadArgument(tr("Invalid export format name"));
    }
    return *found;
}

// The built-in formats. The texts are translated when a format is first used and
// stay in that language.

#define FORMAT(accessor, key, name, extension, words, files, legacy, save, capabilities, description)                  \
    TrackingDataFormat const& TrackingDataFormat::accessor()                                                           \
    {                                                                                                                  \
        static TrackingName const displayName = name;                                                                  \
        static TrackingDataFormat const format(                                                                        \
            QCoreApplication::translate("TrackingDataFormat", displayName.text, displayName.disambiguation),           \
            QStringLiteral(key), QStringLiteral(extension),                                                            \
            QCoreApplication::translate("TrackingDataFormat", description), categories(words),                         \
            ExportCapabilities(QFlag(capabilities)), legacy, files, save);                                             \
        return format;                                                                                                 \
    }

// clang-format off
// accessor, key,
//     display name,
//     extension, categories, files, legacy, saving, capabilities,
//     description
FORMAT(AE_CORNER_PIN_LEGACY, "after_effects_cs3_corner_pin",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "After Effects CS3 Corner Pin", "TrackingDataFormat"),
       ".txt", "aftereffects-cs3", 1, LEGACY, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Corner Pin Data for older versions of After Effects."))
FORMAT(AE_TRANSFORM, "after_effects_transform",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "After Effects Transform Data", "TrackingDataFormat"),
       ".txt", "aftereffects", 1, CURRENT, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Transform Data for After Effects. Translation, Scale and Rotation."))
FORMAT(ALEMBIC_MESH, "alembic_2D_mesh",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Alembic 2D Mesh Data", "TrackingDataFormat"),
       ".abc", "alembic", 1, CURRENT, FILE_ONLY, 24,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "2D Alembic Mesh Data from WarpLattice tracks. Distorts control "
                                               "points in X/Y plane only."))
FORMAT(ALEMBIC_VERTEX_TRANSFORM, "alembic_2D_vertex",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Alembic 2D Vertex Transform", "TrackingDataFormat"),
       ".abc", "alembic", 1, CURRENT, FILE_ONLY, 24,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "2D Alembic Transform Data from WarpLattice tracks. Only vertex "
                                               "transforms, not meshes."))
FORMAT(FINALCUT_BASICMOTION, "final_cut_basic_motion",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Final Cut Basic Motion - 7.0.0", "TrackingDataFormat"),
       ".xml", "finalcut", 1, LEGACY, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Basic Motion Data for Apple Final Cut 7. This is a Legacy Format "
                                               "and is no longer supported."))
FORMAT(FINALCUT_DISTORT, "final_cut_distort",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Final Cut Distort - 7.0.0", "TrackingDataFormat"),
       ".xml", "finalcut", 1, LEGACY, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Distort Data for Apple Final Cut 7. This is a Legacy Format and "
                                               "is no longer supported."))
FORMAT(IFFFSE_POINTS, "flame_point_tracker",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Flame Point Tracker Data", "TrackingDataFormat"),
       ".ascii", "ifffse", 5, CURRENT, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Autodesk Flame Point Tracker Data."))
FORMAT(IFFFSE_POINTS_FLAME_2014, "flame_point_tracker_2014",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Flame Point Tracker Data - 2014.0.0", "TrackingDataFormat"),
       ".ascii", "ifffse", 5, CURRENT, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Autodesk Flame Point Tracker Data."))
FORMAT(AUTODESK_FLAME_AXIS, "flame_axis",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Flame Axis", "TrackingDataFormat"),
       ".mask", "ifffse", 1, CURRENT, FILE_ONLY, 32,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Autodesk Flame Axis Data."))
FORMAT(SHAKE_SCRIPT, "shake_tracking",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Shake Tracking Data", "TrackingDataFormat"),
       ".shk", "shake", 1, LEGACY, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Shape Tracking Data. This is a Legacy Format and is no longer "
                                               "supported."))
FORMAT(AVID_DS, "avid_ds_tracking",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Avid DS Tracking Data", "TrackingDataFormat"),
       ".fraw", "avid", 8, LEGACY, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Tracking Data for Avid DS Systems. This is a Legacy Format and is "
                                               "no longer supported."))
FORMAT(NUKE_ASCII, "nuke_ascii",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Nuke Ascii", "TrackingDataFormat"),
       ".txt", "nuke", 4, CURRENT, BOTH, 7,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Nuke Ascii Tracker Data."))
FORMAT(NUKE_CORNER_PIN, "nuke_corner_pin",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Nuke Corner Pin", "TrackingDataFormat"),
       ".nk", "nuke", 1, CURRENT, BOTH, 7,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Nuke Corner Pin Data."))
FORMAT(NUKE_TRACKER, "nuke_tracker",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Nuke Tracker Data - 7.0+", "TrackingDataFormat"),
       ".nk", "nuke", 1, CURRENT, BOTH, 7,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Nuke Tracker Data."))
FORMAT(NUKE_MESH_TRACKER, "nuke_warp_lattice_to_tracker",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Nuke WarpLattice to Tracker Data", "TrackingDataFormat"),
       ".nk", "nuke", 1, CURRENT, BOTH, 7,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Nuke Tracker Data. Creates a separate tracker per-vertex in a "
                                               "single Tracker node."))
FORMAT(XML_MATRICES, "xml_motion_matrix",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "XML Motion Matrix Data", "TrackingDataFormat"),
       ".xml", "generic", 1, CURRENT, BOTH, 6,
       "")
FORMAT(XML_CORNERPIN, "quantel_corner_pin",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Quantel Corner Pin Data", "TrackingDataFormat"),
       ".xml", "quantel", 1, LEGACY, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Quantel Corner Pin Data. This is a Legacy Format and is no longer "
                                               "supported."))
FORMAT(HITFILM_TRANSFORM_DATA, "hitfilm_transform",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "HitFilm Transform Data", "TrackingDataFormat"),
       ".hfcs", "hitfilm", 1, CURRENT, BOTH, 0,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "FxHome HitFilm Transform Data."))
FORMAT(HITFILM_CORNER_PIN_DATA, "hitfilm_corner_pin_with_motion_blur",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "HitFilm Corner Pin with Motion Blur", "TrackingDataFormat"),
       ".hfcs", "hitfilm", 1, CURRENT, BOTH, 0,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "FxHome HitFilm Corner Pin Data (Supports Motion Blur)."))
FORMAT(FUSION_COMP, "fusion_tracker",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Fusion Tracker Data", "TrackingDataFormat"),
       ".comp", "fusion", 1, CURRENT, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Blackmagic Fusion Tracker Data."))
FORMAT(AE_CORNER_PIN, "after_effects_corner_pin_with_motion_blur",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "After Effects Corner Pin with Motion Blur", "TrackingDataFormat"),
       ".txt", "aftereffects", 1, CURRENT, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Corner Pin Data for After Effects. Translation, Scale and "
                                               "Rotation keyframes are split out so Motion Blur can be applied."))
FORMAT(AE_POWER_PIN, "after_effects_cc_power_pin",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "After Effects CC Power Pin", "TrackingDataFormat"),
       ".txt", "aftereffects vegas", 1, CURRENT, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "CC Power Pin (Corner Pin) Data for After Effects."))
FORMAT(DORIN_CORNER_PIN, "vantarium_corner_pin",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Vantarium Corner Pin - 11.0.0", "TrackingDataFormat"),
       ".txt", "dorin vegas", 1, LEGACY, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Corner Pin Data for Dorin FX Vantarium. This is a Legacy Format "
                                               "and is no longer supported."))
FORMAT(DORIN_CENTER_POINT, "vantarium_center_point",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Vantarium Center Point - 11.0.0", "TrackingDataFormat"),
       ".txt", "dorin", 1, LEGACY, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Transform Data for Dorin FX Vantarium. This is a Legacy Format "
                                               "and is no longer supported."))
FORMAT(AE_CORNER_PIN_SIMPLE, "after_effects_corner_pin",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "After Effects Corner Pin", "TrackingDataFormat"),
       ".txt", "aftereffects vegas", 1, CURRENT, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Corner Pin Data for After Effects."))
FORMAT(MOTION_CORNER_PIN, "motion_corner_pin",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Motion Corner Pin", "TrackingDataFormat"),
       ".motn", "motion", 1, LEGACY, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Corner Pin Data for Apple Motion."))
FORMAT(MARLO_BLEND, "marlo_blend_tracking",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "MarloBlend Tracking Data", "TrackingDataFormat"),
       ".txt", "marloblend", 1, LEGACY, BOTH, 0,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "MarloBlend Tracking Data."))
FORMAT(MOTION_TRANSFORM, "motion_basic_transform",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Motion Basic Transform Data", "TrackingDataFormat"),
       ".motn", "motion", 1, LEGACY, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Transform Data for Apple Motion."))
FORMAT(IFFFSE_STABILIZER, "flame_stabilizer",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Flame Stabilizer Data", "TrackingDataFormat"),
       ".stabilizer", "ifffse", 1, CURRENT, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Autodesk Flame Stabilizer Data."))
FORMAT(IFFFSE_STABILIZER_FLAME_2014, "flame_stabilizer_2014",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Flame Point Stabilizer Data - 2014.0.0", "TrackingDataFormat"),
       ".stabilizer", "ifffse", 1, CURRENT, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Autodesk Flame Stabilizer Data."))
FORMAT(SCRATCH_CORNER_PIN, "scratch_corner_pin",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "SCRATCH Corner Pin Data", "TrackingDataFormat"),
       ".txt", "scratch", 1, CURRENT, BOTH, 6,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Assimilate SCRATCH Corner Pin Data."))
FORMAT(FLOWBOX_CORNER_PIN, "flowbox_corner_pin",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Flowbox Corner Pin", "TrackingDataFormat"),
       ".flowbox", "flowbox", 1, LEGACY, BOTH, 7,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Flowbox Corner Pin Data.  This is a Legacy Format and is no "
                                               "longer supported."))
FORMAT(GLIMMERSET_CORNER_PIN, "glimmerset_corner_pin",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Glimmerset Corner Pin", "TrackingDataFormat"),
       ".txt", "glimmerset vegas", 1, CURRENT, BOTH, 7,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Dorin FX Glimmerset Corner Pin Data."))
FORMAT(KESTRELIA_TRACKERS, "kestrelia_2D",
       QT_TRANSLATE_NOOP3("TrackingDataFormat", "Kestrelia 2D Tracker Data", "TrackingDataFormat"),
       ".kst", "kestrelia", 1, CURRENT, FILE_ONLY, 40,
       QT_TRANSLATE_NOOP("TrackingDataFormat", "Dorin FX Kestrelia 2D Tracker Data."))
// clang-format on

#undef FORMAT

}
