#include "Host/CameraSolveHelper.h"
