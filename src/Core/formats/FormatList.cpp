#include "Core/FormatList.h"

#include "Core/ExporterFactories.h"
#include "Core/LensExporter.h"
#include "Core/formats/ExporterTables.h"

#include <QHash>

namespace Export
{

namespace
{

using TraitsByKey = QHash<QString, FormatTraits>;

template <typename Rows>
void addTraits(TraitsByKey& traits, Rows const& rows)
{
    for (auto const& row : rows)
    {
        traits.insert(row.format().internalName(), row.traits);
    }
}

TraitsByKey const& declaredTraits()
{
    static TraitsByKey const declared = []
    {
        TraitsByKey traits;
        addTraits(traits, trackingRows());
        addTraits(traits, shapeRows());
        addTraits(traits, cameraSolveRows());
        addTraits(traits, lensRows());
        return traits;
    }();
    return declared;
}

/// Of a format that declares nothing: what is refused by it is hopeless in any format.
constexpr FormatBytes UNKNOWN(32, 0, 16);

FormatTraits usualTraits(FormatKind kind)
{
    switch (kind)
    {
    case FormatKind::Tracking:
        return {HonoursMotion | HonoursInvert | HonoursUndistort, NeedsTrack, "", "", "", UNKNOWN};
    case FormatKind::Shape:
        return {HonoursLayers, NeedsContours, "", "", "", UNKNOWN, LeftOut::IsTold, Untracked::IsTold, HoldsFeather};
    case FormatKind::Camera:
        return {HonoursObjects, NeedsSolve, "", "", "", UNKNOWN};
    case FormatKind::Lens:
        break;
    }
    return {{}, NeedsLens, "", "", "", UNKNOWN};
}

/// @param entry without traits as yet
FormatTraits traitsOf(FormatEntry const& entry)
{
    auto const found = declaredTraits().constFind(entry.key());
    return found != declaredTraits().constEnd() ? *found : usualTraits(entry.kind());
}

}

QString kindWord(FormatKind kind)
{
    static char const* const words[] = {"tracking", "shape", "camera", "lens"};
    return QLatin1String(words[static_cast<std::size_t>(kind)]);
}

FormatEntry::FormatEntry(Format const& format) : m_format(format), m_traits(traitsOf(*this))
{
}

FormatKind FormatEntry::kind() const
{
    return static_cast<FormatKind>(m_format.index());
}

DataFormatBase const& FormatEntry::format() const
{
    return std::visit([](auto const& concrete) -> DataFormatBase const& { return concrete; }, m_format);
}

QString const& FormatEntry::key() const
{
    return format().internalName();
}

FormatTraits const& FormatEntry::traits() const
{
    return m_traits;
}

bool FormatEntry::isOfLayers() const
{
    return format().flags().testFlag(BelongsToLayers);
}

std::vector<FormatEntry> offeredFormats(TXIHost const* host)
{
    std::vector<FormatEntry> entries;
    auto const add = [&entries](auto const& format) { entries.emplace_back(format); };
    TrackingExporterFactory::forEachFormat(add, host);
    ShapeExporterFactory::forEachFormat(add, host);
    CameraSolveExporterFactory::forEachFormat(add);
    for (LensDataFormat const& format : LensExporter::EXPORTERS_BY_FORMAT().keys())
    {
        add(format);
    }
    return entries;
}

}
