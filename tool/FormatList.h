#pragma once
// The offered formats of all four data kinds as one list.

#include "Core/DataFormat.h"

#include <QString>

#include <optional>
#include <variant>
#include <vector>

enum class Kind
{
    Tracking,
    Shape,
    Camera,
    Lens
};

/// "tracking", "shape", "camera" or "lens".
QString kindWord(Kind kind);

/// A format with its kind.
class FormatEntry
{
public:
    using Format = std::variant<Export::TrackingDataFormat, Export::ShapeDataFormat, Export::CameraSolveFormat,
                                Export::LensDataFormat>;

    explicit FormatEntry(Format const& format);

    Kind kind() const;

    /// Whether the data belong to layers.
    bool isOfLayers() const;
    Export::DataFormatBase const& format() const;
    QString const& key() const;

    template <typename Concrete>
    Concrete const& as() const
    {
        return std::get<Concrete>(m_format);
    }

private:
    Format m_format;
};

/// The offered formats: tracking, shape, camera, lens; within a kind by display name.
/// @param kindWord only formats of that kind; empty for all
std::vector<FormatEntry> offeredFormats(QString const& kindWord = QString());

/// The format of that key.
/// @throws Failure as wrong usage that suggests the keys nearest to it
FormatEntry findFormat(QString const& key);
