#include "Core/ExportFunctions.h"

#include "Core/ExporterFactories.h"
#include "Writing/ThrowHelpers.h"
#include "Host/Fnd.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "text/PartFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <set>
#include <stdexcept>

namespace Export
{

namespace
{

constexpr char SOURCE[] = "ExportFunctions";

/// The context of the texts of this file.
struct ExportFunctions
{
    Q_DECLARE_TR_FUNCTIONS(ExportFunctions)
};

void checkPossible(std::shared_ptr<ExporterWrapper> const& wrapper, KORV_ProjectManager& project)
{
    if (!wrapper)
    {
        throwBadArgument(QStringLiteral("There is no export to run"));
    }
    auto const [isPossible, reason] = wrapper->isExportPossible(project);
    if (!isPossible)
    {
        throw std::logic_error(reason.value_or(""));
    }
}

/// Asks the user about the failures; what was abandoned leaves nothing to write.
void dropIfAbandoned(Korvane::ExportedFiles& result, ExportMessageBoxProvider& provider)
{
    if (provider.confirmFailures(result))
    {
        result.files.clear();
        result.failedCount = 0;
    }
}

void recordUse(ExporterWrapper const& wrapper, KORV_ProjectManager const& project)
{
    if (boost::shared_ptr<ApplicationContext const> const application = project.applicationContext())
    {
        Fnd::UsageLogger::UserActivity activity(QStringLiteral("ExportData"));
        activity.addValue(QStringLiteral("ExportFormat"), wrapper.formatDisplayName(), true);
        application->usageLogger().log(activity);
    }
}

/// Whether a folder that doesn't exist could be made: its nearest existing ancestor
/// must be a folder that files can be made in. There is none when the working folder
/// was removed, and paths that start from it stay relative.
bool canBeCreated(QString const& directory)
{
    QString ancestor = QFileInfo(directory).absolutePath();
    while (!QFileInfo::exists(ancestor) && QDir::isAbsolutePath(ancestor) && ancestor != QDir::rootPath())
    {
        ancestor = QFileInfo(ancestor).dir().absolutePath();
    }
    return QFileInfo(ancestor).isDir() && Fnd::isDirWritable(ancestor);
}

[[noreturn]] void throwUnwritable(std::set<QString> const& paths)
{
    QString lines;
    for (QString const& path : paths)
    {
        lines += QDir::toNativeSeparators(path) + QLatin1Char('\n');
    }
    throwOperationFailed(
        SOURCE, __LINE__, QStringLiteral("writeFileMap"),
        ExportFunctions::tr("Cannot write to following paths.\nMake sure you have the necessary permissions:\n%1")
            .arg(lines));
}

/// Makes the folders that the files need, once it is known that every file's folder
/// can take it.
void prepareDirectories(QMap<QString, QByteArray> const& files)
{
    std::set<QString> missing;
    std::set<QString> unwritable;
    for (auto file = files.constBegin(); file != files.constEnd(); ++file)
    {
        QString const directory = QFileInfo(file.key()).absolutePath();
        QFileInfo const info(directory);
        if (!info.exists())
        {
            (canBeCreated(directory) ? missing : unwritable).insert(directory);
        }
        else if (!info.isDir() || !Fnd::isDirWritable(directory))
        {
            unwritable.insert(directory);
        }
    }
    if (unwritable.empty())
    {
        std::copy_if(missing.begin(), missing.end(), std::inserter(unwritable, unwritable.end()),
                     [](QString const& directory) { return !QDir().mkpath(directory); });
    }
    if (!unwritable.empty())
    {
        throwUnwritable(unwritable);
    }
}

/// Writes the file if the user agrees. What was agreed to as a new file never replaces
/// one that has appeared in the meantime: the user is asked again, and sees it then.
/// @return whether it was written
bool writeFile(QString const& path, QByteArray const& bytes, ExportMessageBoxProvider& provider)
{
    Text::Existing existing = QFileInfo::exists(path) ? Text::Existing::Replace : Text::Existing::Keep;
    while (provider.confirmWrite(path))
    {
        if (Text::writeWholeFile(path, bytes, existing))
        {
            return true;
        }
        if (errno != EEXIST || existing == Text::Existing::Replace)
        {
            QString const reason = qt_error_string(errno);
            throwOperationFailed(SOURCE, __LINE__, QStringLiteral("writeFileMap"),
                                 ExportFunctions::tr("Could not write to file %1").arg(path) + QStringLiteral(": ") +
                                     reason);
        }
        existing = Text::Existing::Replace;
    }
    return false;
}

/// Writes the files that the user agrees to.
/// @return how many
int writeFileMap(Korvane::ExportedFiles const& result, ExportMessageBoxProvider& provider)
{
    prepareDirectories(result.files);
    Text::sweepPartFiles(result.files.keys());
    int count = 0;
    for (auto file = result.files.constBegin(); file != result.files.constEnd(); ++file)
    {
        count += writeFile(file.key(), file.value(), provider) ? 1 : 0;
    }
    return count;
}

int writeAndTell(Korvane::ExportedFiles const& result, ExportMessageBoxProvider& provider)
{
    int const count = writeFileMap(result, provider);
    if (count != 0)
    {
        provider.showNotices(result.notices);
    }
    return count;
}

/// How many layers the selection reaches; 1 as soon as a specified layer is met.
int reachedLayers(KORV_ProjectManager const& project, LayerSelection const& selection)
{
    int count = 0;
    for (KORV_Layer const* layer = project.sm()->topLayer(); layer; layer = layer->layerBelow())
    {
        switch (selection.mode)
        {
        case ZN::SelectedLayer:
            count += isLayerOrAncestorGroupSelected(layer) ? 1 : 0;
            break;
        case ZN::VisibleLayers:
            count += layer->isHidden(true) ? 0 : 1;
            break;
        case ZN::AllLayers:
            ++count;
            break;
        case ZN::SpecifiedLayer:
            if (layer->name() == selection.layerName)
            {
                return 1;
            }
            break;
        }
    }
    return count;
}

/// The frames that the user fixed for stabilizing, ascending.
std::set<int> fixedFrames(KORV_Layer const& layer)
{
    Anm::Parameter<bool> const& parameter = layer.stabilizeParameters().fixedFrames();
    Anm::View const view = Anm::View::defaultView();
    std::set<int> frames;
    for (unsigned int key = 0; key < parameter.keyframeCount(view); ++key)
    {
        if (parameter.keyframeValue(key, view))
        {
            frames.insert(static_cast<int>(std::floor(parameter.keyframeTime(key, view).value())));
        }
    }
    return frames;
}

/// The first fixed frame of the layer's stabilized range, else the start of it.
Anm::Context stabilizedReferenceFrame(KORV_Layer const& layer, Anm::Context const& currentFrame)
{
    int const first = static_cast<int>(std::max(layer.inPoint(false), layer.stabilizeRangeStart(currentFrame)));
    int const last = static_cast<int>(std::min(layer.outPoint(false), layer.stabilizeRangeEnd(currentFrame)));
    std::set<int> const fixed = fixedFrames(layer);
    auto const found = fixed.lower_bound(first);
    Anm::Context context = currentFrame;
    context.setTime(Anm::Time::fromInt(found != fixed.end() && *found <= last ? *found : first));
    return context;
}

}

std::shared_ptr<ExporterWrapper> createExporter(Preset::ExportInfo const& info, KORV_ProjectManager const& project)
{
    switch (info.type)
    {
    case Preset::ExportInfo::Tracking:
    {
        TrackingDataFormat const format = TrackingDataFormat::byName(project, info.format);
        return std::make_shared<TrackingExporterWrapper>(
            TrackingExporterFactory::getExporter(format), std::get<UserTrackingOptions>(info.options),
            format.capabilities().testFlag(TrackingDataFormat::WrapperCapability), format.displayName());
    }
    case Preset::ExportInfo::Shape:
    {
        ShapeDataFormat const format = ShapeDataFormat::byName(project, info.format);
        return std::make_shared<ShapeExporterWrapper>(std::get<UserShapeOptions>(info.options), format,
                                                      project.pluginHost() != nullptr,
                                                      ShapeExporterFactory::getExporter(format, project));
    }
    case Preset::ExportInfo::Camera:
    {
        std::optional<CameraSolveFormat> const format = CameraSolveExporterFactory::formatByName(info.format);
        if (!format)
        {
            throwBadArgument(ExportFunctions::tr("Invalid export format name"));
        }
        return std::make_shared<CameraSolveExporterWrapper>(
            std::get<UserCameraSolveOptions>(info.options), format->flags().testFlag(BelongsToLayers),
            format->displayName(), CameraSolveExporterFactory::getExporter(*format));
    }
    }
    return nullptr;
}

std::pair<bool, QString> exportToDisk(std::shared_ptr<ExporterWrapper> const& wrapper, ExportFileInfo const& fileInfo,
                                      QString const& directory, KORV_ProjectManager& project,
                                      ExportMessageBoxProvider& provider)
{
    checkPossible(wrapper, project);
    if (fileInfo.canSave == 0)
    {
        return {false, directory};
    }
    QString const suggested = directory + QDir::separator() + wrapper->filenameSuggestion(project);
    QString const path = provider.askSavePath(fileInfo, directory, suggested);
    if (path.isEmpty())
    {
        return {false, directory};
    }
    Korvane::ExportedFiles result = wrapper->getExportResult(project, path);
    dropIfAbandoned(result, provider);
    if (result.files.isEmpty())
    {
        return {false, directory};
    }
    int const count = writeAndTell(result, provider);
    recordUse(*wrapper, project);
    return {count > 0, QFileInfo(path).absolutePath()};
}

void copyToClipboard(std::shared_ptr<ExporterWrapper> const& wrapper, KORV_ProjectManager& project,
                     ExportMessageBoxProvider& provider, Fnd::IClipboard& clipboard)
{
    checkPossible(wrapper, project);
    Korvane::ExportedFiles result = wrapper->getExportResult(project, QStringLiteral(""));
    dropIfAbandoned(result, provider);
    if (result.files.size() > 1)
    {
        throw std::logic_error("Cannot copy multiple files to clipboard");
    }
    if (result.files.size() == 1)
    {
        wrapper->setClipboardText(clipboard, QString::fromUtf8(result.files.first()));
        provider.showNotices(result.notices);
    }
}

bool exportBatch(std::vector<BatchItem> const& items, KORV_ProjectManager& project, ExportMessageBoxProvider& provider)
{
    Korvane::ExportedFiles merged;
    for (BatchItem const& item : items)
    {
        checkPossible(item.wrapper, project);
        Korvane::ExportedFiles const result = item.wrapper->getExportResult(project, item.path);
        merged.messages += result.messages;
        merged.notices.insert(merged.notices.end(), result.notices.begin(), result.notices.end());
        merged.failedCount += result.failedCount;
        for (auto file = result.files.constBegin(); file != result.files.constEnd(); ++file)
        {
            merged.files.insert(file.key(), file.value());
        }
    }
    dropIfAbandoned(merged, provider);
    if (merged.files.isEmpty())
    {
        return false;
    }
    int const count = writeAndTell(merged, provider);
    for (BatchItem const& item : items)
    {
        recordUse(*item.wrapper, project);
    }
    return count > 0;
}

QString filenameSuggestion(KORV_ProjectManager const& project, LayerSelection const& selection)
{
    if (reachedLayers(project, selection) == 1)
    {
        if (std::optional<QString> const specified = selection.specifiedLayer())
        {
            return *specified;
        }
        if (KORV_Layer const* layer = project.currentLayer())
        {
            return layer->name();
        }
    }
    QString const projectName = QFileInfo(project.projectFilePath()).completeBaseName();
    return projectName.isEmpty() ? ExportFunctions::tr("export") : projectName;
}

Anm::Context suitableReferenceFrame(KORV_ProjectManager const& project, std::optional<ZN_TRACKING_OPTION> option)
{
    KORV_Layer const* layer = project.currentLayer();
    if (!layer)
    {
        return project.currentFrame();
    }
    return option == ZN_TRACKING_OPTION_STABILIZED ? stabilizedReferenceFrame(*layer, project.currentFrame())
                                                   : layer->surface().referenceFrame;
}

bool supportsCopy(DataFormatBase const& format)
{
    return format.numFiles() == 1 && format.supportsSaveToClipboard();
}

bool projectHasVisibleLayers(KORV_ProjectManager& project)
{
    auto const& items = project.sm()->layerItems();
    return std::any_of(items.begin(), items.end(), [](auto const& item) { return !item.second->isHidden(true); });
}

bool isLayerOrAncestorGroupSelected(Korvane::LayerBase const* layer)
{
    for (Korvane::LayerBase const* item = layer; item; item = item->parentGroup(true))
    {
        if (item->isSelected())
        {
            return true;
        }
    }
    return false;
}

ExportMessageBoxProvider::~ExportMessageBoxProvider() = default;

}
