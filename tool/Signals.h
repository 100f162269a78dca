#pragma once

/// An interrupt, a request to end and the end of the terminal (SIGINT, SIGQUIT,
/// SIGTERM, SIGHUP) remove a half-written part file and end the program with status
/// 130; those that were ignored when it started stay ignored. A full disk and a reader that went away become ordinary
/// write errors.
void installSignalHandlers();
