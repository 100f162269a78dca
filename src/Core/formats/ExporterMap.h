#pragma once
// What the three factories share: the map from format to exporter, built on demand
// from a table of rows and narrowed to what product and plug-in host offer.

#include "Core/DataFormat.h"
#include "Writing/ThrowHelpers.h"
#include "Host/PluginHost.h"
#include "Writing/FormatTraits.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

class KORV_ProjectManager;

namespace Export
{

/// The plug-in host of a project; null outside of a plug-in.
TXIHost const* hostOf(KORV_ProjectManager const& project);

/// Whether product and host take a format.
///
/// The product must offer one of the format's categories and the host, if there is
/// one, must take one. A format without categories isn't taken.
///
/// @param categories what the product offers
/// @param extraCategories what it offers as well where the host grants that
/// @param host may be null
inline bool isOffered(DataFormatBase const& format, QSet<QString> categories, QSet<QString> const& extraCategories,
                      TXIHost const* host)
{
    if (host && host->grants(TXIHost::EXTRA_EXPORT_CATEGORIES))
    {
        categories.unite(extraCategories);
    }
    if (!categories.intersects(format.options()))
    {
        return false;
    }
    return !host || std::any_of(format.options().begin(), format.options().end(),
                                [host](QString const& category)
                                { return host->takesCategory(0, category.toUtf8().constData()); });
}

/// A format and how to make its exporter.
template <typename Format, typename Exporter>
struct ExporterRow
{
    Format const& (*format)();
    std::shared_ptr<Exporter> (*create)();
    FormatTraits traits;

    /// Offered whatever the product's categories are.
    bool always = false;

    /// For `create`: a Concrete made with these arguments.
    template <typename Concrete, auto... arguments>
    static std::shared_ptr<Exporter> make()
    {
        return std::make_shared<Concrete>(arguments...);
    }
};

/// The exporters of one data kind by format. Only building is guarded against
/// other threads.
template <typename Format, typename Exporter>
class ExporterMap
{
public:
    using Map = QMap<Format, std::shared_ptr<Exporter>>;
    using Row = ExporterRow<Format, Exporter>;
    using Filter = bool (*)(Format const& format, TXIHost const* host);

    ExporterMap(std::vector<Row> rows, Filter filter) : m_rows(std::move(rows)), m_filter(filter)
    {
    }

    /// The map, built before. The first call with a host offers every row again,
    /// which adds what that host takes and makes new exporters for rows that are
    /// there already. When an exporter can't be made, the rows before it stay and the
    /// next call starts over.
    Map& built(TXIHost const* host)
    {
        std::lock_guard<std::recursive_mutex> const lock(m_mutex);
        if (m_isBuilt && (!host || m_isBuiltWithHost))
        {
            return m_map;
        }
        for (Row const& row : m_rows)
        {
            Format const& format = row.format();
            std::shared_ptr<Exporter> const exporter = row.create();
            if (row.always || m_filter(format, host))
            {
                m_map.insert(format, exporter);
            }
        }
        m_isBuilt = true;
        if (host)
        {
            m_isBuiltWithHost = true;
        }
        return m_map;
    }

    /// Calls the function with a copy of each format of the map.
    void forEachFormat(std::function<void(Format const&)> const& function, TXIHost const* host)
    {
        QList<Format> const formats = built(host).keys();
        for (Format const& format : formats)
        {
            function(format);
        }
    }

    /// @param failure text of the KORV_BadArgument when the format isn't there
    static std::shared_ptr<Exporter> find(Map const& map, Format const& format, QString const& failure)
    {
        auto const found = map.constFind(format);
        if (found == map.constEnd())
        {
            throwBadArgument(failure);
        }
        return *found;
    }

    /// @param failure text of the KORV_BadArgument when the format is there already
    void add(Format const& format, std::shared_ptr<Exporter> const& exporter, QString const& failure)
    {
        Map& map = built(nullptr);
        if (map.contains(format))
        {
            throwBadArgument(failure);
        }
        map.insert(format, exporter);
    }

    /// @param failure text of the KORV_BadArgument when the format isn't there
    void remove(Format const& format, QString const& failure)
    {
        if (built(nullptr).remove(format) == 0)
        {
            throwBadArgument(failure);
        }
    }

private:
    std::vector<Row> const m_rows;
    Filter const m_filter;
    std::recursive_mutex m_mutex;
    Map m_map;
    bool m_isBuilt = false;
    bool m_isBuiltWithHost = false;
};

}
