#include "Premiere/document/Skeleton.h"

#include "Premiere/document/MaskNodes.h"
#include "Premiere/document/Elements.h"

namespace Export::Premiere
{

namespace
{

QUuid uuid(char const* text)
{
    return QUuid(QString::fromLatin1(text));
}

// How long the dummy clip is, in ticks, and the time of what has no time, in seconds.
constexpr qint64 DURATION = 27367929388800;
constexpr double NO_TIME = -400000.0;

constexpr char FRAME_RECT[] = "0,0,1920,1080";
constexpr char SQUARE_PIXELS[] = "10000,10000";

// Some spellings are the program's own.
constexpr Literal VIDEO_RATES[] = {
    {"CodecType", "1297106740"}, // "MPG4"
    {"FrameRate", "8475667200"},
    {"OveriddenFrameRate", "9223372036854775807"},
    {"FrameRect", FRAME_RECT},
    {"OriginalPAR", SQUARE_PIXELS},
    {"OverriddenPAR", "1,1"},
    {"PARIsUncertain", "false"},
    {"AlphaType", "2"},
    {"IsAlphaTypeOverridden", "false"},
    {"OverriddenAlphaType", "0"},
    {"AlphaInfoIsUncertain", "false"},
    {"IsIgnoreAlphaOverridden", "false"},
    {"OverriddenIgnoreAlpha", "false"},
    {"IsInvertAlphaOverridden", "false"},
    {"OverriddenInvertAlpha", "false"},
    {"OriginalAlphaMatteColor", "0,0,0"},
    {"IsAlphaMatteColorOverridden", "false"},
    {"OverriddenAlphaMatterColor", "0,0,0"},
};
constexpr Literal VIDEO_FIELDS[] = {
    {"OriginalFieldType", "1"},
    {"OverriddenFieldType", "3"},
    {"FieldTypeIsUncertain", "false"},
};
constexpr Literal AUDIO_RATES[] = {
    {"SampleType", "11"},    {"FrameRate", "5292000"}, {"DisplayFrameRate", "5292000"},
    {"SingleChannel", "-1"}, {"CodecType", "0"},
};
constexpr Literal AUDIO_FILES[] = {
    {"ConformedAudioPath", "\\marlo\\rocks.pek"},
    {"AudioChannelLayout", "[{\"channellabel\":100},{\"channellabel\":101}]"},
};
constexpr Literal MEDIA_STATE[] = {
    {"Infinite", "false"},
    {"OfflineReason", "0"},
    {"CaptureStatus", "0"},
    {"ConformedAudioRate", "5292000"},
    {"IgnoreVideo", "false"},
    {"IgnoreAudio", "false"},
    {"SingleAudioChannel", "-1"},
    {"StreamNumber", "0"},
    {"ActualMediaFilePath", "\\marlo\\rocks.MP4"},
    {"Start", "0"},
    {"AlternateStart", "0"},
    {"UseAlternateStart", "false"},
    {"MediaFileHistory0", "\\marlo\\rocks.MP4"},
};
constexpr Literal LABEL[] = {
    {"asl.clip.label.color", "13408882"},
    {"asl.clip.label.name", "BE.Prefs.LabelColors.1"},
};
constexpr Literal MARKERS[] = {
    {"ByGUID", "byGUID"},
    {"LastMetadataState", "60f2065b-57c4-affa-8a2a-e54900000024"},
    {"LastContentState", "60f2065b-57c4-affa-8a2a-e54900000024"},
};

constexpr char MODIFICATION_STATE[] =
    "\nNgAwAGYAMgAwADYANQBiAC0ANQA3AGMANAAtAGEAZgBmAGEALQA4AGEAMgBhAC0AZQA1ADQAOQAwADAAMAAwADAAMAAyADQA\n";

}

AudioStream::AudioStream()
    : IndexedObject(QStringLiteral("AudioStream"), uuid("0b5cf52f-2b85-4863-890b-8844b64ecfe9"), 6)
{
}

void AudioStream::writeContent(QDomElement& element) const
{
    ElementWriter(element).literals(AUDIO_RATES).integer64(QStringLiteral("Duration"), DURATION).literals(AUDIO_FILES);
}

VideoStream::VideoStream()
    : IndexedObject(QStringLiteral("VideoStream"), uuid("a36e4719-3ec6-4a0c-ab11-8b4aab377aa5"), 14)
{
}

void VideoStream::writeContent(QDomElement& element) const
{
    ElementWriter(element).literals(VIDEO_RATES).integer64(QStringLiteral("Duration"), DURATION).literals(VIDEO_FIELDS);
}

Media::Media(Environment environment)
    : UniqueIndexedObject(QStringLiteral("Media"), uuid("7a5c103e-f3ac-4391-b6b4-7cc3d2f9a7ff"), 23),
      m_environment(std::move(environment)),
      m_audio(addChild<AudioStream>()),
      m_video(addChild<VideoStream>())
{
}

void Media::writeContent(QDomElement& element) const
{
    ElementWriter(element)
        .reference(QStringLiteral("AudioStream"), *m_audio)
        .reference(QStringLiteral("VideoStream"), *m_video)
        .data(QStringLiteral("ModificationState"), QString::fromLatin1(MODIFICATION_STATE), *m_environment)
        .text(QStringLiteral("FilePath"), QStringLiteral("\\File\\Path.MP4"))
        .id(QStringLiteral("ImplementationID"), uuid("1fa18bfa-255c-44b1-ad73-56bcd99fceaf"))
        .text(QStringLiteral("Title"), QStringLiteral("Path.MP4"))
        .id(QStringLiteral("FileKey"), m_environment->createUID())
        .literals(MEDIA_STATE)
        .id(QStringLiteral("ContentAndMetadataState"), m_environment->createUID());
}

VideoMediaSource::VideoMediaSource(Environment const& environment)
    : IndexedObject(QStringLiteral("VideoMediaSource"), uuid("e64ddf74-8fac-4682-8aa8-0e0ca2248949"), 2),
      m_media(addChild<Media>(environment))
{
}

void VideoMediaSource::writeContent(QDomElement& element) const
{
    ElementWriter const writer(element);
    ElementWriter const source = writer.group(QStringLiteral("MediaSource"), 3);
    source.group(QStringLiteral("Content"), 7)
        .time(QStringLiteral("StartBoundary"), NO_TIME)
        .time(QStringLiteral("EndBoundary"), NO_TIME)
        .boolean(QStringLiteral("BoundariesAreHard"), true);
    source.reference(QStringLiteral("Media"), *m_media);
    writer.integer64(QStringLiteral("OriginalDuration"), DURATION);
}

Markers::Markers() : IndexedObject(QStringLiteral("Markers"), uuid("bee50706-b524-416c-9f03-b596ce5f6866"), 3)
{
}

void Markers::writeContent(QDomElement& element) const
{
    ElementWriter(element).literals(MARKERS);
}

VideoClip::VideoClip(Environment environment)
    : IndexedObject(QStringLiteral("VideoClip"), uuid("9308dbef-2440-4acb-9ab2-953b9a4e82ec"), 10),
      m_environment(std::move(environment)),
      m_markers(addChild<Markers>()),
      m_source(addChild<VideoMediaSource>(m_environment))
{
}

void VideoClip::writeContent(QDomElement& element) const
{
    ElementWriter const writer(element);
    ElementWriter const clip = writer.group(QStringLiteral("Clip"), 17);
    clip.group(QStringLiteral("Node"), 1).group(QStringLiteral("Properties"), 1).literals(LABEL);
    clip.group(QStringLiteral("MarkerOwner"), 1).reference(QStringLiteral("Markers"), *m_markers);
    clip.reference(QStringLiteral("Source"), *m_source)
        .id(QStringLiteral("ClipID"), m_environment->createUID())
        .integer(QStringLiteral("InPoint"), 0)
        .integer64(QStringLiteral("OutPoint"), DURATION)
        .boolean(QStringLiteral("InUse"), false);
    writer.integer(QStringLiteral("PosterFrame"), 0)
        .integer(QStringLiteral("FrameHold"), 0)
        .time(QStringLiteral("FrameHoldStart"), NO_TIME)
        .boolean(QStringLiteral("HoldFilters"), false)
        .boolean(QStringLiteral("DeinterlaceOnHold"), false)
        .boolean(QStringLiteral("ReverseFieldDominance"), false)
        .integer(QStringLiteral("FieldProcessing"), 0)
        .boolean(QStringLiteral("FrameBlend"), false)
        .integer(QStringLiteral("ScaleToFramePolicy"), 0)
        .boolean(QStringLiteral("AdjustmentLayer"), false);
}

SubClip::SubClip(Environment const& environment)
    : IndexedObject(QStringLiteral("SubClip"), uuid("e0c58dc9-dbdd-4166-aef7-5db7e3f22e84"), 5),
      m_clip(addChild<VideoClip>(environment))
{
}

void SubClip::writeContent(QDomElement& element) const
{
    ElementWriter(element)
        .reference(QStringLiteral("Clip"), *m_clip)
        .text(QStringLiteral("Name"), QStringLiteral("t56_0029_01.MP4"))
        .text(QStringLiteral("OrigChGrp"), QStringLiteral("0"));
}

VideoComponentChain::VideoComponentChain(Environment const& environment)
    : IndexedObject(QStringLiteral("VideoComponentChain"), uuid("0970e08a-f58f-4108-b29a-1a717b8e12e2"), 1),
      m_filter(addChild<BlackAndWhiteVideoFilter>(environment))
{
}

void VideoComponentChain::writeContent(QDomElement& element) const
{
    ElementWriter(element)
        .group(QStringLiteral("ComponentChain"), 2)
        .group(QStringLiteral("Components"), 1)
        .indexedReference(QStringLiteral("Component"), 0, *m_filter);
}

VideoClipTrackItem::VideoClipTrackItem(Environment const& environment)
    : IndexedObject(QStringLiteral("VideoClipTrackItem"), uuid("368b0406-29e3-4923-9fcd-094fbf9a1089"), 5),
      m_chain(addChild<VideoComponentChain>(environment)),
      m_subClip(addChild<SubClip>(environment))
{
}

void VideoClipTrackItem::writeContent(QDomElement& element) const
{
    ElementWriter const writer(element);
    ElementWriter const item = writer.group(QStringLiteral("ClipTrackItem"), 4);
    item.group(QStringLiteral("ComponentOwner"), 1).reference(QStringLiteral("Components"), *m_chain);
    item.group(QStringLiteral("TrackItem"), 3)
        .text(QStringLiteral("Type"), QStringLiteral("1"))
        .id(QStringLiteral("MediaType"), uuid("228cda18-3625-4d2d-951e-348879e4ed93"))
        .text(QStringLiteral("TrackIndex"), QStringLiteral("0"))
        .integer(QStringLiteral("Start"), 0)
        .integer64(QStringLiteral("End"), DURATION);
    item.reference(QStringLiteral("SubClip"), *m_subClip).boolean(QStringLiteral("IsMuted"), false);
    writer.text(QStringLiteral("FrameRect"), QString::fromLatin1(FRAME_RECT))
        .text(QStringLiteral("PixelAspectRatio"), QString::fromLatin1(SQUARE_PIXELS));
}

VFCClipboardItem::VFCClipboardItem(Environment const& environment)
    : TreeNode(QStringLiteral("VideoFilterComponentClipboardItem"), QUuid(), 0),
      m_trackItem(addChild<VideoClipTrackItem>(environment))
{
}

NodeID const& VFCClipboardItem::nodeId() const
{
    return m_id;
}

void VFCClipboardItem::assignId(IDVisitor& visitor)
{
    visitor.reset();
}

bool VFCClipboardItem::isExportable() const
{
    return filter()->isExportable();
}

QDomElement VFCClipboardItem::makeElement(QDomDocument& document) const
{
    return addAttribute(document.createElement(tagName()), m_trackItem->nodeId().reference());
}

void VFCClipboardItem::writeContent(QDomElement&) const
{
}

boost::shared_ptr<BlackAndWhiteVideoFilter> const& VFCClipboardItem::filter() const
{
    return m_trackItem->chain()->filter();
}

}
