#pragma once
// Stored export requests.

#include "Core/ExportApi.h"
#include "Core/UserOptions.h"

#include <QString>

#include <optional>
#include <variant>
#include <vector>

namespace Export
{

/// One or several exports that a user or a batch run can repeat.
struct MARLO_EXPORT_API Preset
{
    struct ExportInfo
    {
        enum Type
        {
            Tracking = 0,
            Shape = 1,
            Camera = 2
        };

        /// Internal name of the format.
        QString format;

        /// Says which alternative `options` must hold. The numbers differ from its indices.
        Type type = Tracking;
        std::variant<UserTrackingOptions, UserCameraSolveOptions, UserShapeOptions> options;

        /// Target file; unset when the user is to be asked.
        std::optional<QString> filePath;
    };

    Preset();
    explicit Preset(ExportInfo&& info);
    explicit Preset(std::vector<ExportInfo>&& infos);

    std::vector<ExportInfo> exports;
};

}
