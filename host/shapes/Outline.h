#pragma once
// Outlines as flat numbers: the keys of a contour, what lies between them, and how a
// homography carries them.

#include "marlohost/ProjectModel.h"
#include "plane/Homography.h"

namespace MarloHost
{

/// How a plane is seen over a range of frames: a homography for each, with w above 0 in
/// front of the viewer, into pixels of the picture.
struct PlaneView
{
    int firstFrame = 0;
    std::vector<Homography> maps;
};

/// Where a frame lies among keys: `along` of the way from key `before` to key `after`.
struct KeyPlace
{
    std::size_t before;
    std::size_t after;
    double along;

    double between(double a, double b) const
    {
        return a + along * (b - a);
    }
};

/// @param keys ascending, at least one; the first and the last hold outside
KeyPlace keyPlace(std::vector<ContourKeyModel> const& keys, int frame);

/// Which of the two curves of a contour.
enum class Edge
{
    Mask,

    /// The outer one of the feather; the mask where a key has no feather.
    Feather
};

std::vector<double> const& edgeOf(ContourKeyModel const& key, Edge edge);
bool hasFeather(std::vector<ContourKeyModel> const& keys);

/// The numbers of an edge at a frame, as it lies in the surface's reference frame.
void edgeAt(std::vector<ContourKeyModel> const& keys, Edge edge, int frame, std::vector<double>& numbers);

/// Carries vertices and tips of handles, or points of an X-spline, in place.
void carryEdge(bool xspline, Homography const& map, std::vector<double>& numbers);

}
