#pragma once

#include "platform/av/Frame.h"
#include "platform/proc/SettingsResizer.h"

#include <string>

namespace Velmor::Proc {

// The resizing stage. Owns the names of the resize modes, which are what users and preset
// files write.
class IResize {
public:
    virtual ~IResize();

    // The source fitted into the stage's size and pixel format, with the source's timestamps
    // and properties.
    virtual AV::Frame Resize(const AV::Frame& source) = 0;

    // The mode's name: "Fit", "Fill", "Stretch", "FitWidth", "FitHeight", "Center" for 0 to 5.
    // Throws std::out_of_range for a number outside the six modes.
    static const std::string& CustomModes2String(SettingsResizer::CustomModes mode);
    // The mode of a name, compared with case. Throws std::invalid_argument for any other text.
    static SettingsResizer::CustomModes String2CustomModes(const std::string& name);
};

} // namespace Velmor::Proc
