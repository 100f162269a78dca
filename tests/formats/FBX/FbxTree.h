#pragma once
// What tests ask of a scene in an FBX file of version 7.

#include "../../platform/test_fbx_file.h"

#include <QByteArray>

#include <vector>

class FbxTree
{
public:
    using Node = FbxFile::Node;

    struct Curve
    {
        std::vector<double> ticks;
        std::vector<double> values;
    };

    explicit FbxTree(QByteArray const& bytes) : m_file(bytes.toStdString())
    {
    }

    Node const* settings() const
    {
        return m_file.root.find("GlobalSettings");
    }

    /// An object such as a Model or a Geometry by its own name; null when there is none.
    Node const* object(char const* kind, QByteArray const& name) const
    {
        for (Node const& node : m_file.root.at("Objects").children)
        {
            if (node.name == kind && nameOf(node) == name)
            {
                return &node;
            }
        }
        return nullptr;
    }

    /// The values of a property.
    static std::vector<double> property(Node const* node, char const* name)
    {
        auto const& entry = node->property(name).properties;
        std::vector<double> values;
        for (std::size_t i = 4; i < entry.size(); ++i)
        {
            values.push_back(entry[i].number);
        }
        return values;
    }

    static std::vector<double> array(Node const* node, char const* name)
    {
        return node->at(name).numbers();
    }

    /// The curve of a property's channel, such as "d|X"; empty when there is none.
    Curve curve(Node const* node, char const* property, char const* channel) const
    {
        for (double const curveNode : sources(node->properties[0].number, property))
        {
            for (double const id : sources(curveNode, channel))
            {
                Node const* const found = objectOf(id);
                return {array(found, "KeyTime"), array(found, "KeyValueFloat")};
            }
        }
        return {};
    }

    /// The name of what a model hangs on; empty for the root.
    QByteArray parentOf(char const* model) const
    {
        double const id = object("Model", model)->properties[0].number;
        for (Node const& connection : m_file.root.at("Connections").children)
        {
            Node const* const parent = objectOf(connection.properties[2].number);
            if (connection.properties[1].number == id && parent && parent->name == "Model")
            {
                return nameOf(*parent);
            }
        }
        return QByteArray();
    }

private:
    static QByteArray nameOf(Node const& node)
    {
        return QByteArray::fromStdString(node.properties.at(1).text).split('\0').value(0);
    }

    Node const* objectOf(double id) const
    {
        for (Node const& node : m_file.root.at("Objects").children)
        {
            if (node.properties.at(0).number == id)
            {
                return &node;
            }
        }
        return nullptr;
    }

    /// What is connected to a property of an object.
    std::vector<double> sources(double id, char const* property) const
    {
        std::vector<double> found;
        for (Node const& connection : m_file.root.at("Connections").children)
        {
            auto const& ends = connection.properties;
            if (ends.size() > 3 && ends[2].number == id && ends[3].text == property)
            {
                found.push_back(ends[1].number);
            }
        }
        return found;
    }

    FbxFile::Reader m_file;
};
