#pragma once

namespace Velmor::Proc {

// Settings of the resizing stage of the processing pipeline.
class SettingsResizer {
public:
    // How a frame is fitted into a size that differs from its own. The numbers are stored in
    // presets and project files, so they never change.
    enum CustomModes : int {
        Fit = 0,       // scaled to fit inside, the rest filled with bars
        Fill = 1,      // scaled to cover, the overflow cropped
        Stretch = 2,   // scaled to the size, proportions not kept
        FitWidth = 3,  // scaled to the width, the height cropped or barred
        FitHeight = 4, // scaled to the height, the width cropped or barred
        Center = 5,    // not scaled, centred
    };

    // The size of every frame out of the stage.
    int width = 0;
    int height = 0;
    CustomModes mode = Fit;
    // The AVPixelFormat out of the stage (AV::pixelFormat("yuv420p")); -1 keeps the source's.
    int pixelFormat = -1;
};

} // namespace Velmor::Proc
