#pragma once
// The parameters of a mask.

#include "Premiere/document/MaskShape.h"
#include "Premiere/document/Skeleton.h"
#include "Premiere/document/TreeNode.h"

#include <QMap>
#include <QVector>

namespace Export::Premiere
{

class AParam : public IndexedObject
{
public:
    /// @param controlOfParam how the program shows the parameter
    AParam(QString const& tag, QUuid const& classOfNode, int versionOfClass, QString const& nameOfParam,
           qint32 idOfParam, quint32 controlOfParam);

    QString name;
    qint32 parameterId;
    quint32 controlType;
    bool timeVarying = false;
};

/// One whose values are data.
class ArbVideoComponentParam : public AParam
{
public:
    ArbVideoComponentParam(QString const& nameOfParam, qint32 idOfParam, quint32 controlOfParam);
    void writeContent(QDomElement& element) const override;

    /// Seconds; before any time that there is.
    double startKeyframePosition = -360000.0;

protected:
    /// Writes what stands between the start of the keys and the parameter's id.
    virtual void writeKeys(QDomElement& element) const;
};

/// One that only fills a place.
class DummyParam : public ArbVideoComponentParam
{
public:
    DummyParam();
};

/// The outline.
class MaskPathNode : public ArbVideoComponentParam
{
public:
    /// @param environment of the identifiers in place of hashes
    MaskPathNode(QString const& nameOfParam, qint32 idOfParam, Environment environment);

    bool isExportable() const override;

    /// @param time in seconds; a key of the same time is replaced
    void addKey(double time, boost::shared_ptr<Mask::Shape const> const& shape);

protected:
    void writeKeys(QDomElement& element) const override;

private:
    Environment m_environment;
    QMap<double, boost::shared_ptr<Mask::Shape const>> m_keys;
};

/// One whose values are numbers or switches.
template <typename Value>
class VideoComponentParam : public AParam
{
public:
    struct Key
    {
        /// Seconds.
        double time;
        Value value;
        qint32 interpolation;
    };

    VideoComponentParam(QUuid const& classOfNode, QString const& nameOfParam, qint32 idOfParam, quint32 controlOfParam,
                        Value valueOfParam, Value lower, Value upper);
    void writeContent(QDomElement& element) const override;

    virtual QString format(Value one) const = 0;
    virtual QString formatLower() const;
    virtual QString formatUpper() const;

    Value value;
    Value lowerBound;
    Value upperBound;
    QVector<Key> keys;
};

extern template class VideoComponentParam<bool>;
extern template class VideoComponentParam<double>;

class HiddenMaskParam : public VideoComponentParam<bool>
{
public:
    HiddenMaskParam(QString const& nameOfParam, qint32 idOfParam, quint32 controlOfParam, bool upper);
    QString format(bool one) const override;
};

class DoubleParam : public VideoComponentParam<double>
{
public:
    DoubleParam(QString const& nameOfParam, qint32 idOfParam, double valueOfParam, double lower, double upper);
    QString format(double one) const override;
};

/// In pixels.
class MaskFeatherParam : public DoubleParam
{
public:
    MaskFeatherParam();
};

/// Percent.
class MaskOpacityParam : public DoubleParam
{
public:
    MaskOpacityParam();
};

/// In pixels.
class MaskExpansionParam : public DoubleParam
{
public:
    MaskExpansionParam();
};

class TrackingMethodParam : public DoubleParam
{
public:
    TrackingMethodParam();
};

}
