#pragma once

#include "platform/settings/SettingsContext.h"

// The process-wide access to the application's settings stores. init keeps only weak
// references: the stores live as long as their owner keeps them.
class Settings {
public:
    static void init(const SettingsContext& context);

    // What init was last given; all empty before the first init.
    static SettingsContext context();

    // The stores while their owner keeps them. Throw std::logic_error when there is none.
    static std::shared_ptr<Velmor::App::ISettingsManager> applicationSettings();
    static std::shared_ptr<Velmor::App::ISettingsManager> productSettings();
};
