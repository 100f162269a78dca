#pragma once
// Whole exports: check, run, ask the user, write files or fill the clipboard. All of
// it runs on the caller's thread, which must be the one that owns the user interface.

#include "Core/ExportApi.h"
#include "Core/ExporterWrapper.h"
#include "Core/Preset.h"
#include "Core/UserOptions.h"
#include "Host/Anm.h"
#include "Host/ExportEnums.h"
#include "Host/ExportedFiles.h"

#include <QString>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

class KORV_ProjectManager;

namespace Fnd
{
class IClipboard;
}
namespace Korvane
{
class LayerBase;
}

namespace Export
{

class DataFormatBase;

/// For the save dialog of the host; passed on to askSavePath().
struct ExportFileInfo
{
    QString title;
    QString nameFilter;
    QString defaultSuffix;

    /// 0 means that nothing can be saved.
    int canSave = 1;
};

/// Everything that an export says to the user or asks.
class MARLO_EXPORT_API ExportMessageBoxProvider
{
public:
    /// Shows messages and failed count, if any. True abandons the export.
    virtual bool confirmFailures(Korvane::ExportedFiles const& result) = 0;

    /// Shows what there is to say after a write.
    virtual void showNotices(std::vector<ExportNotice> const& notices) = 0;

    /// The path that the user chose; empty to cancel.
    virtual QString askSavePath(ExportFileInfo const& fileInfo, QString const& directory,
                                QString const& suggestedPath) = 0;

    /// Whether to write this file, which may exist. Asked once more when it didn't, and
    /// was made by somebody else before it could be written.
    virtual bool confirmWrite(QString const& path) = 0;

    virtual ~ExportMessageBoxProvider();
};

struct BatchItem
{
    /// Not null.
    std::shared_ptr<ExporterWrapper> wrapper;
    ExportFileInfo fileInfo;

    /// Target file.
    QString path;
};

/// Makes a stored export ready to run. Null for a type that doesn't exist.
/// @throws KORV_BadArgument when the format isn't offered;
///         std::bad_variant_access when the options are of another kind than the type
MARLO_EXPORT_API std::shared_ptr<ExporterWrapper> createExporter(Preset::ExportInfo const& info,
                                                                 KORV_ProjectManager const& project);

/// Exports to a file that the user is asked for.
///
/// No file is written before every target folder was checked; missing folders are
/// made. A file is written completely or left as it was.
///
/// @param directory where the dialog starts
/// @return whether anything was written, and where the dialog should start next time
/// @throws KORV_BadArgument for a null wrapper; std::logic_error with the reason when the
///         export isn't possible; KORV_OperationFailed when a folder or a file can't be
///         written
MARLO_EXPORT_API std::pair<bool, QString> exportToDisk(std::shared_ptr<ExporterWrapper> const& wrapper,
                                                       ExportFileInfo const& fileInfo, QString const& directory,
                                                       KORV_ProjectManager& project,
                                                       ExportMessageBoxProvider& provider);

/// Exports onto the clipboard; leaves it alone when the export gives nothing.
/// @throws KORV_BadArgument for a null wrapper; std::logic_error with the reason when the
///         export isn't possible, and when it gives several files
MARLO_EXPORT_API void copyToClipboard(std::shared_ptr<ExporterWrapper> const& wrapper, KORV_ProjectManager& project,
                                      ExportMessageBoxProvider& provider, Fnd::IClipboard& clipboard);

/// Runs all exports, then writes what they gave as one. Of several files of one
/// path the last counts. A failure of any export ends the batch before anything is
/// written.
/// @return whether anything was written
/// @throws as exportToDisk()
MARLO_EXPORT_API bool exportBatch(std::vector<BatchItem> const& items, KORV_ProjectManager& project,
                                  ExportMessageBoxProvider& provider);

/// A file name without extension: that of the layer if the selection reaches only
/// one, else that of the project file, else "export".
MARLO_EXPORT_API QString filenameSuggestion(KORV_ProjectManager const& project, LayerSelection const& selection);

/// Where invert, stabilized and relative data of the current layer best start from.
MARLO_EXPORT_API Anm::Context suitableReferenceFrame(KORV_ProjectManager const& project,
                                                     std::optional<ZN_TRACKING_OPTION> option);

/// Whether an export of the format can go onto the clipboard.
MARLO_EXPORT_API bool supportsCopy(DataFormatBase const& format);

MARLO_EXPORT_API bool projectHasVisibleLayers(KORV_ProjectManager& project);

/// @param layer not null
MARLO_EXPORT_API bool isLayerOrAncestorGroupSelected(Korvane::LayerBase const* layer);

}
