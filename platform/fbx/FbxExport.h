#pragma once
// Writing of files.

#include "FbxObject.h"
#include "FbxScene.h"

#include <map>
#include <string>

#define IOSROOT "IOSRoot"
#define EXP_FBX_ANIMATION "Export|AdvOptGrp|Fbx|Animation"
#define EXP_FBX_EMBEDDED "Export|AdvOptGrp|Fbx|EMBEDDED"
#define EXP_FBX_MATERIAL "Export|AdvOptGrp|Fbx|Material"
#define EXP_FBX_TEXTURE "Export|AdvOptGrp|Fbx|Texture"

namespace fbxsdk
{

/// How an operation ended.
class FbxStatus
{
public:
    enum EStatusCode
    {
        eSuccess = 0,
        eFailure,
        eInsufficientMemory,
        eInvalidParameter,
        eIndexOutOfRange,
        ePasswordError,
        eInvalidFileVersion,
        eInvalidFile,
        eSceneCheckFail
    };

    bool Error() const
    {
        return mCode != eSuccess;
    }

    void Clear()
    {
        mCode = eSuccess;
        mText = FbxString();
    }

    EStatusCode GetCode() const
    {
        return mCode;
    }

    void SetCode(EStatusCode code)
    {
        SetCode(code, "");
    }

    /// @param text what happened; taken as it is
    void SetCode(EStatusCode code, char const* text)
    {
        mCode = code;
        mText = FbxString(text);
    }

    /// What happened, in words; empty when nothing failed.
    char const* GetErrorString() const
    {
        return mText.Buffer();
    }

private:
    EStatusCode mCode = eSuccess;
    FbxString mText;
};

/// The formats that can be written. A number that no format has gives false or an empty text.
class FbxIOPluginRegistry
{
public:
    int GetWriterFormatCount() const;
    bool WriterIsFBX(int format) const;

    /// "FBX binary (*.fbx)" is version 7.7, "FBX 6.0 binary (*.fbx)" version 6.1.
    char const* GetWriterFormatDescription(int format) const;
    char const* GetWriterFormatExtension(int format) const;

    /// That of version 7.7.
    int GetNativeWriterFormat() const;

    /// -1 when there is none.
    int FindWriterIDByDescription(char const* description) const;
};

/// Named switches of an export. EXP_FBX_ANIMATION is the one that has an effect: off, no curve
/// is written.
class FbxIOSettings : public FbxObject
{
    FBXSDK_OBJECT_DECLARE(FbxIOSettings);

public:
    void SetBoolProp(char const* name, bool value);
    bool GetBoolProp(char const* name, bool fallback) const;

private:
    std::map<std::string, bool> mSwitches;
};

/// Writes scenes.
class FbxExporter : public FbxObject
{
    FBXSDK_OBJECT_DECLARE(FbxExporter);

public:
    /// @param fileName in UTF-8
    /// @param format a number of the registry; -1 for its native one
    /// @param settings null for those of the manager
    /// @return false with a status when the name is empty or the format unknown
    bool Initialize(char const* fileName, int format = -1, FbxIOSettings* settings = nullptr);

    /// Writes a scene into the file, which is replaced. The whole document is in memory before
    /// the file is opened.
    ///
    /// @param nonBlocking has no effect: the file is there when this returns
    /// @return false with a status for no scene, one that the version can't hold, or a file
    ///         that can't be written in full; a regular file that was begun is removed then
    bool Export(FbxDocument* document, bool nonBlocking = false);

    FbxStatus& GetStatus();
    FbxString GetFileName() const;

private:
    void forget(FbxDoomed const& doomed) override;

    FbxStatus mStatus;
    std::string mFileName;
    int mFormat = -1;
    FbxIOSettings* mSettings = nullptr;
};

}
