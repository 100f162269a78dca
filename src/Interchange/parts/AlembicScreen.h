#pragma once

#include <Alembic/AbcGeom/All.h>

#include <string>

namespace Export
{

/// Adds a mesh in the plane z = 0 that reaches from -1 to 1 in x and y, as a grid that can be
/// bent, with its front towards +z and the whole of a picture on it.
void writeScreenShape(Alembic::AbcGeom::OXform const& parent, std::string const& name, std::uint32_t timeSampling);

}
