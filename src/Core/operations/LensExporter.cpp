#include "Core/LensExporter.h"

#include "Host/Fnd.h"

namespace Export
{

LensExporter::LensExporter() = default;

LensExporter::~LensExporter() = default;

void LensExporter::copyToClipboard(Fnd::IClipboard& clipboard, QString const& text) const
{
    Korvane::smartCopy(clipboard, text);
}

}
