#include "Host/MeshTracking.h"

namespace ZN
{
namespace MeshTracking
{

struct Vertex::Data
{
};

ParameterSet::~ParameterSet() = default;

}
}
