#pragma once

#include "Host/Anm.h"
#include "Host/ExportedFiles.h"
#include "Host/HostApi.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>
#include <boost/shared_ptr.hpp>

#include <any>
#include <memory>
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

/// Words of one user option.
struct OptionTexts
{
    /// Plain word in presets and on the command line; never translated.
    QString key;
    QString label;
    QString toolTip;
};

/// The user options that solve exporters share. Their order is that of the fields.
struct StringsUI
{
    OptionTexts includeFeatures;
    OptionTexts useReferenceFrame;
    OptionTexts sceneAtOrigin;
    OptionTexts pointSizeMode;

    /// The two choices of pointSizeMode: sizes that suit the scene, or one fixed size.
    /// Never translated.
    QString pointSizeSuggested;
    QString pointSizeFixed;
};

/// Remembers which solved points are too inaccurate to pin something to.
class MARLO_HOST_API NullAccuracySource
{
public:
    NullAccuracySource();
    NullAccuracySource(NullAccuracySource const&) = delete;
    NullAccuracySource& operator=(NullAccuracySource const&) = delete;
    virtual ~NullAccuracySource();

    /// Forgets what it knew and looks through the points of these layers and of the
    /// feature sets.
    void processNulls(QList<unsigned int> const& layerIds, KORV_ProjectManager const* project,
                      std::vector<Anm::View> const& views) const;

    /// A warning that names those of them that were exported; empty when there are none. Those
    /// are that were asked for with isInaccurate(), and those whose names an ExporterHelper
    /// gave without a source since its last initialise().
    QString warnInaccurateNulls() const;

    /// Whether a point is one of them. The warning will name it.
    /// @param owner text id of the layer, or name of the feature set
    /// @param pointId as CameraSolve::ExporterHelper gives it
    bool isInaccurate(QString const& owner, unsigned int pointId) const;

private:
    struct Data;
    std::unique_ptr<Data> m_data;
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

    /// The shared user options, labels and tips in the user's language.
    static StringsUI UI();

    CameraSolveExporter();
    ~CameraSolveExporter() override;

    virtual Korvane::ExportedFiles exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                                     ExportSpec const& spec, ObjectsToExport objects) const = 0;

    /// Declares the user options of this exporter; none by default.
    virtual void setUserOptions(ExportOptionsReceiver& receiver) const;

    virtual void copyToClipboard(Fnd::IClipboard& clipboard, QString const& text) const;
};

}
