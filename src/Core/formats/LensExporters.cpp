// Every exporter of lens data. A new one is a line here, in the order of the formats.

#include "Core/formats/ExporterTables.h"

#include "Core/LensExporter.h"

namespace Export
{

std::vector<LensRow> lensRows()
{
    return {};
}

QMap<LensDataFormat, boost::shared_ptr<LensExporter const>> const& LensExporter::EXPORTERS_BY_FORMAT()
{
    static QMap<LensDataFormat, boost::shared_ptr<LensExporter const>> const exporters = []
    {
        QMap<LensDataFormat, boost::shared_ptr<LensExporter const>> all;
        for (LensRow const& row : lensRows())
        {
            all.insert(row.format(), row.create());
        }
        return all;
    }();
    return exporters;
}

}
