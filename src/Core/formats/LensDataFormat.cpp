#include "Core/DataFormat.h"

#include "Core/formats/FormatTable.h"

#include <utility>

namespace Export
{

using namespace FormatTable;

int LensDataFormat::s_enumCount = 0;

LensDataFormat::LensDataFormat(QString const& displayName, QString const& internalName, QString const& extension,
                               QString const& category, QString customDataTypeName, unsigned int numFiles,
                               SaveOptions saveOptions)
    : DataFormatBase(s_enumCount++, displayName, internalName, extension, QString(), QSet<QString>{category}, numFiles,
                     false, false, CURRENT, saveOptions),
      m_customDataTypeName(std::move(customDataTypeName))
{
}

LensDataFormat::~LensDataFormat() = default;

QString const& LensDataFormat::customDataTypeName() const
{
    return m_customDataTypeName;
}

// The built-in formats. The display names are translated when a format is first
// used and stay in that language.

#define FORMAT(accessor, key, name, extension, category, files, save, customDataType)                                  \
    LensDataFormat const& LensDataFormat::accessor()                                                                   \
    {                                                                                                                  \
        static LensDataFormat const format(tr(name), QStringLiteral(key), QStringLiteral(extension),                   \
                                           QStringLiteral(category), QStringLiteral(customDataType), files, save);     \
        return format;                                                                                                 \
    }

// clang-format off
// accessor, key,
//     display name,
//     extension, category, files, saving, custom data type
FORMAT(OSTRANDER_XML, "marlo_xml",
       QT_TRANSLATE_NOOP("Export::LensDataFormat", "Marlo XML Lens Data"),
       ".lens", "None", 1, BOTH, "Korvane::LensMetadata")
FORMAT(MARLO_LENS_AE, "after_effects_marlo_lens",
       QT_TRANSLATE_NOOP("Export::LensDataFormat", "Marlo Lens for After Effects"),
       ".marloLens", "AfterEffects", 1, BOTH, "")
FORMAT(DISTORTION_MAP_CLIP, "distortion_map",
       QT_TRANSLATE_NOOP("Export::LensDataFormat", "Distortion Map Clip"),
       "", "STMap", 0, FILE_ONLY, "Korvane::STMapExportParams")
// clang-format on

#undef FORMAT

QMap<QString, LensDataFormat> const& LensDataFormat::FORMATS_BY_NAME()
{
    static QMap<QString, LensDataFormat> const formats = []
    {
        QMap<QString, LensDataFormat> all;
        for (LensDataFormat const* format : {&OSTRANDER_XML(), &MARLO_LENS_AE(), &DISTORTION_MAP_CLIP()})
        {
            all.insert(format->internalName(), *format);
        }
        return all;
    }();
    return formats;
}

}
