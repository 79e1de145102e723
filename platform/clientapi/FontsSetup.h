#pragma once

#include "platform/foundation/ioPath.h"

#include <QStringList>

namespace Velmor::ClientAPI {

// Registers with the engine the font files (*.ttf, *.otf, *.ttc) found directly in the
// directory. A directory that doesn't exist registers none. Fonts registered once stay
// registered for the life of the process.
void FontsSetup(const ioPath& fontsDirectory);

// The registered font files, as absolute paths, in order of registration.
QStringList RegisteredFonts();

} // namespace Velmor::ClientAPI
