#include "Premiere/document/Attributes.h"

namespace Export::Premiere
{

Attribute::Attribute(QString const& name, QString const& value) : m_name(name), m_value(value)
{
}

Attribute::~Attribute() = default;

void Attribute::setValue(QString const& value)
{
    m_value = value;
}

Version::Version(int version) : Attribute(QStringLiteral("Version"), QString::number(version))
{
}

ClassID::ClassID(QUuid const& id) : Attribute(QStringLiteral("ClassID"), id.toString(QUuid::WithoutBraces))
{
}

Index::Index(int index) : Attribute(QStringLiteral("Index"), QString::number(index))
{
}

BinaryHashDummy::BinaryHashDummy(ExportEnvironment& environment)
    : Attribute(QStringLiteral("BinaryHash"), environment.createUID().toString(QUuid::WithoutBraces))
{
}

ObjectRef::ObjectRef(QString const& name, QString const& target) : Attribute(name, target)
{
}

ObjectID::ObjectID(int id) : NodeID(QStringLiteral("ObjectID"), QString::number(id)), m_id(id)
{
}

void ObjectID::increment()
{
    ++m_id;
    setValue(QString::number(m_id));
}

ObjectRef ObjectID::reference() const
{
    return {QStringLiteral("ObjectRef"), value()};
}

ObjectUID::ObjectUID() : ObjectUID(QUuid())
{
}

ObjectUID::ObjectUID(QUuid const& id) : NodeID(QStringLiteral("ObjectUID"), id.toString(QUuid::WithoutBraces)), m_id(id)
{
}

ObjectRef ObjectUID::reference() const
{
    return {QStringLiteral("ObjectURef"), value()};
}

QDomElement addAttribute(QDomElement const& element, Attribute const& attribute)
{
    QDomElement copy = element.cloneNode(true).toElement();
    copy.setAttribute(attribute.name(), attribute.value());
    return copy;
}

}
