#include "Host/ExportedShape.h"
