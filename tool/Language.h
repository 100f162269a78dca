#pragma once

#include <QString>

/// Puts the texts for the user into a language, for the rest of the process. Formats
/// keep the language in which they were first touched, so this comes before.
///
/// @param code such as "de"; "en" needs no file
/// @throws Failure as wrong usage when there is no such translation
void useLanguage(QString const& code);
