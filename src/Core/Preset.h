#pragma once
// Stored export requests, and the JSON text that keeps them. docs/presets.md has its
// keys.

#include "Core/ExportApi.h"
#include "Core/UserOptions.h"

#include <QHash>
#include <QString>

#include <iosfwd>
#include <optional>
#include <string>
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

/// The text of a preset file: the same presets give the same bytes. Presets are
/// ordered by name, keys by their bytes; text stands as UTF-8, without escapes.
/// @param pretty indented by two blanks, else on one line
/// @throws std::bad_variant_access when the options of an export aren't those of its
///         type
/// @throws CustomJsonException (Core/PresetJsonException.h) for an enumerator that has
///         no word, and for custom data that is neither bool nor text
MARLO_EXPORT_API std::string serialisePresets(QHash<QString, Preset> const& presets, bool pretty);

/// Reads the stream to its end. The later of two presets of one name wins.
///
/// Types are strict: true is no number, 1 is no bool. At most 16 MiB of text, nested
/// no deeper than 32 levels, are taken.
/// @throws nlohmann::json::exception, or CustomJsonException that derives from it, for
///         anything that is no JSON or no presets
/// @throws KORV_BadFile for another version than 1
/// @throws std::ios_base::failure when the stream can't be read
MARLO_EXPORT_API QHash<QString, Preset> deserialisePresets(std::istream& stream);

/// The same, and says where it fails.
/// @param place takes the JSON path of what can't be read, such as
///        "$.presets[0].exports[1].options.invert"; "$" for the text as a whole
MARLO_EXPORT_API QHash<QString, Preset> deserialisePresets(std::istream& stream, std::string& place);

/// @throws KORV_BadFile when the file can't be read or has another version than 1
/// @throws KORV_ExternalException with the parser's words for all else that
///         deserialisePresets refuses
MARLO_EXPORT_API QHash<QString, Preset> loadPresetsFromFile(QString const& path);

/// Writes the indented text, whole or not at all: whatever goes wrong, a file that was
/// there stays as it was. What couldn't be read back isn't written.
/// @throws KORV_ExternalException when the presets have no text, or the file can't be
///         written
MARLO_EXPORT_API void writePresetsToFile(QHash<QString, Preset> const& presets, QString const& path);

}
