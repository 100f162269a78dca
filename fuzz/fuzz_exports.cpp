// Any bytes as a small project, exported to every format: files that can be read, no larger
// than estimated and without words for numbers that aren't finite, or a refusal.

#include "RandomProject.h"

#include "Core/ExportSize.h"
#include "Core/ExporterFactories.h"
#include "Core/ExporterWrapper.h"
#include "Core/FormatList.h"
#include "Core/LensExporter.h"
#include "Host/CameraSolveExporter.h"
#include "Host/KORV_Exception.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/MessageBox.h"
#include "Host/ShapeExporter.h"
#include "marlohost/ProjectFile.h"

#include <QDomDocument>
#include <QVariant>

#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace
{

using namespace Export;

struct Silent : Korvane::Callbacks
{
    KORV_MESSAGEBOX_REPLY warning(std::string const&, std::string const&, KORV_MESSAGEBOX_STYLE) const override
    {
        return KORV_MESSAGEBOX_REPLY_OK;
    }
};

/// What the user chose, for formats of all kinds.
struct Choices
{
    std::vector<Anm::View> views;
    LayerSelection layers;
    ZN_TRACKING_OPTION motion = ZN_TRACKING_OPTION_BASIC;
    bool invert = false;
    bool undistort = false;
    KV::CameraSolveExporter::ObjectsToExport objects = KV::CameraSolveExporter::AllObjects;

    /// Of the check boxes of solve formats.
    bool isChecked = false;
};

class CheckBoxes final : public KV::ExportOptionsReceiver
{
public:
    explicit CheckBoxes(bool isChecked) : m_isChecked(isChecked)
    {
    }

    void addBoolOption(QString const& key, QString const&, QString const&, bool) override
    {
        values.insert(key, m_isChecked);
    }

    void addChoiceOption(QString const& key, QString const&, QString const&, QStringList const& choices) override
    {
        values.insert(key, m_isChecked ? choices.last() : choices.first());
    }

    QMap<QString, QVariant> values;

private:
    bool m_isChecked;
};

Choices randomChoices(KORV_ProjectManager const& project, Dice& dice)
{
    Choices choices;
    choices.views = {Anm::View::defaultView()};
    if (dice.chance() && project.views()->viewCount() > 1)
    {
        choices.views.push_back(project.views()->view(1));
    }
    choices.layers.mode = dice.pick({ZN::SelectedLayer, ZN::AllLayers, ZN::VisibleLayers});
    choices.motion = dice.pick({ZN_TRACKING_OPTION_BASIC, ZN_TRACKING_OPTION_ADJUSTED, ZN_TRACKING_OPTION_OFFSET,
                                ZN_TRACKING_OPTION_STABILIZED});
    choices.invert = dice.chance();
    choices.undistort = dice.chance();
    choices.objects = dice.pick({KV::CameraSolveExporter::SelectedObjects, KV::CameraSolveExporter::VisibleObjects,
                                 KV::CameraSolveExporter::AllObjects});
    choices.isChecked = dice.chance();
    return choices;
}

std::unique_ptr<ExporterWrapper> wrapperOf(FormatEntry const& format, KORV_ProjectManager const& project,
                                           Choices const& choices)
{
    QString const& name = format.format().displayName();
    switch (format.kind())
    {
    case FormatKind::Tracking:
    {
        UserTrackingOptions const options{choices.motion,          choices.invert, choices.undistort,
                                          Anm::Context::invalid(), choices.layers, choices.views};
        return std::make_unique<TrackingExporterWrapper>(
            TrackingExporterFactory::getExporter(format.as<TrackingDataFormat>()), options, false, name);
    }
    case FormatKind::Shape:
    {
        auto const& shape = format.as<ShapeDataFormat>();
        return std::make_unique<ShapeExporterWrapper>(UserShapeOptions{choices.layers, choices.views}, shape, false,
                                                      ShapeExporterFactory::getExporter(shape, project));
    }
    case FormatKind::Camera:
    {
        auto const exporter = CameraSolveExporterFactory::getExporter(format.as<CameraSolveFormat>());
        CheckBoxes boxes(choices.isChecked);
        exporter->setUserOptions(boxes);
        return std::make_unique<CameraSolveExporterWrapper>(UserCameraSolveOptions{choices.objects, boxes.values},
                                                            false, name, exporter);
    }
    case FormatKind::Lens:
        break;
    }
    constexpr unsigned int FIRST_CLIP = 1;
    auto const exporter = LensExporter::EXPORTERS_BY_FORMAT().value(format.as<LensDataFormat>());
    return std::make_unique<LensExporterWrapper>(FIRST_CLIP, std::any(), name, exporter);
}

/// The estimate is that of usual X-splines; here are some that become as many Bezier points as a
/// segment may get (eight times the usual ones), and at each frame, where their weights change.
double mostBytes(FormatEntry const& format, KORV_ProjectManager const& project, Choices const& choices)
{
    constexpr double XSPLINES = 8 * 4;
    ExportScope scope;
    for (auto const& layer : Korvane::ShapeExportHelper::getLayersToExport(project, choices.layers.mode,
                                                                           {project.toolManager()->currentLayerID()}))
    {
        scope.layers.push_back(layer.get());
    }
    scope.views = choices.views.size();
    scope.objects = choices.objects;
    bool const turnsXSplines = format.traits().needs.testFlag(NeedsContours);
    return (turnsXSplines ? XSPLINES : 1) * estimatedBytes(format, project, scope, 1e12);
}

bool isPartOfWord(char c)
{
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_';
}

/// A number's word for what isn't finite, whatever stands around it.
bool holdsNonFiniteWord(QByteArray const& text)
{
    for (char const* const word : {"nan", "inf"})
    {
        for (int at = text.indexOf(word); at >= 0; at = text.indexOf(word, at + 1))
        {
            if ((at == 0 || !isPartOfWord(text[at - 1])) && !isPartOfWord(text.constData()[at + 3]))
            {
                return true;
            }
        }
    }
    return false;
}

/// @return what is wrong, null when nothing is
char const* faultOf(FormatEntry const& format, QByteArray const& content)
{
    if (content.contains('\0'))
    {
        return nullptr; // not a text
    }
    if (QString::fromUtf8(content).toUtf8() != content)
    {
        return "isn't UTF-8";
    }
    // A path of no length in Fusion has "nan" for its shares, as its format wants.
    if (format.key() != QLatin1String("fusion_tracker") && holdsNonFiniteWord(content))
    {
        return "holds a number that isn't finite";
    }
    if (content.startsWith("<?xml") && !QDomDocument().setContent(content))
    {
        return "isn't XML";
    }
    // The names have none that stands alone.
    bool const hasBlocks = QString::fromUtf8(format.traits().breaksField).contains(QLatin1Char('{'));
    if (hasBlocks && content.count('{') != content.count('}'))
    {
        return "has blocks that don't end";
    }
    return nullptr;
}

[[noreturn]] void stop(FormatEntry const& format, char const* fault)
{
    std::fprintf(stderr, "%s: %s\n", format.key().toUtf8().constData(), fault);
    std::abort();
}

void exportTo(FormatEntry const& format, KORV_ProjectManager& project, Choices const& choices)
{
    Korvane::ExportedFiles result;
    try
    {
        auto const wrapper = wrapperOf(format, project, choices);
        if (!wrapper->isExportPossible(project).first)
        {
            return;
        }
        result = wrapper->getExportResult(project, QStringLiteral("out"));
    }
    catch (std::exception const&)
    {
        return; // refused
    }
    double bytes = 0;
    for (QByteArray const& content : result.files)
    {
        bytes += content.size();
        if (char const* const fault = faultOf(format, content))
        {
            std::fwrite(content.constData(), 1, static_cast<std::size_t>(content.size()), stderr);
            stop(format, fault);
        }
    }
    double const most = mostBytes(format, project, choices);
    if (bytes > most)
    {
        std::fprintf(stderr, "%.0f bytes instead of %.0f\n", bytes, most);
        stop(format, "is larger than estimated");
    }
}

}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static std::vector<FormatEntry> const formats = offeredFormats();
    Dice dice(data, size);
    MarloHost::ProjectModel model = randomProject(dice);
    boost::shared_ptr<KORV_ProjectManager> project;
    try
    {
        model = MarloHost::readProject(MarloHost::writeProject(model), QStringLiteral("fuzz.json"));
        if (dice.chance())
        {
            spoil(model, dice);
        }
        MarloHost::HostServices services;
        services.callbacks = std::make_shared<Silent>();
        project = MarloHost::makeProject(model, QStringLiteral("/fuzz.json"), services);
    }
    catch (KORV_Exception const&)
    {
        return 0;
    }
    Choices const choices = randomChoices(*project, dice);
    for (FormatEntry const& format : formats)
    {
        exportTo(format, *project, choices);
    }
    return 0;
}
