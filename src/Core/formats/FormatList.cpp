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

FormatTraits usualTraits(FormatKind kind)
{
    switch (kind)
    {
    case FormatKind::Tracking:
        return {HonoursMotion | HonoursInvert | HonoursUndistort, NeedsTrack};
    case FormatKind::Shape:
        return {HonoursLayers, NeedsContours, "", "", "", LeftOut::IsTold, Untracked::IsTold, HoldsFeather};
    case FormatKind::Camera:
        return {HonoursObjects, NeedsSolve};
    case FormatKind::Lens:
        break;
    }
    return {{}, NeedsLens};
}

}

QString kindWord(FormatKind kind)
{
    static char const* const words[] = {"tracking", "shape", "camera", "lens"};
    return QLatin1String(words[static_cast<std::size_t>(kind)]);
}

FormatEntry::FormatEntry(Format const& format) : m_format(format)
{
    auto const found = declaredTraits().constFind(key());
    m_traits = found != declaredTraits().constEnd() ? *found : usualTraits(kind());
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
