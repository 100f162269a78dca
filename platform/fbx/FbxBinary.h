#pragma once
// The container of binary FBX: node records, their properties, arrays, head and foot.

#include "FbxTypes.h"

#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace fbxsdk
{

/// The document can't be said in this version of the format.
class FbxTooLarge : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

/// When a file was made, in the parts that it is written in.
struct FbxMoment
{
    int year = 1970;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int millisecond = 0;
};

/// "2024-03-05 14:07:09:120"
std::string fbxCreationTime(FbxMoment const& moment);

using FbxId = std::array<unsigned char, 16>;

/// The two ids that a file carries of its creation time, at the start and at the end.
FbxId fbxFileId(FbxMoment const& moment);
FbxId fbxFooterId(FbxMoment const& moment);

/// Level of zlib that arrays are packed with: of all the fastest.
constexpr int fbxDeflateLevel = 1;

/// One character.
struct FbxLetter
{
    char letter;
};

/// Bytes that aren't text.
struct FbxBytes
{
    std::string_view bytes;
};

/// Puts a binary FBX document together in one buffer.
///
/// A node is a leaf, made at once, or a block, opened and closed around its children. A block
/// ends with an empty record even when it has no child; a leaf doesn't: readers tell them apart
/// by it.
class FbxBinary
{
public:
    /// Begins a document.
    ///
    /// @param version 7700, or 6100, which has no arrays and 32 bits for every length
    explicit FbxBinary(int version);

    /// Makes room for this many bytes; more are fine.
    void reserve(std::size_t bytes)
    {
        m_bytes.reserve(bytes);
    }

    int version() const
    {
        return m_version;
    }

    template <class... Values>
    void leaf(std::string_view name, Values const&... values)
    {
        std::size_t const start = begin(name, sizeof...(values));
        (put(values), ...);
        endProperties(start);
        end(start);
    }

    template <class... Values>
    void open(std::string_view name, Values const&... values)
    {
        std::size_t const start = begin(name, sizeof...(values));
        (put(values), ...);
        endProperties(start);
        m_open.push_back(start);
    }

    void close();

    /// A leaf with an array; in version 6100 each element is a property of its own.
    void array(std::string_view name, std::vector<double> const& values);
    void array(std::string_view name, std::vector<float> const& values);
    void array(std::string_view name, std::vector<int> const& values);
    void array(std::string_view name, std::vector<FbxLongLong> const& values);

    /// A leaf whose properties follow one by one, through put(), until endLeaf().
    void beginLeaf(std::string_view name);
    void endLeaf();
    void put(int value);
    void put(FbxLongLong value);
    void put(double value);
    void put(std::string_view text);
    void put(FbxLetter letter);
    void put(FbxBytes bytes);

    void put(char const* text)
    {
        put(std::string_view(text));
    }

    void put(std::string const& text)
    {
        put(std::string_view(text));
    }

    void put(bool) = delete;

    /// Ends a document, or a second part behind it.
    ///
    /// @param partStart where the second part began; 0 for the document itself
    void finish(FbxMoment const& moment, std::size_t partStart = 0);

    std::size_t size() const
    {
        return m_bytes.size();
    }

    /// The document so far.
    std::string const& bytes() const
    {
        return m_bytes;
    }

private:
    bool isWide() const
    {
        return m_version >= 7500;
    }

    template <class T>
    void raw(T value);
    template <class T>
    void putArray(char code, std::string_view name, std::vector<T> const& values);
    template <class T>
    void packArray(char code, std::vector<T> const& values);
    std::size_t begin(std::string_view name, std::size_t propertyCount);
    void endProperties(std::size_t start);
    void end(std::size_t start);
    void patch(std::size_t start, int field, std::size_t value);
    void appendLength(std::size_t length);

    int m_version;
    std::string m_bytes;
    std::vector<std::size_t> m_open;
    std::size_t m_leafCount = 0;
    std::size_t m_leafStart = 0;
};

}
