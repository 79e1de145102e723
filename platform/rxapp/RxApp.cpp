#include "platform/rxapp/RxApp.h"

#include "platform/rxapp/MainThreadScheduler.h"

#include <QCoreApplication>
#include <QThread>

class RxApp::Private {
public:
    rxcpp::observe_on_one_worker mainThread{
        rxcpp::schedulers::make_scheduler<Velmor::rx::MainThreadScheduler>()};
    rxcpp::observe_on_one_worker newThread{rxcpp::schedulers::make_new_thread()};
};

RxApp* RxApp::instance() {
    static RxApp* const app = new RxApp;
    return app;
}

RxApp::RxApp()
    : d(std::make_unique<Private>()) {}

RxApp::~RxApp() = default;

rxcpp::observe_on_one_worker RxApp::mainThread() const {
    return d->mainThread;
}

rxcpp::observe_on_one_worker RxApp::newThread() const {
    return d->newThread;
}

bool RxApp::onMainThread() {
    const auto* application = QCoreApplication::instance();
    return application && QThread::currentThread() == application->thread();
}
