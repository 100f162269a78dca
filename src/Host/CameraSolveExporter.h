#pragma once

#include "Host/Anm.h"
#include "Host/ExportedFiles.h"
#include "Host/HostApi.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>
#include <boost/shared_ptr.hpp>

#include <any>
#include <variant>
#include <vector>

class KORV_Layer;
class KORV_ProjectManager;

namespace Fnd
{
class IClipboard;
}

namespace KV
{

/// Ways to say which layers' solve data are taken.
namespace Layers
{
struct All
{
};
struct AllSelected
{
};
struct Current
{
};
/// The layers that have points of the chosen objects.
struct FilterByPoints
{
};
}

struct ExportSpec
{
    std::variant<Layers::All, Layers::AllSelected, Layers::Current, Layers::FilterByPoints,
                 QVector<boost::shared_ptr<KORV_Layer const>>>
        layers;

    /// The project's current frame, default view, full resolution.
    Anm::Context const* referenceContext = nullptr;
    std::vector<Anm::View> views;

    /// From ExporterHelperBase::framesToExport.
    int framesToExport = 2147483647;

    /// A QMap<QString, QVariant> of user options by key, or empty.
    std::any customData;
};

/// Receives the description of an exporter's user options.
class MARLO_HOST_API ExportOptionsReceiver
{
public:
    virtual void addBoolOption(QString const& key, QString const& label, QString const& toolTip, bool defaultValue) = 0;
    /// The first choice is the default.
    virtual void addChoiceOption(QString const& key, QString const& label, QString const& toolTip,
                                 QStringList const& choices) = 0;

protected:
    ~ExportOptionsReceiver();
};

/// Base of every exporter of a camera solve.
class MARLO_HOST_API CameraSolveExporter : public QObject
{
    Q_OBJECT

public:
    enum ObjectsToExport
    {
        SelectedObjects = 0,
        VisibleObjects = 1,
        AllObjects = 2
    };

    CameraSolveExporter();
    ~CameraSolveExporter() override;

    virtual Korvane::ExportedFiles exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                                     ExportSpec const& spec, ObjectsToExport objects) const = 0;

    /// Declares the user options of this exporter; none by default.
    virtual void setUserOptions(ExportOptionsReceiver& receiver) const;

    virtual void copyToClipboard(Fnd::IClipboard& clipboard, QString const& text) const;
};

}
