#include "service/services/LimitOnSilence.h"

namespace EditorService {

rxcpp::observable<nlohmann::json> limitOnSilence(const rxcpp::observable<nlohmann::json>& values,
                                                 std::chrono::duration<std::int64_t> limit,
                                                 std::function<void()> onExpiry,
                                                 const rxcpp::observe_on_one_worker& timer,
                                                 const rxcpp::observe_on_one_worker& delivery) {
    // The error path only observes: the selector never resumes, it always rethrows.
    const auto reportExpiry = [onExpiry = std::move(onExpiry)](
                                  std::exception_ptr error) -> rxcpp::observable<nlohmann::json> {
        try {
            std::rethrow_exception(error);
        } catch (const rxcpp::timeout_error&) {
            onExpiry();
            throw;
        }
    };
    return values.timeout(limit, timer)
        .on_error_resume_next(reportExpiry)
        .observe_on(delivery)
        .as_dynamic();
}

} // namespace EditorService
