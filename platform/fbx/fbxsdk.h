#pragma once
// The part of the FBX SDK's interface that the exporters use, under the SDK's own names.
//
// A scene is built of nodes, attributes and curves, all owned by an FbxManager, and an
// FbxExporter writes it as binary FBX 7.7 or 6.1. Sources that include this header compile
// against the SDK as well; docs/fbx-sdk.md says how to build with it.

#include "FbxAnimation.h"
#include "FbxCamera.h"
#include "FbxExport.h"
#include "FbxMesh.h"
#include "FbxNode.h"
#include "FbxObject.h"
#include "FbxProperty.h"
#include "FbxScene.h"
#include "FbxTime.h"
#include "FbxTypes.h"

#ifndef FBXSDK_NAMESPACE_USING
#define FBXSDK_NAMESPACE_USING 1
#endif

#if FBXSDK_NAMESPACE_USING
using namespace fbxsdk;
#endif
