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
    for (int const signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
    {
        // What nohup, or a shell with a job in the background, made deaf stays so.
        struct sigaction inherited = {};
        if (::sigaction(signal, nullptr, &inherited) == 0 && inherited.sa_handler != SIG_IGN)
        {
            ::sigaction(signal, &end, nullptr);
        }
    }

    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGXFSZ, &ignore, nullptr);
    ::sigaction(SIGPIPE, &ignore, nullptr);
}
