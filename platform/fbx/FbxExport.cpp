#include "FbxExport.h"

#include "FbxManagerData.h"
#include "FbxParts.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>

namespace fbxsdk
{

FBXSDK_OBJECT_IMPLEMENT(FbxIOSettings);
FBXSDK_OBJECT_IMPLEMENT(FbxExporter);

namespace
{

struct Writer
{
    char const* description;
    int version;
    void (*write)(FbxContent&, FbxBinary&);
};

constexpr std::array<Writer, 2> writers{{
    {"FBX binary (*.fbx)", 7700, fbxWrite7},
    {"FBX 6.0 binary (*.fbx)", 6100, fbxWrite6},
}};
constexpr int nativeWriter = 0;

bool isWriter(int format)
{
    return format >= 0 && format < static_cast<int>(writers.size());
}

/// Writes all bytes; an empty text, or what went wrong.
std::string writeFile(std::string const& name, std::string const& bytes)
{
    std::FILE* const file = std::fopen(name.c_str(), "wb");
    if (!file)
    {
        return std::strerror(errno);
    }
    errno = 0;
    bool isWritten = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    int error = errno;
    if (std::fclose(file) != 0 && isWritten)
    {
        error = errno;
        isWritten = false;
    }
    if (isWritten)
    {
        return {};
    }
    std::error_code ignored;
    if (std::filesystem::is_regular_file(name, ignored))
    {
        std::filesystem::remove(name, ignored);
    }
    return error ? std::strerror(error) : "not all bytes could be written";
}

}

int FbxIOPluginRegistry::GetWriterFormatCount() const
{
    return static_cast<int>(writers.size());
}

bool FbxIOPluginRegistry::WriterIsFBX(int format) const
{
    return isWriter(format);
}

char const* FbxIOPluginRegistry::GetWriterFormatDescription(int format) const
{
    return isWriter(format) ? writers[static_cast<std::size_t>(format)].description : "";
}

char const* FbxIOPluginRegistry::GetWriterFormatExtension(int format) const
{
    return isWriter(format) ? "fbx" : "";
}

int FbxIOPluginRegistry::GetNativeWriterFormat() const
{
    return nativeWriter;
}

int FbxIOPluginRegistry::FindWriterIDByDescription(char const* description) const
{
    for (int i = 0; description && i < GetWriterFormatCount(); ++i)
    {
        if (std::strcmp(GetWriterFormatDescription(i), description) == 0)
        {
            return i;
        }
    }
    return -1;
}

FbxIOSettings::FbxIOSettings(FbxManager& manager, char const* name) : FbxObject(manager, name)
{
}

void FbxIOSettings::SetBoolProp(char const* name, bool value)
{
    if (name)
    {
        mSwitches[name] = value;
    }
}

bool FbxIOSettings::GetBoolProp(char const* name, bool fallback) const
{
    auto const found = name ? mSwitches.find(name) : mSwitches.end();
    return found == mSwitches.end() ? fallback : found->second;
}

FbxExporter::FbxExporter(FbxManager& manager, char const* name) : FbxObject(manager, name)
{
}

bool FbxExporter::Initialize(char const* fileName, int format, FbxIOSettings* settings)
{
    mStatus.Clear();
    mFileName = fileName ? fileName : "";
    mFormat = format == -1 ? nativeWriter : format;
    mSettings = settings;
    if (mFileName.empty())
    {
        mStatus.SetCode(FbxStatus::eInvalidParameter, "there is no name of a file to write");
    }
    else if (!isWriter(mFormat))
    {
        mStatus.SetCode(FbxStatus::eInvalidParameter, "there is no writer of this number");
    }
    return !mStatus.Error();
}

bool FbxExporter::Export(FbxDocument* document, bool)
{
    mStatus.Clear();
    auto* const scene = dynamic_cast<FbxScene*>(document);
    if (!scene || mFileName.empty() || !isWriter(mFormat))
    {
        mStatus.SetCode(FbxStatus::eInvalidParameter,
                        scene ? "no file to write was set" : "there is no scene to write");
        return false;
    }
    Writer const& writer = writers[static_cast<std::size_t>(mFormat)];
    FbxIOSettings const* const settings = mSettings ? mSettings : GetFbxManager()->GetIOSettings();
    try
    {
        FbxContent content(*scene, writer.version, !settings || settings->GetBoolProp(EXP_FBX_ANIMATION, true));
        FbxBinary out(writer.version);
        out.reserve(content.expectedSize());
        writer.write(content, out);
        std::string const error = writeFile(mFileName, out.bytes());
        if (!error.empty())
        {
            mStatus.SetCode(FbxStatus::eFailure, (mFileName + ": " + error).c_str());
        }
    }
    catch (FbxTooLarge const& error)
    {
        mStatus.SetCode(FbxStatus::eFailure, error.what());
    }
    catch (std::bad_alloc const&)
    {
        mStatus.SetCode(FbxStatus::eInsufficientMemory, "there is not enough memory for the file");
    }
    return !mStatus.Error();
}

void FbxExporter::forget(FbxDoomed const& doomed)
{
    FbxObject::forget(doomed);
    mSettings = fbxStill(mSettings, doomed);
}

FbxStatus& FbxExporter::GetStatus()
{
    return mStatus;
}

FbxString FbxExporter::GetFileName() const
{
    return FbxString(mFileName);
}

}
