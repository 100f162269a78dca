#pragma once
// The objects that surround the filter: a dummy clip of 1920 by 1080 with its media. Nothing
// but identifiers varies in them. Each class makes the objects below it.

#include "Premiere/document/TreeNode.h"

namespace Export::Premiere
{

class BlackAndWhiteVideoFilter;

using Environment = std::shared_ptr<ExportEnvironment>;

class AudioStream : public IndexedObject
{
public:
    AudioStream();
    void writeContent(QDomElement& element) const override;
};

class VideoStream : public IndexedObject
{
public:
    VideoStream();
    void writeContent(QDomElement& element) const override;
};

class Media : public UniqueIndexedObject
{
public:
    explicit Media(Environment environment);
    void writeContent(QDomElement& element) const override;

private:
    Environment m_environment;
    boost::shared_ptr<AudioStream> m_audio;
    boost::shared_ptr<VideoStream> m_video;
};

class VideoMediaSource : public IndexedObject
{
public:
    explicit VideoMediaSource(Environment const& environment);
    void writeContent(QDomElement& element) const override;

private:
    boost::shared_ptr<Media> m_media;
};

class Markers : public IndexedObject
{
public:
    Markers();
    void writeContent(QDomElement& element) const override;
};

class VideoClip : public IndexedObject
{
public:
    explicit VideoClip(Environment environment);
    void writeContent(QDomElement& element) const override;

private:
    Environment m_environment;
    boost::shared_ptr<Markers> m_markers;
    boost::shared_ptr<VideoMediaSource> m_source;
};

class SubClip : public IndexedObject
{
public:
    explicit SubClip(Environment const& environment);
    void writeContent(QDomElement& element) const override;

private:
    boost::shared_ptr<VideoClip> m_clip;
};

class VideoComponentChain : public IndexedObject
{
public:
    explicit VideoComponentChain(Environment const& environment);
    void writeContent(QDomElement& element) const override;

    boost::shared_ptr<BlackAndWhiteVideoFilter> const& filter() const
    {
        return m_filter;
    }

private:
    boost::shared_ptr<BlackAndWhiteVideoFilter> m_filter;
};

class VideoClipTrackItem : public IndexedObject
{
public:
    explicit VideoClipTrackItem(Environment const& environment);
    void writeContent(QDomElement& element) const override;

    boost::shared_ptr<VideoComponentChain> const& chain() const
    {
        return m_chain;
    }

private:
    boost::shared_ptr<VideoComponentChain> m_chain;
    boost::shared_ptr<SubClip> m_subClip;
};

/// The root: what the program takes from its clipboard. It is written when the filter is, and
/// has no identifier of its own.
class VFCClipboardItem : public TreeNode
{
public:
    explicit VFCClipboardItem(Environment const& environment);

    NodeID const& nodeId() const override;

    /// Numbers count from 0 behind the root.
    void assignId(IDVisitor& visitor) override;
    bool isExportable() const override;
    QDomElement makeElement(QDomDocument& document) const override;
    void writeContent(QDomElement& element) const override;

    boost::shared_ptr<BlackAndWhiteVideoFilter> const& filter() const;

private:
    ObjectID m_id;
    boost::shared_ptr<VideoClipTrackItem> m_trackItem;
};

}
