// A node record is three numbers (where it ends in the file, how many properties it has, how many
// bytes they take), its name, the properties, and its children. The numbers have 64 bits from
// version 7500 on, before that 32.

#include "FbxBinary.h"

#include <zlib.h>

#include <cstdio>
#include <cstring>
#include <limits>
#include <new>

namespace fbxsdk
{

namespace
{

constexpr char magic[] = "Kaydara FBX Binary  \0\x1a"; // with its last zero, 23 bytes
constexpr std::size_t smallArray = 1000;
constexpr std::size_t footAlignment = 16;
constexpr std::size_t footZeros = 120;

constexpr FbxId fileKey{0x18, 0xb3, 0x1a, 0xea, 0x86, 0x24, 0xfc, 0xc3, 0x8e, 0xc9, 0x80, 0x23, 0x97, 0x25, 0xc2, 0xff};
constexpr FbxId footKey1{0x58, 0xab, 0xa9, 0xf0, 0x6c, 0xa2, 0xd8, 0x3f,
                         0x4d, 0x47, 0x49, 0xa3, 0xb4, 0xb2, 0xe7, 0x3d};
constexpr FbxId footKey2{0xe2, 0x4f, 0x7b, 0x5f, 0xcd, 0xe4, 0xc8, 0x6d,
                         0xdb, 0xd8, 0xfb, 0xd7, 0x40, 0x58, 0xc6, 0x78};
constexpr FbxId footEnd{0xf8, 0x5a, 0x8c, 0x6a, 0xde, 0xf5, 0xd9, 0x7e, 0xec, 0xe9, 0x0c, 0xe3, 0x75, 0x8f, 0x29, 0x0b};

/// The moment as 16 digits, in the order that the ids are made from.
FbxId digits(FbxMoment const& moment)
{
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%02d%02d%02d%02d%02d%04d%02d", moment.second % 100, moment.month % 100,
                  moment.hour % 100, moment.day % 100, moment.millisecond / 10 % 100, moment.year % 10000,
                  moment.minute % 100);
    FbxId result{};
    std::memcpy(result.data(), text.data(), result.size());
    return result;
}

FbxId chain(FbxId const& a, FbxId const& b, unsigned char start)
{
    FbxId result{};
    unsigned char running = start;
    for (std::size_t i = 0; i < result.size(); ++i)
    {
        running = static_cast<unsigned char>(a[i] ^ b[i] ^ running);
        result[i] = running;
    }
    return result;
}

std::string_view view(FbxId const& id)
{
    return {reinterpret_cast<char const*>(id.data()), id.size()};
}

}

std::string fbxCreationTime(FbxMoment const& moment)
{
    std::array<char, 96> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d:%03d", moment.year, moment.month, moment.day,
                  moment.hour, moment.minute, moment.second, moment.millisecond);
    return text.data();
}

FbxId fbxFileId(FbxMoment const& moment)
{
    FbxId result = chain(digits(moment), FbxId{}, 0);
    for (std::size_t i = 0; i < result.size(); ++i)
    {
        result[i] ^= fileKey[i];
    }
    return result;
}

FbxId fbxFooterId(FbxMoment const& moment)
{
    constexpr unsigned char start = 0x40;
    FbxId const time = digits(moment);
    return chain(chain(chain(footKey1, time, start), footKey2, start), time, start);
}

FbxBinary::FbxBinary(int version) : m_version(version), m_bytes(magic, sizeof(magic))
{
    raw(static_cast<std::uint32_t>(version));
}

template <class T>
void FbxBinary::raw(T value)
{
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "numbers are copied as they lie in memory");
    std::array<char, sizeof(T)> bytes;
    std::memcpy(bytes.data(), &value, sizeof(T));
    m_bytes.append(bytes.data(), bytes.size());
}

void FbxBinary::put(int value)
{
    ++m_leafCount;
    m_bytes += 'I';
    raw(static_cast<std::int32_t>(value));
}

void FbxBinary::put(FbxLongLong value)
{
    ++m_leafCount;
    m_bytes += 'L';
    raw(value);
}

void FbxBinary::put(double value)
{
    ++m_leafCount;
    m_bytes += 'D';
    raw(value);
}

void FbxBinary::put(std::string_view text)
{
    ++m_leafCount;
    m_bytes += 'S';
    appendLength(text.size());
    m_bytes += text;
}

void FbxBinary::put(FbxLetter letter)
{
    ++m_leafCount;
    m_bytes += 'C';
    m_bytes += letter.letter;
}

void FbxBinary::put(FbxBytes bytes)
{
    ++m_leafCount;
    m_bytes += 'R';
    appendLength(bytes.bytes.size());
    m_bytes += bytes.bytes;
}

void FbxBinary::appendLength(std::size_t length)
{
    if (length > std::numeric_limits<std::uint32_t>::max())
    {
        throw FbxTooLarge("a text or array is too long for an FBX file");
    }
    raw(static_cast<std::uint32_t>(length));
}

std::size_t FbxBinary::begin(std::string_view name, std::size_t propertyCount)
{
    std::size_t const start = m_bytes.size();
    m_bytes.append(isWide() ? 24 : 12, '\0');
    m_bytes += static_cast<char>(name.size());
    m_bytes += name;
    patch(start, 1, propertyCount);
    return start;
}

void FbxBinary::endProperties(std::size_t start)
{
    std::size_t const head = isWide() ? 25 : 13;
    auto const nameLength = static_cast<unsigned char>(m_bytes[start + head - 1]);
    patch(start, 2, m_bytes.size() - start - head - nameLength);
}

void FbxBinary::end(std::size_t start)
{
    patch(start, 0, m_bytes.size());
}

void FbxBinary::patch(std::size_t start, int field, std::size_t value)
{
    std::size_t const width = isWide() ? 8 : 4;
    if (!isWide() && value > std::numeric_limits<std::uint32_t>::max())
    {
        throw FbxTooLarge("the scene is too large for an FBX 6.1 file, which ends at 4 GB");
    }
    std::size_t const place = start + static_cast<std::size_t>(field) * width;
    for (std::size_t i = 0; i < width; ++i)
    {
        m_bytes[place + i] = static_cast<char>(value >> (8 * i));
    }
}

void FbxBinary::close()
{
    m_bytes.append(isWide() ? 25 : 13, '\0');
    end(m_open.back());
    m_open.pop_back();
}

void FbxBinary::beginLeaf(std::string_view name)
{
    m_leafStart = begin(name, 0);
    m_leafCount = 0;
}

void FbxBinary::endLeaf()
{
    patch(m_leafStart, 1, m_leafCount);
    endProperties(m_leafStart);
    end(m_leafStart);
}

void FbxBinary::array(std::string_view name, std::vector<double> const& values)
{
    putArray('d', name, values);
}

void FbxBinary::array(std::string_view name, std::vector<float> const& values)
{
    putArray('f', name, values);
}

void FbxBinary::array(std::string_view name, std::vector<int> const& values)
{
    putArray('i', name, values);
}

void FbxBinary::array(std::string_view name, std::vector<FbxLongLong> const& values)
{
    putArray('l', name, values);
}

template <class T>
void FbxBinary::putArray(char code, std::string_view name, std::vector<T> const& values)
{
    if (m_version >= 7000)
    {
        std::size_t const start = begin(name, 1);
        packArray(code, values);
        endProperties(start);
        end(start);
        return;
    }
    std::size_t const start = begin(name, values.size());
    m_bytes.reserve(m_bytes.size() + values.size() * (1 + sizeof(T)));
    for (T const value : values)
    {
        m_bytes += static_cast<char>(code - 'a' + 'A');
        raw(value);
    }
    endProperties(start);
    end(start);
}

template <class T>
void FbxBinary::packArray(char code, std::vector<T> const& values)
{
    std::size_t const length = values.size() * sizeof(T);
    m_bytes += code;
    appendLength(values.size());
    raw(std::uint32_t{length > smallArray});
    std::size_t const lengthPlace = m_bytes.size();
    appendLength(length);
    if (length <= smallArray)
    {
        m_bytes.append(reinterpret_cast<char const*>(values.data()), length);
        return;
    }
    std::size_t const place = m_bytes.size();
    uLongf packed = compressBound(length);
    m_bytes.resize(place + packed);
    if (compress2(reinterpret_cast<Bytef*>(&m_bytes[place]), &packed, reinterpret_cast<Bytef const*>(values.data()),
                  length, fbxDeflateLevel) != Z_OK)
    {
        throw std::bad_alloc();
    }
    m_bytes.resize(place + packed);
    for (std::size_t i = 0; i < sizeof(std::uint32_t); ++i)
    {
        m_bytes[lengthPlace + i] = static_cast<char>(packed >> (8 * i));
    }
}

void FbxBinary::finish(FbxMoment const& moment, std::size_t partStart)
{
    m_bytes.append(isWide() ? 25 : 13, '\0');
    m_bytes += view(fbxFooterId(moment));
    m_bytes.append(footAlignment - m_bytes.size() % footAlignment, '\0');
    raw(static_cast<std::uint32_t>(partStart ? m_bytes.size() - partStart : 0));
    raw(static_cast<std::uint32_t>(m_version));
    m_bytes.append(footZeros, '\0');
    m_bytes += view(footEnd);
}

}
