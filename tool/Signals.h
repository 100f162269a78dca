#pragma once

/// An interrupt or a request to end removes a half-written part file and ends the
/// program with status 130. A full disk and a reader that went away become ordinary
/// write errors.
void installSignalHandlers();
