#pragma once

#include "Core/DataFormat.h"
#include "Core/ExportApi.h"

#include <QMap>
#include <QObject>
#include <QString>
#include <boost/shared_ptr.hpp>

#include <any>

class KORV_ProjectManager;

namespace Fnd
{
class IClipboard;
}

namespace Export
{

/// Base of every exporter of lens data. Unlike other exporters it gives back one
/// text, which the wrapper stores under the target path.
class MARLO_EXPORT_API LensExporter : public QObject
{
    Q_OBJECT

public:
    LensExporter();
    ~LensExporter() override;

    /// @param clipId the calibration clip; what 0 means is up to the exporter
    /// @param userData holds what customDataTypeName() of the format says
    virtual QString getExportedData(KORV_ProjectManager& project, unsigned int clipId, std::any userData) const = 0;

    virtual void copyToClipboard(Fnd::IClipboard& clipboard, QString const& text) const;

    /// The one exporter of each lens format, in the order of display names.
    static QMap<LensDataFormat, boost::shared_ptr<LensExporter const>> const& EXPORTERS_BY_FORMAT();
};

}
