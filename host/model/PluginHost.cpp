#include "Host/PluginHost.h"

TXIHost::~TXIHost() = default;

Korvane::PluginHost::~PluginHost() = default;
