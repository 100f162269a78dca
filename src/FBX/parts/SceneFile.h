#pragma once

#include <fbxsdk.h>

#include <QByteArray>

namespace Export
{
namespace FBXParts
{

/// The scene as the bytes of a binary file. It goes through a temporary file.
///
/// @param version as FBX3DExporterBase takes it
/// @throws KORV_OperationFailed when the temporary file can't be written or read
QByteArray fileOf(FbxManager& manager, FbxScene& scene, int version);

}
}
