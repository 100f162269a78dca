#include "Unheard.h"

#include <algorithm>

namespace
{

using Export::FormatHonour;

constexpr int ALWAYS = 0;

/// An option, the kinds of formats that follow it, and what a format of these must declare.
struct Effect
{
    char const* option;
    std::vector<Kind> kinds;
    int honours;

    /// What to do instead, by kind.
    char const* advice[4];
};

constexpr char SCENE_IS_ONE[] = "the scene is one export; --objects chooses of it";
constexpr char CLIP_CHOOSES[] = "--clip chooses the lens";
constexpr char AS_ADJUSTED[] = "contours ride on the adjusted motion; a corner pin or a tracker follows it";
constexpr char AS_TRACKED[] = "it holds the mesh as it was tracked; a corner pin or a tracker follows it";
constexpr char CAMERA_MOVES[] = "it holds the motion of the camera, from the solve";
constexpr char LENS_RESTS[] = "it holds a lens, which has no such motion";

std::vector<Effect> const& effects()
{
    static std::vector<Kind> const ofLayers{Kind::Tracking, Kind::Shape};
    static std::vector<Effect> const all{
        {"--layer", ofLayers, ALWAYS, {"", "", SCENE_IS_ONE, CLIP_CHOOSES}},
        {"--layers", ofLayers, ALWAYS, {"", "", SCENE_IS_ONE, CLIP_CHOOSES}},
        {"--each-layer", ofLayers, ALWAYS, {"", "", SCENE_IS_ONE, CLIP_CHOOSES}},
        {"--view", {Kind::Tracking, Kind::Shape, Kind::Camera}, ALWAYS, {"", "", "", "a lens is that of all views"}},
        {"--track", {Kind::Tracking}, Export::HonoursMotion, {AS_TRACKED, AS_ADJUSTED, CAMERA_MOVES, LENS_RESTS}},
        {"--invert", {Kind::Tracking}, Export::HonoursInvert, {AS_TRACKED, AS_ADJUSTED, CAMERA_MOVES, LENS_RESTS}},
        {"--undistort",
         {Kind::Tracking},
         Export::HonoursUndistort,
         {"use it on the footage as it was shot", "use the contours on the footage as it was shot",
          "a solve is free of the lens", "it holds the lens itself"}},
        {"--reference-frame",
         {Kind::Tracking},
         Export::HonoursMotion,
         {AS_TRACKED, AS_ADJUSTED, CAMERA_MOVES, LENS_RESTS}},
        {"--objects",
         {Kind::Camera},
         Export::HonoursObjects,
         {"--layer and --layers choose", "--layer and --layers choose", "it holds the camera alone", CLIP_CHOOSES}},
        {"--clip",
         {Kind::Lens},
         ALWAYS,
         {"a layer brings the clip that it was tracked on", "a layer brings the clip that it was tracked on",
          "the camera is that of the first clip", ""}},
        {"--frames",
         {Kind::Tracking, Kind::Shape, Kind::Camera},
         ALWAYS,
         {"", "", "", "its frames are options of the format, where it has some"}},
    };
    return all;
}

bool follows(FormatEntry const& format, Effect const& effect)
{
    bool const isOfKind = std::find(effect.kinds.begin(), effect.kinds.end(), format.kind()) != effect.kinds.end();
    return isOfKind && (static_cast<int>(format.traits().honours) & effect.honours) == effect.honours;
}

/// The formats of which something is true: a kind where all of it are, else keys.
QString nameFormats(std::vector<FormatEntry> const& formats, std::vector<bool> const& areMeant)
{
    QStringList names;
    for (Kind const kind : {Kind::Tracking, Kind::Shape, Kind::Camera, Kind::Lens})
    {
        QStringList keys;
        int ofKind = 0;
        for (std::size_t i = 0; i < formats.size(); ++i)
        {
            ofKind += formats[i].kind() == kind ? 1 : 0;
            keys += formats[i].kind() == kind && areMeant[i] ? QStringList(formats[i].key()) : QStringList();
        }
        names += keys.size() > 1 && keys.size() == ofKind
                     ? QStringList(QStringLiteral("%1 formats").arg(kindWord(kind)))
                     : keys;
    }
    return names.join(QStringLiteral(", "));
}

}

std::vector<Unheard> optionsWithoutEffect(FormatEntry const& format, QStringList const& given)
{
    std::vector<Unheard> unheard;
    for (Effect const& effect : effects())
    {
        QString const option = QLatin1String(effect.option);
        if (given.contains(option) && !follows(format, effect))
        {
            unheard.push_back(
                {option + QStringLiteral(" has no effect on "),
                 QStringLiteral("; ") + QLatin1String(effect.advice[static_cast<std::size_t>(format.kind())])});
        }
    }
    return unheard;
}

QStringList unheardByMany(std::vector<FormatEntry> const& formats, std::vector<std::vector<Unheard>> const& unheard)
{
    std::vector<Unheard> different;
    for (std::vector<Unheard> const& list : unheard)
    {
        std::copy_if(list.begin(), list.end(), std::back_inserter(different),
                     [&](Unheard const& one)
                     { return std::find(different.begin(), different.end(), one) == different.end(); });
    }
    QStringList lines;
    for (Unheard const& one : different)
    {
        std::vector<bool> areMeant;
        for (std::vector<Unheard> const& list : unheard)
        {
            areMeant.push_back(std::find(list.begin(), list.end(), one) != list.end());
        }
        lines += one.text(nameFormats(formats, areMeant));
    }
    return lines;
}
