// Any bytes as the three files of a COLMAP model, lines of "====" between them, of binary
// ones behind a line "binary": a project that can be read back, or one clear refusal.

#include "marlohost/ColmapModel.h"
#include "marlohost/ProjectFile.h"

#include "Host/KORV_Exception.h"

#include <cstdint>
#include <cstdlib>

namespace
{

/// Takes what stands before the next separator, and the separator.
QByteArray takeFile(QByteArray& rest)
{
    static char const separator[] = "\n====\n";
    int const end = rest.indexOf(separator);
    QByteArray const file = rest.left(end);
    rest = end < 0 ? QByteArray() : rest.mid(end + static_cast<int>(sizeof separator) - 2);
    return file;
}

}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    QByteArray rest(reinterpret_cast<char const*>(data), static_cast<int>(size));
    MarloHost::ColmapFiles files;
    if (QByteArray const mark = "binary\n"; rest.startsWith(mark))
    {
        files.form = MarloHost::ColmapForm::Binary;
        rest.remove(0, mark.size());
    }
    files.cameras = takeFile(rest);
    files.images = takeFile(rest);
    files.points = takeFile(rest);
    MarloHost::ColmapImport import;
    import.clipName = QStringLiteral("fuzz");
    import.scale = size % 2 == 0 ? 1 : 1e9;
    MarloHost::ColmapProject result;
    try
    {
        MarloHost::ColmapModel const model = MarloHost::readColmapModel(files, QStringLiteral("fuzz"));
        result = MarloHost::projectFromColmap(model, import);
    }
    catch (KORV_BadFile const& error)
    {
        if (error.message().contains(QLatin1Char('\n')))
        {
            std::abort(); // not one clear line
        }
        return 0;
    }
    MarloHost::readProject(MarloHost::writeProject(result.project), QStringLiteral("again.json"));
    return 0;
}
