#include "Core/DataFormat.h"

namespace Export
{

namespace
{

FormatFlags flagsOf(bool holdsSeveralViews, bool belongsToLayers)
{
    FormatFlags flags;
    flags.setFlag(HoldsSeveralViews, holdsSeveralViews);
    flags.setFlag(BelongsToLayers, belongsToLayers);
    return flags;
}

}

DataFormatBase::DataFormatBase(int id, QString const& displayName, QString const& internalName,
                               QString const& extension, QString const& description, QSet<QString> const& options,
                               unsigned int numFiles, bool holdsSeveralViews, bool belongsToLayers, bool isLegacy,
                               SaveOptions saveOptions)
    : DataFormatBase(id, displayName, internalName, extension, description, options,
                     flagsOf(holdsSeveralViews, belongsToLayers), numFiles, isLegacy, saveOptions)
{
}

DataFormatBase::DataFormatBase(int id, QString const& displayName, QString const& internalName,
                               QString const& extension, QString const& description, QSet<QString> const& options,
                               QFlags<FormatFlag> flags, unsigned int numFiles, bool isLegacy, SaveOptions saveOptions)
    : m_id(id),
      m_displayName(displayName),
      m_internalName(internalName),
      m_options(options),
      m_extension(extension),
      m_description(description),
      m_numFiles(numFiles),
      m_flags(flags),
      m_isLegacy(isLegacy),
      m_saveOptions(saveOptions)
{
}

DataFormatBase::~DataFormatBase() = default;

}
