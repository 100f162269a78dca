#pragma once
// The words, limits and complaints that writer and reader of project files share.

#include "kestrelia/Scene.h"

#include <cstdint>
#include <string_view>
#include <unordered_set>

namespace KestreliaLib
{
namespace Kst
{

constexpr int VERSION = 1;

/// What a QByteArray of Qt 5 can hold, with room for its own record, in bytes.
constexpr long long LARGEST_FILE = 2147483647 - 64;
constexpr std::size_t MOST_RECORDS = 10000000;
constexpr unsigned int LARGEST_ID = 2147483647;
constexpr int LARGEST_FRAME = 1000000000;
constexpr int LARGEST_SIDE = 1000000;
constexpr int FEWEST_CORNERS = 3;

/// The time of what is at rest.
constexpr std::string_view AT_REST = "-";

/// Whether a character stands in a name by its code.
inline bool isControl(char character)
{
    auto const code = static_cast<unsigned char>(character);
    return code < 0x20 || code == 0x7F;
}

/// The ids that the records of a word have had so far.
class Ids
{
public:
    /// False when the id isn't one or was there before.
    bool take(unsigned int id)
    {
        return id >= 1 && id <= LARGEST_ID && m_ids.insert(id).second;
    }

    bool holds(unsigned int id) const
    {
        return m_ids.count(id) > 0;
    }

private:
    std::unordered_set<unsigned int> m_ids;
};

/// What is wrong with the numbers of a shot, of its camera, with the faces of a mesh; null
/// for nothing.
char const* faultOf(Shot const& shot);
char const* faultOf(Camera const& camera);
char const* faultOf(Mesh const& mesh);

}
}
