#include "Core/presets/PresetJson.h"
#include "Core/presets/PresetWords.h"

#include <QMap>
#include <QVariant>
#include <nlohmann/json.hpp>

#include <cmath>
#include <limits>

namespace Export
{

using nlohmann::json;

namespace
{

/// Of options, which have to be an object; `place` is as readAt() wants it.
class OptionReader
{
    template <typename Read>
    auto at(char const* key, Read const& read) const
    {
        return readAt(m_place, std::string(".") + key, read);
    }

public:
    OptionReader(json const& options, std::string& place) : m_options(options), m_place(place)
    {
        if (!options.is_object())
        {
            options.value("", false); // throws in the library's words
        }
    }

    template <typename Value>
    Value value(char const* key, Value const& absent) const
    {
        return at(key, [&] { return m_options.value(key, absent); });
    }

    template <typename Enum, std::size_t count>
    Enum word(Word<Enum> const (&table)[count], char const* key, std::string const& absent) const
    {
        return at(key, [&] { return valueOf(table, m_options.value(key, absent)); });
    }

    Anm::Context referenceFrame() const
    {
        constexpr char key[] = "referenceFrame";
        if (!m_options.contains(key))
        {
            return Anm::Context::invalid();
        }
        int const frame = at(key, [&] { return toInt(m_options.at(key).get<double>(), key); });
        return Anm::Context(Anm::Time::fromInt(frame), Anm::View::defaultView());
    }

    std::vector<Anm::View> views() const
    {
        constexpr char key[] = "viewsToExport";
        if (!m_options.contains(key))
        {
            return {Anm::View::defaultView()};
        }
        std::vector<Anm::View> views;
        auto const addView = [&](json const& element)
        {
            double const number = element.get<double>();
            int const id = toInt(number, key);
            if (id != number)
            {
                throw CustomJsonException("'viewsToExport' must hold whole numbers but got " + json(number).dump());
            }
            views.emplace_back(id);
        };
        at(key, [&] { readEach(m_options.at(key), m_place, addView); });
        return views;
    }

    LayerSelection selection(char const* modeKey, char const* absent) const
    {
        LayerSelection selection;
        selection.mode = word(LAYER_WORDS, modeKey, absent);
        if (selection.mode == ZN::SpecifiedLayer)
        {
            selection.layerName = QString::fromStdString(value("layer", std::string()));
            if (selection.layerName.isEmpty())
            {
                throw CustomJsonException("'exportMode' mode is 'specified' but no 'layer' provided");
            }
        }
        return selection;
    }

    QMap<QString, QVariant> customData() const
    {
        constexpr char key[] = "customData";
        QMap<QString, QVariant> map;
        if (m_options.contains(key))
        {
            at(key, [&] { addCustomData(m_options.at(key), map); });
        }
        return map;
    }

private:
    void addCustomData(json const& source, QMap<QString, QVariant>& map) const
    {
        if (!source.is_object())
        {
            source.get<json::object_t>(); // throws in the library's words
        }
        for (auto const& [key, value] : source.items())
        {
            map.insert(QString::fromStdString(key), readAt(m_place, '[' + json(key).dump() + ']',
                                                           [&, &value = value] { return customValue(value); }));
        }
    }

    static QVariant customValue(json const& source)
    {
        if (source.is_string())
        {
            return QString::fromStdString(source.get<std::string>());
        }
        if (source.is_boolean())
        {
            return source.get<bool>();
        }
        throw CustomJsonException(std::string("expected bool or string but got ") + source.type_name());
    }

    /// The number without its fraction.
    static int toInt(double number, char const* key)
    {
        using Limits = std::numeric_limits<int>;
        double const whole = std::trunc(number);
        if (whole < Limits::min() || whole > Limits::max())
        {
            throw CustomJsonException(std::string("'") + key + "' must be from " + std::to_string(Limits::min()) +
                                      " to " + std::to_string(Limits::max()) + " but got " + json(number).dump());
        }
        return static_cast<int>(whole);
    }

    json const& m_options;
    std::string& m_place;
};

UserTrackingOptions readTrackingOptions(OptionReader const& source)
{
    UserTrackingOptions options;
    options.trackingOption = source.word(TRACKING_OPTION_WORDS, "trackingOption", "basic");
    options.invert = source.value("invert", false);
    options.undistort = source.value("undistort", false);
    options.referenceFrame = source.referenceFrame();
    options.layerSelection = source.selection("layerExportMode", "selected");
    options.viewsToExport = source.views();
    return options;
}

UserShapeOptions readShapeOptions(OptionReader const& source)
{
    UserShapeOptions options;
    options.layerSelection = source.selection("exportMode", "all");
    options.viewsToExport = source.views();
    return options;
}

UserCameraSolveOptions readCameraOptions(OptionReader const& source)
{
    UserCameraSolveOptions options;
    options.objectsToExport = source.word(OBJECT_WORDS, "objectsToExport", "all");
    // Exporters take options that a map lacks for switched off, but fall back on their
    // defaults when there is no map. That is what was written as an empty object.
    QMap<QString, QVariant> map = source.customData();
    if (!map.isEmpty())
    {
        options.customData = std::move(map);
    }
    return options;
}

}

Preset::ExportInfo readExport(json const& source, std::string& place)
{
    Preset::ExportInfo info;
    std::string const word = readKey<std::string>(source, "type", place);
    info.type = readAt(place, ".type", [&] { return valueOf(TYPE_WORDS, word); });
    info.format = QString::fromStdString(readKey<std::string>(source, "format", place));
    json const& options = source.at("options");
    auto const readOptions = [&]
    {
        OptionReader const reader(options, place);
        switch (info.type)
        {
        case Preset::ExportInfo::Tracking:
            info.options = readTrackingOptions(reader);
            break;
        case Preset::ExportInfo::Shape:
            info.options = readShapeOptions(reader);
            break;
        case Preset::ExportInfo::Camera:
            info.options = readCameraOptions(reader);
            break;
        }
    };
    readAt(place, ".options", readOptions);
    if (source.contains("filePath"))
    {
        info.filePath = QString::fromStdString(readKey<std::string>(source, "filePath", place));
    }
    return info;
}

}
