#include "service/presets/PresetsHelp.h"

#include "service/presets/PresetContext.h"

#include <gtest/gtest.h>

using EditorService::PresetContext;
using EditorService::presetsHelp;

TEST(PresetsHelpTest, ListsEveryPresetTheDefaultFirstWithItsSizeAndCodecs) {
    EXPECT_EQ(presetsHelp().toStdString(),
              "Presets (--preset), with their frame size and video codecs; a preset writes its "
              "first codec\nunless --preset-video-codec names another:\n"
              "  mp4 (default)  the video's size  CODEC_ID_H264 CODEC_ID_HEVC\n"
              "  2160p          3840x2160         CODEC_ID_HEVC CODEC_ID_H264\n"
              "  1440p          2560x1440         CODEC_ID_HEVC CODEC_ID_H264\n"
              "  1080p          1920x1080         CODEC_ID_H264 CODEC_ID_HEVC\n"
              "  720p           1280x720          CODEC_ID_H264 CODEC_ID_HEVC\n"
              "  480p           854x480           CODEC_ID_H264 CODEC_ID_HEVC\n"
              "  360p           640x360           CODEC_ID_H264 CODEC_ID_HEVC\n");
}

TEST(PresetsHelpTest, LeavesThePresetOptionsOwnDescriptionAsItIs) {
    presetsHelp();
    EXPECT_EQ(PresetContext::option(PresetContext::PresetName).description(),
              QStringLiteral("Preset name. Available:\n2160p\n1440p\n1080p\n720p\n480p\n360p"));
}
