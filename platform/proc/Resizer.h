#pragma once

#include "platform/proc/IResize.h"

#include <memory>

namespace Velmor::Proc {

// The resizing stage on libswscale: scales each frame by the mode's geometry into a new picture
// of the settings' size and format, bars true black. A frame already of that size and format
// passes through sharing its buffers. One thread at a time.
class Resizer : public IResize {
public:
    // threads: the scaler's slice threads, 0 for as many as the machine has. Throws
    // std::invalid_argument "Can not resize to WxH: the width and the height must be positive"
    // for a size below 1x1, std::out_of_range for an unknown mode and std::invalid_argument
    // "No pixel format with the number N" for an unknown format.
    explicit Resizer(const SettingsResizer& settings, int threads = 0);
    ~Resizer() override;

    // Throws std::invalid_argument for an empty source, AV::MediaError when libswscale fails.
    AV::Frame Resize(const AV::Frame& source) override;

    const SettingsResizer& settings() const;

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace Velmor::Proc
