#pragma once

#include <QString>
#include <memory>

namespace Velmor::App {
class ILookAndFeelManager;
}

// The process-wide access to the application's look and feel. init keeps only a weak
// reference: the manager lives as long as its owner keeps it.
class Customization {
public:
    static void init(const std::weak_ptr<Velmor::App::ILookAndFeelManager>& lookAndFeelManager);

    // The current locale of the manager init was given ("en_US"). Throws std::logic_error when
    // there is no manager, because init was never called or its owner has let it go.
    static QString currentLocale();

    // What init was last given; empty before the first init.
    static std::weak_ptr<Velmor::App::ILookAndFeelManager> lookAndFeelManager();
};
