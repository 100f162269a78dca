#include "Premiere/document/Params.h"

#include "Premiere/document/Elements.h"
#include "text/NumberText.h"

namespace Export::Premiere
{

namespace
{

// Before any time that there is, in seconds.
constexpr double NO_TIME = -360000.0;

// How the program shows a parameter.
constexpr quint32 DUMMY_CONTROL = 9;
constexpr quint32 SLIDER = 8;
constexpr quint32 PATH_CONTROL = 22;

QUuid uuid(char const* text)
{
    return QUuid(QString::fromLatin1(text));
}

void writeHead(ElementWriter const& writer, AParam const& param)
{
    if (!param.name.isEmpty())
    {
        writer.text(QStringLiteral("Name"), param.name);
    }
    writer.boolean(QStringLiteral("IsTimeVarying"), param.timeVarying)
        .integer64(QStringLiteral("ParameterControlType"), param.controlType);
}

}

AParam::AParam(QString const& tag, QUuid const& classOfNode, int versionOfClass, QString const& nameOfParam,
               qint32 idOfParam, quint32 controlOfParam)
    : IndexedObject(tag, classOfNode, versionOfClass),
      name(nameOfParam),
      parameterId(idOfParam),
      controlType(controlOfParam)
{
}

ArbVideoComponentParam::ArbVideoComponentParam(QString const& nameOfParam, qint32 idOfParam, quint32 controlOfParam)
    : AParam(QStringLiteral("ArbVideoComponentParam"), uuid("313e54d4-6903-49ad-b0bf-8262cdd10f4e"), 2, nameOfParam,
             idOfParam, controlOfParam)
{
}

void ArbVideoComponentParam::writeContent(QDomElement& element) const
{
    ElementWriter const writer(element);
    writeHead(writer, *this);
    writer.time(QStringLiteral("StartKeyframePosition"), startKeyframePosition);
    writeKeys(element);
    writer.integer(QStringLiteral("ParameterID"), parameterId);
}

void ArbVideoComponentParam::writeKeys(QDomElement&) const
{
}

DummyParam::DummyParam() : ArbVideoComponentParam(QString(), -1, DUMMY_CONTROL)
{
}

MaskPathNode::MaskPathNode(QString const& nameOfParam, qint32 idOfParam, Environment environment)
    : ArbVideoComponentParam(nameOfParam, idOfParam, PATH_CONTROL), m_environment(std::move(environment))
{
}

bool MaskPathNode::isExportable() const
{
    return !m_keys.isEmpty();
}

void MaskPathNode::addKey(double time, boost::shared_ptr<Mask::Shape const> const& shape)
{
    m_keys.insert(time, shape);
    timeVarying = m_keys.size() >= 2;
}

void MaskPathNode::writeKeys(QDomElement& element) const
{
    if (m_keys.isEmpty())
    {
        return;
    }
    ElementWriter const writer(element);
    QByteArray const first = m_keys.first()->toBase64();
    if (m_keys.size() >= 2)
    {
        constexpr int LONGEST_TICKS = 20;
        QByteArray keyframes;
        keyframes.reserve(m_keys.size() * (first.size() + LONGEST_TICKS + 2));
        for (auto key = m_keys.begin(); key != m_keys.end(); ++key)
        {
            Text::appendInteger(keyframes, ticks(key.key()));
            keyframes += ',';
            keyframes += key.value()->toBase64();
            keyframes += ';';
        }
        writer.text(QStringLiteral("Keyframes"), QString::fromLatin1(keyframes));
    }
    writer.data(QStringLiteral("StartKeyframeValue"), QString::fromLatin1(first), *m_environment);
}

template <typename Value>
VideoComponentParam<Value>::VideoComponentParam(QUuid const& classOfNode, QString const& nameOfParam, qint32 idOfParam,
                                                quint32 controlOfParam, Value valueOfParam, Value lower, Value upper)
    : AParam(QStringLiteral("VideoComponentParam"), classOfNode, 8, nameOfParam, idOfParam, controlOfParam),
      value(valueOfParam),
      lowerBound(lower),
      upperBound(upper)
{
}

template <typename Value>
void VideoComponentParam<Value>::writeContent(QDomElement& element) const
{
    ElementWriter const writer(element);
    writeHead(writer, *this);
    writer.text(QStringLiteral("StartKeyframe"),
                QStringLiteral("%1,%2,0,0,0,0,0,0").arg(QString::number(ticks(NO_TIME)), format(value)));
    QStringList texts;
    for (Key const& key : keys)
    {
        texts += QStringLiteral("%1,%2,%3,0,0,0,0,0")
                     .arg(QString::number(ticks(key.time)), format(key.value), QString::number(key.interpolation));
    }
    if (!texts.isEmpty())
    {
        writer.text(QStringLiteral("Keyframes"), texts.join(QLatin1Char(';')));
    }
    writer.text(QStringLiteral("LowerBound"), formatLower())
        .text(QStringLiteral("UpperBound"), formatUpper())
        .integer(QStringLiteral("ParameterID"), parameterId);
}

template <typename Value>
QString VideoComponentParam<Value>::formatLower() const
{
    return format(lowerBound);
}

template <typename Value>
QString VideoComponentParam<Value>::formatUpper() const
{
    return format(upperBound);
}

template class VideoComponentParam<bool>;
template class VideoComponentParam<double>;

HiddenMaskParam::HiddenMaskParam(QString const& nameOfParam, qint32 idOfParam, quint32 controlOfParam, bool upper)
    : VideoComponentParam<bool>(uuid("cc12343e-f113-4d3b-ae05-b287db77d461"), nameOfParam, idOfParam, controlOfParam,
                                false, false, upper)
{
}

QString HiddenMaskParam::format(bool one) const
{
    return one ? QStringLiteral("true") : QStringLiteral("false");
}

DoubleParam::DoubleParam(QString const& nameOfParam, qint32 idOfParam, double valueOfParam, double lower, double upper)
    : VideoComponentParam<double>(uuid("a4ff2d6e-7ac2-44f8-9d52-17d9ca50e542"), nameOfParam, idOfParam, SLIDER,
                                  valueOfParam, lower, upper)
{
}

QString DoubleParam::format(double one) const
{
    return Text::generalText(one);
}

MaskFeatherParam::MaskFeatherParam() : DoubleParam(QStringLiteral("Mask Feather"), 7, 1, 0, 1000)
{
}

MaskOpacityParam::MaskOpacityParam() : DoubleParam(QStringLiteral("Mask Opacity"), 8, 100, 0, 100)
{
}

MaskExpansionParam::MaskExpansionParam() : DoubleParam(QStringLiteral("Mask Expansion"), -1, 0, -1000, 1000)
{
}

TrackingMethodParam::TrackingMethodParam() : DoubleParam(QString(), -1, 2, 0, 3)
{
}

}
