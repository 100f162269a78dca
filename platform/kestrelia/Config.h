#pragma once

#include <optional>

namespace KestreliaLib
{

/// How a project is made.
struct Config
{
    /// Which camera a shot gets of a scene that was solved in stereo.
    enum StereoCamera
    {
        /// The one between the eyes, which no picture was taken with.
        RigCamera = 0,

        /// That of the exported eye.
        EyeCamera = 1
    };

    /// Host frame in which the scene was oriented; unset for a scene without a solve.
    std::optional<int> referenceFrame;

    /// Whether the scene was solved with a rig of two cameras.
    bool isStereo = false;
    StereoCamera stereoCamera = RigCamera;
};

}
