// Any bytes as a table of corners: a project that can be read back, or one clear
// refusal.

#include "marlohost/CornerTable.h"
#include "marlohost/ProjectFile.h"

#include "Host/KORV_Exception.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    QByteArray const text(reinterpret_cast<char const*>(data), static_cast<int>(size));
    MarloHost::CornerImport import;
    import.width = 1920;
    import.height = 1080;
    import.clipName = QStringLiteral("fuzz");
    MarloHost::ProjectModel model;
    try
    {
        MarloHost::CornerTable const table = MarloHost::readCornerTable(text, QStringLiteral("fuzz.txt"));
        MarloHost::cornerOrientations(table, import);
        table.missingFrames();
        constexpr int FEW_FRAMES = 1000;
        import.interpolateGaps = table.lastFrame - table.firstFrame < FEW_FRAMES;
        model = MarloHost::projectFromCorners(table, import);
    }
    catch (KORV_BadFile const& error)
    {
        if (error.message().contains(QLatin1Char('\n')))
        {
            std::abort(); // not one clear line
        }
        return 0;
    }
    MarloHost::readProject(MarloHost::writeProject(model), QStringLiteral("again.json"));
    return 0;
}
