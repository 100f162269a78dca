// From the scene in memory to the bytes of a file.

#include "FBX/parts/SceneFile.h"

#include "FBX/FBX3DExporterBase.h"
#include "Writing/TextBuffer.h"
#include "Writing/ThrowHelpers.h"

#include <QDir>
#include <QFile>
#include <QTemporaryFile>

namespace Export
{
namespace FBXParts
{

namespace
{

constexpr char SOURCE[] = "FBX\\FBX3DExporterBase";
constexpr char TEMPORARY_NAME[] = "FBXtemp.XXXXXX.fbx";

/// The registry names its writers; those of text are never taken.
int binaryWriter(FbxIOPluginRegistry const& registry, int version)
{
    int current = -1;
    int version6 = -1;
    for (int writer = 0; writer < registry.GetWriterFormatCount(); ++writer)
    {
        QString const description = QString::fromUtf8(registry.GetWriterFormatDescription(writer));
        bool const isText = description.contains(QLatin1String("ascii"));
        if (registry.WriterIsFBX(writer) && !isText && description.contains(QLatin1String("bin")))
        {
            (description.contains(QLatin1String("6.0")) ? version6 : current) = writer;
        }
    }
    return version == FBX3DExporterBase::VERSION_6 ? version6 : current;
}

[[noreturn]] void throwNotWritten(QString const& path, char const* why)
{
    throwOperationFailed(SOURCE, __LINE__, QStringLiteral("FBX exporter: ") + QString::fromUtf8(why),
                         FBX3DExporterBase::tr("Could not write to file %1").arg(path));
}

}

QByteArray fileOf(FbxManager& manager, FbxScene& scene, int version)
{
    QString folder = QDir::toNativeSeparators(QDir::tempPath());
    if (!folder.endsWith(QDir::separator()))
    {
        folder += QDir::separator();
    }
    QTemporaryFile temporary(folder + QLatin1String(TEMPORARY_NAME));
    if (!temporary.open())
    {
        throwOperationFailed(SOURCE, __LINE__,
                             QStringLiteral("FBX exporter: Could not open a temporary file <") +
                                 temporary.fileTemplate() + QStringLiteral(">"),
                             FBX3DExporterBase::tr("FBX exporter could not open a temporary file"));
    }
    QString const path = temporary.fileName();
    temporary.close();

    FbxIOSettings* const settings = FbxIOSettings::Create(&manager, IOSROOT);
    settings->SetBoolProp(EXP_FBX_ANIMATION, true);
    settings->SetBoolProp(EXP_FBX_EMBEDDED, false);
    manager.SetIOSettings(settings);
    FbxExporter* const exporter = FbxExporter::Create(&manager, "");
    int const writer = binaryWriter(*manager.GetIOPluginRegistry(), version);
    if (!exporter->Initialize(path.toUtf8(), writer, settings) || !exporter->Export(&scene))
    {
        throwNotWritten(path, exporter->GetStatus().GetErrorString());
    }
    exporter->Destroy();

    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
    {
        throwNotWritten(path, file.errorString().toUtf8());
    }
    requireTextSize(file.size(), FBX3DExporterBase::tr("Export fewer layers, or leave the features out."));
    QByteArray const bytes = file.readAll();
    if (bytes.isEmpty() || file.error() != QFileDevice::NoError)
    {
        throwNotWritten(path, file.errorString().toUtf8());
    }
    return bytes;
}

}
}
