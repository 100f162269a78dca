#pragma once
// The filter that carries the masks.

#include "Core/ExportApi.h"
#include "Premiere/document/Params.h"

namespace Export::Premiere
{

class MARLO_EXPORT_API IMask
{
public:
    virtual ~IMask();

    /// Whether what is outside of the outline is shown.
    virtual void setInverted(bool inverted) = 0;

    /// @param time in seconds; a key of the same time is replaced
    virtual void addKey(double time, boost::shared_ptr<Mask::Shape const> const& shape) = 0;
    virtual void setName(QString const& name) = 0;

    /// Shows the mask from the first to the last frame alone.
    /// @param step of a frame; all in seconds
    virtual void setRange(double first, double last, double step) = 0;
};

class MARLO_EXPORT_API IMaskContainer
{
public:
    virtual ~IMaskContainer();
    virtual boost::shared_ptr<IMask> addMask() = 0;
};

class VideoFilterComponent : public IndexedObject
{
public:
    VideoFilterComponent();
};

/// One mask. Without a key it isn't written.
class MaskNode : public VideoFilterComponent, public IMask
{
public:
    explicit MaskNode(Environment const& environment);

    bool isExportable() const override;
    void writeContent(QDomElement& element) const override;

    void setInverted(bool inverted) override;
    void addKey(double time, boost::shared_ptr<Mask::Shape const> const& shape) override;
    void setName(QString const& name) override;
    void setRange(double first, double last, double step) override;

private:
    QString m_name;
    QVector<boost::shared_ptr<AParam>> m_params;
    boost::shared_ptr<MaskPathNode> m_path;
    boost::shared_ptr<MaskOpacityParam> m_opacity;
    boost::shared_ptr<HiddenMaskParam> m_inverted;
};

class MaskContainerNode : public VideoFilterComponent, public IMaskContainer
{
public:
    explicit MaskContainerNode(Environment environment);

    /// Masks are called "marlo Mask 1" and so on until they get other names.
    boost::shared_ptr<IMask> addMask() override;
    bool isExportable() const override;

protected:
    QVector<boost::shared_ptr<MaskNode>> const& masks() const
    {
        return m_masks;
    }

private:
    Environment m_environment;
    QVector<boost::shared_ptr<MaskNode>> m_masks;
};

/// The filter that the user sees.
class BlackAndWhiteVideoFilter : public MaskContainerNode
{
public:
    explicit BlackAndWhiteVideoFilter(Environment const& environment);
    void writeContent(QDomElement& element) const override;

private:
    boost::shared_ptr<DummyParam> m_dummy;
};

}
