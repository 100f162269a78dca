#pragma once
// The one list of formats: the offered formats of all four data kinds.

#include "Core/DataFormat.h"
#include "Core/ExportApi.h"
#include "Writing/FormatTraits.h"

#include <QString>

#include <variant>
#include <vector>

namespace Export
{

enum class FormatKind
{
    Tracking,
    Shape,
    Camera,
    Lens
};

/// "tracking", "shape", "camera" or "lens".
MARLO_EXPORT_API QString kindWord(FormatKind kind);

/// A format with its kind and with what it declares about itself.
class MARLO_EXPORT_API FormatEntry
{
public:
    using Format = std::variant<TrackingDataFormat, ShapeDataFormat, CameraSolveFormat, LensDataFormat>;

    /// @param format one that isn't in the tables, such as one registered at run time, has
    ///        the traits that its kind has as a rule
    explicit FormatEntry(Format const& format);

    FormatKind kind() const;
    DataFormatBase const& format() const;
    QString const& key() const;
    FormatTraits const& traits() const;

    /// Whether the data belong to layers.
    bool isOfLayers() const;

    /// @throws std::bad_variant_access for a format of another kind
    template <typename Concrete>
    Concrete const& as() const
    {
        return std::get<Concrete>(m_format);
    }

private:
    Format m_format;
    FormatTraits m_traits;
};

/// The offered formats: tracking, shape, camera, lens; within a kind by display name.
/// @param host null outside of a plug-in
MARLO_EXPORT_API std::vector<FormatEntry> offeredFormats(TXIHost const* host = nullptr);

}
