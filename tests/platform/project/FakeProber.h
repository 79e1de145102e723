#pragma once

#include "platform/av/MediaError.h"
#include "platform/project/MediaProber.h"

#include <QFileInfo>
#include <map>

namespace EditorService::Testing {

// Media facts by file name, without files: a name it does not know fails as a missing file.
class FakeProber : public Project::IMediaProber {
public:
    FakeProber() {
        video("a.mp4", 60000);
        video("clip.mp4", 10000);
        Project::MediaFacts photo;
        photo.hasVideo = true;
        photo.isStill = true;
        photo.width = 4000;
        photo.height = 3000;
        photo.durationMs = 40;
        photo.frameRate = {25, 1};
        known["photo.jpg"] = photo;
        known["logo.png"] = photo;
        Project::MediaFacts music;
        music.hasAudio = true;
        music.durationMs = 180000;
        known["music.mp3"] = music;
    }

    Project::MediaFacts& video(const QString& name, std::int64_t durationMs) {
        Project::MediaFacts facts;
        facts.hasVideo = true;
        facts.hasAudio = true;
        facts.width = 1920;
        facts.height = 1080;
        facts.durationMs = durationMs;
        facts.frameRate = {25, 1};
        return known[name] = facts;
    }

    Project::MediaFacts probe(const QString& file) const override {
        ++probes;
        const auto found = known.find(QFileInfo(file).fileName());
        if (found == known.end())
            throw Velmor::AV::MediaError("Can not open media file: " + file.toStdString()
                                         + ": No such file or directory");
        return found->second;
    }

    std::map<QString, Project::MediaFacts> known;
    mutable int probes = 0;
};

} // namespace EditorService::Testing
