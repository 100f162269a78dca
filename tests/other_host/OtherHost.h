#pragma once

#include "Host/HostApi.h"
#include "Host/KORV_ProjectManager.h"

#include <boost/shared_ptr.hpp>

/// A host that shares nothing with the reference host but the headers of src/Host. Its
/// one project is a clip of 200 x 100 with three frames, in which a surface, 40 x 20
/// with its lower left corner at (10, 30), slides right by 5 pixels a frame.
MARLO_HOST_API boost::shared_ptr<KORV_ProjectManager> slidingProject();
