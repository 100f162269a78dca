#pragma once
// The attributes of an object in a Premiere document.

#include "Core/ExportEnvironment.h"

#include <QDomElement>
#include <QString>
#include <QUuid>

namespace Export::Premiere
{

class Attribute
{
public:
    Attribute(QString const& name, QString const& value);
    virtual ~Attribute();

    QString const& name() const
    {
        return m_name;
    }

    QString const& value() const
    {
        return m_value;
    }

protected:
    void setValue(QString const& value);

private:
    QString m_name;
    QString m_value;
};

/// Of the class of an object, or of a group of its elements.
class Version : public Attribute
{
public:
    explicit Version(int version);
};

class ClassID : public Attribute
{
public:
    explicit ClassID(QUuid const& id);
};

/// A position in a list, from 0.
class Index : public Attribute
{
public:
    explicit Index(int index);
};

/// Stands where the program keeps a hash of data; it takes a new identifier as well.
class BinaryHashDummy : public Attribute
{
public:
    explicit BinaryHashDummy(ExportEnvironment& environment);
};

/// Points to another object.
class ObjectRef : public Attribute
{
public:
    /// @param name "ObjectRef" for targets with a number, "ObjectURef" for others
    ObjectRef(QString const& name, QString const& target);
};

/// What an object is pointed to by.
class NodeID : public Attribute
{
public:
    using Attribute::Attribute;
    virtual ObjectRef reference() const = 0;
};

/// A number within the document.
class ObjectID : public NodeID
{
public:
    explicit ObjectID(int id = 0);

    int id() const
    {
        return m_id;
    }

    void increment();
    ObjectRef reference() const override;

private:
    int m_id;
};

/// An identifier that is unique everywhere, null until it is given one.
class ObjectUID : public NodeID
{
public:
    ObjectUID();
    explicit ObjectUID(QUuid const& id);

    QUuid const& id() const
    {
        return m_id;
    }

    ObjectRef reference() const override;

private:
    QUuid m_id;
};

/// A copy of the element, with what is in it, that has the attribute too. The element itself
/// stays what it is.
QDomElement addAttribute(QDomElement const& element, Attribute const& attribute);

}
