#include "Signals.h"

#include "Failure.h"
#include "text/PartFile.h"

#include <csignal>
#include <unistd.h>

namespace
{

// Only what is safe in a signal handler.
extern "C" void endOnSignal(int)
{
    Text::removePartFile();
    ::_exit(Interrupted);
}

}

void installSignalHandlers()
{
    struct sigaction end = {};
    end.sa_handler = endOnSignal;
    sigfillset(&end.sa_mask);
    ::sigaction(SIGINT, &end, nullptr);
    ::sigaction(SIGTERM, &end, nullptr);

    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGXFSZ, &ignore, nullptr);
    ::sigaction(SIGPIPE, &ignore, nullptr);
}
