#pragma once
// A binary FBX file of version 7 as a tree, read by its layout alone.

#include <QByteArray>
#include <QByteArrayList>
#include <QtEndian>

#include <map>
#include <stdexcept>
#include <vector>

class FbxTree
{
public:
    /// A record with its values: texts and numbers apart, arrays flat.
    struct Record
    {
        QByteArray name;
        QByteArrayList texts;
        std::vector<double> numbers;
        std::vector<Record> children;
    };

    struct Curve
    {
        std::vector<double> ticks;
        std::vector<double> values;
    };

    explicit FbxTree(QByteArray const& bytes) : m_bytes(bytes), m_at(27)
    {
        while (readRecord(m_root))
        {
        }
    }

    /// All records of a name, at any depth.
    std::vector<Record const*> all(char const* name) const
    {
        std::vector<Record const*> found;
        collect(m_root, name, found);
        return found;
    }

    /// An object such as Model or Geometry by its own name; null when there is none.
    Record const* object(char const* kind, QByteArray const& name) const
    {
        for (Record const* record : all(kind))
        {
            if (!record->texts.isEmpty() && record->texts[0].split('\0').value(0) == name)
            {
                return record;
            }
        }
        return nullptr;
    }

    /// The values of a property of an object, or of the settings.
    std::vector<double> property(Record const* object, char const* name) const
    {
        std::vector<Record const*> found;
        collect(*object, "P", found);
        for (Record const* record : found)
        {
            if (record->texts.value(0) == name)
            {
                return record->numbers;
            }
        }
        return {};
    }

    /// The curve of a property's channel, such as "d|X"; empty when there is none.
    Curve curve(Record const* object, char const* property, char const* channel) const
    {
        for (double const node : sources(object->numbers[0], property))
        {
            for (double const id : sources(node, channel))
            {
                for (Record const* record : all("AnimationCurve"))
                {
                    if (record->numbers[0] == id)
                    {
                        return {values(*record, "KeyTime"), values(*record, "KeyValueFloat")};
                    }
                }
            }
        }
        return {};
    }

    /// The name of the model that a model hangs on; empty for the root.
    QByteArray parentOf(char const* model) const
    {
        double const id = object("Model", model)->numbers[0];
        for (Record const* connection : all("C"))
        {
            for (Record const* parent : all("Model"))
            {
                if (connection->numbers[0] == id && connection->numbers[1] == parent->numbers[0])
                {
                    return parent->texts[0].split('\0').value(0);
                }
            }
        }
        return QByteArray();
    }

    /// The array of a child record.
    static std::vector<double> values(Record const& record, char const* child)
    {
        std::vector<Record const*> found;
        collect(record, child, found);
        return found.empty() ? std::vector<double>() : found.front()->numbers;
    }

private:
    static void collect(Record const& record, char const* name, std::vector<Record const*>& found)
    {
        for (Record const& child : record.children)
        {
            if (child.name == name)
            {
                found.push_back(&child);
            }
            collect(child, name, found);
        }
    }

    /// What is connected to a property of an object.
    std::vector<double> sources(double id, char const* property) const
    {
        std::vector<double> found;
        for (Record const* connection : all("C"))
        {
            if (connection->texts.value(1) == property && connection->numbers[1] == id)
            {
                found.push_back(connection->numbers[0]);
            }
        }
        return found;
    }

    template <typename T>
    T take()
    {
        QByteArray const raw = takeBytes(sizeof(T));
        return qFromLittleEndian<T>(raw.constData());
    }

    QByteArray takeBytes(qint64 count)
    {
        if (count < 0 || m_at + count > m_bytes.size())
        {
            throw std::runtime_error("the file ends in a record");
        }
        m_at += count;
        return m_bytes.mid(static_cast<int>(m_at - count), static_cast<int>(count));
    }

    bool readRecord(Record& parent)
    {
        auto const end = take<qint64>();
        auto const count = take<qint64>();
        take<qint64>();
        Record record;
        record.name = takeBytes(take<quint8>());
        if (end == 0)
        {
            return false;
        }
        for (qint64 i = 0; i < count; ++i)
        {
            readValue(record);
        }
        while (m_at < end && readRecord(record))
        {
        }
        parent.children.push_back(record);
        return true;
    }

    void readValue(Record& record)
    {
        char const type = takeBytes(1)[0];
        if (type == 'S' || type == 'R')
        {
            record.texts += takeBytes(take<quint32>());
            return;
        }
        bool const isArray = type >= 'a';
        auto const count = isArray ? take<quint32>() : 1U;
        bool const isPacked = isArray && take<quint32>() == 1;
        QByteArray data = isArray ? takeBytes(take<quint32>()) : takeBytes(sizeOf(type));
        if (isPacked)
        {
            QByteArray length(4, '\0');
            qToBigEndian(count * static_cast<quint32>(sizeOf(type)), length.data());
            data = qUncompress(length + data);
        }
        for (quint32 i = 0; i < count; ++i)
        {
            record.numbers.push_back(number(type, data.constData() + i * static_cast<quint32>(sizeOf(type))));
        }
    }

    static int sizeOf(char type)
    {
        static std::map<char, int> const sizes{{'C', 1}, {'b', 1}, {'Y', 2}, {'I', 4}, {'i', 4}, {'F', 4},
                                               {'f', 4}, {'L', 8}, {'l', 8}, {'D', 8}, {'d', 8}};
        return sizes.at(type);
    }

    static double number(char type, char const* data)
    {
        switch (type)
        {
        case 'I':
        case 'i':
            return qFromLittleEndian<qint32>(data);
        case 'L':
        case 'l':
            return static_cast<double>(qFromLittleEndian<qint64>(data));
        case 'F':
        case 'f':
            return static_cast<double>(qFromLittleEndian<float>(data));
        case 'D':
        case 'd':
            return qFromLittleEndian<double>(data);
        default:
            return *data;
        }
    }

    QByteArray m_bytes;
    qint64 m_at;
    Record m_root;
};
