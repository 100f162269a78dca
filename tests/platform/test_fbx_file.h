#pragma once
// A reader of binary FBX for tests, which knows the container alone and takes nothing on trust:
// each number of a record must agree with where its parts really end.

#include <zlib.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

namespace FbxFile
{

struct Property
{
    char code = 0;
    std::int64_t whole = 0;
    double number = 0;
    std::string text;
    std::vector<double> array;

    /// The array's bytes once unpacked, and whether they were packed.
    std::string bytes;
    bool isPacked = false;
};

struct Node
{
    std::string name;
    std::vector<Property> properties;
    std::vector<Node> children;

    /// Ends with an empty record.
    bool isBlock = false;

    Node const* find(std::string const& sought) const
    {
        for (Node const& child : children)
        {
            if (child.name == sought)
            {
                return &child;
            }
        }
        return nullptr;
    }

    Node const& at(std::string const& sought) const
    {
        Node const* const found = find(sought);
        return found ? *found : throw std::runtime_error(name + " has no " + sought);
    }

    std::vector<Node const*> all(std::string const& sought) const
    {
        std::vector<Node const*> result;
        for (Node const& child : children)
        {
            if (child.name == sought)
            {
                result.push_back(&child);
            }
        }
        return result;
    }

    /// The entry of a property list, in this node's list.
    Node const& property(std::string const& sought) const
    {
        Node const* list = find("Properties70");
        for (Node const& entry : (list ? *list : at("Properties60")).children)
        {
            if (entry.properties.at(0).text == sought)
            {
                return entry;
            }
        }
        throw std::runtime_error(name + " has no property " + sought);
    }

    /// The last number of a property's entry.
    double value(std::string const& sought) const
    {
        return property(sought).properties.back().number;
    }

    /// The array, or in version 6.1 all of the leaf's numbers.
    std::vector<double> numbers() const
    {
        if (properties.size() == 1 && std::strchr("dfil", properties[0].code))
        {
            return properties[0].array;
        }
        std::vector<double> result;
        for (Property const& one : properties)
        {
            result.push_back(one.number);
        }
        return result;
    }
};

class Reader
{
public:
    explicit Reader(std::string data) : m_data(std::move(data))
    {
        expect(m_data.compare(0, 23, std::string("Kaydara FBX Binary  \0\x1a\0", 23)) == 0, "magic");
        m_at = 23;
        version = take<std::uint32_t>();
        m_isWide = version >= 7500;
        root.name = "file";
        readPart(root, 0);
        end = m_at;
        if (end < m_data.size())
        {
            readPart(summary, end);
        }
        expect(m_at == m_data.size(), "something behind the end");
    }

    std::uint32_t version = 0;
    Node root;
    std::string footer;

    /// Where the document ends; version 6.1 goes on with a second part.
    std::size_t end = 0;
    Node summary;

private:
    /// Nodes and the foot behind them.
    void readPart(Node& part, std::size_t start)
    {
        while (readNode(part.children))
        {
        }
        footer = takeText(16);
        std::size_t const padding = 16 - m_at % 16;
        expect(takeText(padding) == std::string(padding, '\0'), "padding");
        std::size_t const distance = m_at - start;
        expect(take<std::uint32_t>() == (start ? distance : 0), "distance from the part's start");
        expect(take<std::uint32_t>() == version, "version at the end");
        expect(takeText(120) == std::string(120, '\0'), "zeros at the end");
        expect(takeText(16) == "\xf8\x5a\x8c\x6a\xde\xf5\xd9\x7e\xec\xe9\x0c\xe3\x75\x8f\x29\x0b", "last bytes");
    }

    static void expect(bool holds, char const* what)
    {
        if (!holds)
        {
            throw std::runtime_error(std::string("broken file: ") + what);
        }
    }

    template <class T>
    T take()
    {
        expect(m_at + sizeof(T) <= m_data.size(), "ends early");
        T value;
        std::memcpy(&value, &m_data[m_at], sizeof(T));
        m_at += sizeof(T);
        return value;
    }

    std::size_t takeLength()
    {
        return m_isWide ? take<std::uint64_t>() : take<std::uint32_t>();
    }

    std::string takeText(std::size_t length)
    {
        expect(m_at + length <= m_data.size(), "text ends early");
        m_at += length;
        return m_data.substr(m_at - length, length);
    }

    bool readNode(std::vector<Node>& nodes)
    {
        std::size_t const nodeEnd = takeLength();
        std::size_t const count = takeLength();
        std::size_t const length = takeLength();
        Node node;
        node.name = takeText(take<std::uint8_t>());
        if (nodeEnd == 0)
        {
            expect(count == 0 && length == 0 && node.name.empty(), "empty record");
            return false;
        }
        std::size_t const start = m_at;
        for (std::size_t i = 0; i < count; ++i)
        {
            node.properties.push_back(readProperty());
        }
        expect(m_at - start == length, "length of properties");
        if (m_at < nodeEnd)
        {
            node.isBlock = true;
            while (readNode(node.children))
            {
            }
        }
        expect(m_at == nodeEnd, "end of a node");
        nodes.push_back(std::move(node));
        return true;
    }

    Property readProperty()
    {
        Property result;
        result.code = take<char>();
        switch (result.code)
        {
        case 'C':
            result.whole = take<char>();
            break;
        case 'I':
            result.whole = take<std::int32_t>();
            break;
        case 'L':
            result.whole = take<std::int64_t>();
            break;
        case 'D':
            result.number = take<double>();
            return result;
        case 'S':
        case 'R':
            result.text = takeText(take<std::uint32_t>());
            break;
        case 'd':
            readArray<double>(result);
            break;
        case 'f':
            readArray<float>(result);
            break;
        case 'i':
            readArray<std::int32_t>(result);
            break;
        case 'l':
            readArray<std::int64_t>(result);
            break;
        default:
            expect(false, "type of a property");
        }
        result.number = static_cast<double>(result.whole);
        return result;
    }

    template <class T>
    void readArray(Property& result)
    {
        expect(version >= 7000, "an array in an old version");
        std::size_t const count = take<std::uint32_t>();
        result.isPacked = take<std::uint32_t>() == 1;
        std::string const stored = takeText(take<std::uint32_t>());
        result.bytes = stored;
        if (result.isPacked)
        {
            result.bytes.assign(count * sizeof(T), '\0');
            uLongf length = result.bytes.size();
            expect(uncompress(reinterpret_cast<Bytef*>(result.bytes.data()), &length,
                              reinterpret_cast<Bytef const*>(stored.data()), stored.size()) == Z_OK,
                   "packed array");
        }
        expect(result.bytes.size() == count * sizeof(T), "length of an array");
        for (std::size_t i = 0; i < count; ++i)
        {
            T value;
            std::memcpy(&value, &result.bytes[i * sizeof(T)], sizeof(T));
            result.array.push_back(static_cast<double>(value));
        }
    }

    std::string m_data;
    std::size_t m_at = 0;
    bool m_isWide = false;
};

}
