#pragma once

#include <QByteArray>

#include <initializer_list>
#include <vector>

namespace Export
{

/// The text around the values of a frame, which stand on lines of their own:
///
///           <Frame>
///              <FrameNumber>
///                 12
///              </FrameNumber>
///              ...
///           </Frame>
///
/// @param names of the elements in a frame
/// @return what stands in front of each value, and what behind the last one
std::vector<QByteArray> frameElements(std::initializer_list<char const*> names);

}
