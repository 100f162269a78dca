#include "Host/FileAssetMeshes.h"

#include "Host/KORV_Exception.h"
#include "Host/KORV_ProjectManager.h"
#include "marlohost/ObjFile.h"
#include "TextLines.h"

#include <QDir>
#include <QFileInfo>

namespace ZN
{

AssetMeshes readAssetMeshes(FileAsset3DParameterSet const& asset, KORV_ProjectManager const& project)
{
    QFileInfo const file(QFileInfo(project.projectFilePath()).dir(), asset.path());
    if (file.suffix().compare(QLatin1String("obj"), Qt::CaseInsensitive) != 0)
    {
        return {{}, asset.path() + QStringLiteral(": only .obj files are read")};
    }
    if (!file.isFile())
    {
        return {{}, asset.path() + QStringLiteral(": there is no such file")};
    }
    try
    {
        QByteArray const text = MarloHost::readWholeFile(file.filePath(), MarloHost::ObjLimits::BYTES);
        return {MarloHost::readObj(text, asset.path()), QString()};
    }
    catch (KORV_BadFile const& error)
    {
        return {{}, error.message()};
    }
}

}
