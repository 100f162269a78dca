#include "Core/Preset.h"

#include <utility>

namespace Export
{

Preset::Preset() = default;

Preset::Preset(ExportInfo&& info)
{
    exports.push_back(std::move(info));
}

Preset::Preset(std::vector<ExportInfo>&& infos) : exports(std::move(infos))
{
}

}
