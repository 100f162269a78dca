#include "Core/DataFormat.h"

#include "Core/ExporterFactories.h"
#include "Core/formats/FormatTable.h"

namespace Export
{

using namespace FormatTable;

int CameraSolveFormat::s_enumCount = 0;

CameraSolveFormat::CameraSolveFormat(QString const& displayName, QString const& internalName, QString const& extension,
                                     QString const& description, QString const& category, unsigned int numFiles,
                                     QFlags<FormatFlag> flags, SaveOptions saveOptions, bool isLegacy)
    : DataFormatBase(s_enumCount++, displayName, internalName, extension, description, categorySet(category), flags,
                     numFiles, isLegacy, saveOptions)
{
}

CameraSolveFormat::~CameraSolveFormat() = default;

QMap<QString, CameraSolveFormat> CameraSolveFormat::MAP_ALL()
{
    QMap<QString, CameraSolveFormat> formats;
    CameraSolveExporterFactory::forEachFormat([&formats](CameraSolveFormat const& format)
                                              { formats.insert(format.internalName(), format); });
    return formats;
}

// The built-in formats. The texts are translated when a format is first used and
// stay in that language.

#define FORMAT(accessor, key, name, extension, category, files, flags, save, legacy, description)                      \
    CameraSolveFormat const& CameraSolveFormat::accessor()                                                             \
    {                                                                                                                  \
        static CameraSolveFormat const format(                                                                         \
            QCoreApplication::translate("CameraSolveFormat", name), QStringLiteral(key), QStringLiteral(extension),    \
            QCoreApplication::translate("CameraSolveFormat", description), QStringLiteral(category), files,            \
            FormatFlags(QFlag(flags)), save, legacy);                                                                  \
        return format;                                                                                                 \
    }

// clang-format off
// accessor, key,
//     display name,
//     extension, category, files, flags, saving, legacy,
//     description
FORMAT(AE, "after_effects_3D_motion",
       QT_TRANSLATE_NOOP("CameraSolveFormat", "After Effects 3D Motion Data"),
       ".txt", "aftereffects", 1, 12, BOTH, CURRENT,
       QT_TRANSLATE_NOOP("CameraSolveFormat", "3D Transform Camera Solve Data for After Effects. Generates 3D "
                                              "nulls with transform hierarchy from the 'Paste Marlo Camera' "
                                              "option in the After Effects edit menu."))
FORMAT(AE_legacy, "after_effects_3D_motion_pre_2025",
       QT_TRANSLATE_NOOP("CameraSolveFormat", "After Effects 3D Motion Data - pre-2025"),
       ".txt", "aftereffects", 1, 12, BOTH, LEGACY,
       QT_TRANSLATE_NOOP("CameraSolveFormat", "3D Transform Camera Solve Data for After Effects. Generates 3D "
                                              "nulls in world space from the 'Paste Marlo Camera' option in the "
                                              "After Effects edit menu. Compatible with all versions of the After "
                                              "Effects plugin; not recommended for moving objects with many nulls."))
FORMAT(FBX_NUKE, "fbx_for_nuke",
       QT_TRANSLATE_NOOP("CameraSolveFormat", "FBX 3D Data for Nuke - 7.7.0"),
       ".fbx", "fbx", 1, 12, FILE_ONLY, CURRENT,
       QT_TRANSLATE_NOOP("CameraSolveFormat", "3D FBX Camera Solve Data for Nuke. Version 7.7.0. A special FBX "
                                              "export for Nuke due to a different axis orientation."))
FORMAT(FBX_MAYA6, "fbx_6_1_0",
       QT_TRANSLATE_NOOP("CameraSolveFormat", "FBX 3D Data - 6.1.0"),
       ".fbx", "fbx", 1, 13, FILE_ONLY, LEGACY,
       QT_TRANSLATE_NOOP("CameraSolveFormat", "3D FBX Camera Solve Data. Version 6.1.0."))
FORMAT(FBX_MAYA7, "fbx_7_7_0",
       QT_TRANSLATE_NOOP("CameraSolveFormat", "FBX 3D Data - 7.7.0"),
       ".fbx", "fbx", 1, 13, FILE_ONLY, CURRENT,
       QT_TRANSLATE_NOOP("CameraSolveFormat", "3D FBX Camera Solve Data. Version 7.7.0."))
FORMAT(HIT_FILM, "hitfilm_3D",
       QT_TRANSLATE_NOOP("CameraSolveFormat", "HitFilm 3D Data"),
       ".hfcs", "hitfilm", 1, 8, FILE_ONLY, CURRENT,
       QT_TRANSLATE_NOOP("CameraSolveFormat", "FxHome HitFilm 3D Camera Solve Data."))
FORMAT(USD, "usd",
       QT_TRANSLATE_NOOP("CameraSolveFormat", "USD 3D Data"),
       ".usda", "usd", 1, 12, FILE_ONLY, CURRENT,
       QT_TRANSLATE_NOOP("CameraSolveFormat", "USD 3D Camera Solve Data."))
FORMAT(KestreliaProjectFile, "kestrelia_3D",
       QT_TRANSLATE_NOOP("CameraSolveFormat", "Kestrelia 3D Data"),
       ".kst", "kestrelia", 1, 12, FILE_ONLY, CURRENT,
       QT_TRANSLATE_NOOP("CameraSolveFormat", "Dorin FX Kestrelia 3D Camera Solve Data."))
FORMAT(Alembic, "alembic_3D",
       QT_TRANSLATE_NOOP("CameraSolveFormat", "Alembic 3D Data"),
       ".abc", "alembic", 1, 13, FILE_ONLY, CURRENT,
       QT_TRANSLATE_NOOP("CameraSolveFormat", "3D Alembic Camera Solve Data"))
// clang-format on

#undef FORMAT

}
