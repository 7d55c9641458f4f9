// Apartments beside each other: each thread has objects and module data of its own.
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <thread>

#include "tests/plugin/late_call.h"
#include "tests/plugin/plugin_fixture.h"

namespace vex::plugin_test {
namespace {

/// Where a fixed number of threads wait for each other, again and again. Not std::barrier: in the standard library
/// that the Windows build is made with it can miss a wake-up and hang.
class Meeting {
public:
    explicit Meeting(int threads) noexcept : threads_(threads) {}

    void arrive_and_wait() {
        std::unique_lock lock(mutex_);
        const int round = round_;
        if (++arrived_ == threads_) {
            arrived_ = 0;
            ++round_;
            everyone_.notify_all();
        } else {
            everyone_.wait(lock, [this, round] { return round_ != round; });
        }
    }

private:
    const int threads_;
    std::mutex mutex_;
    std::condition_variable everyone_;
    int arrived_ = 0;
    int round_ = 0;
};

/// What one thread does with objects of its own. Failures are told by the result: assertions belong to the
/// test's thread.
bool use_objects(Meeting& step) {
    if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return false;
    bool right = true;
    step.arrive_and_wait();
    {
        const auto catalogue = make(kCatalogueClass);
        const auto entry = make(kEntryClass);
        step.arrive_and_wait();
        for (int i = 0; i < 2000; ++i) {
            const Outcome name = call(*catalogue, 0x68030003, DISPATCH_PROPERTYGET, {com::Variant::int16(0)});
            const Outcome same = call(*entry, 0x60030005, DISPATCH_METHOD);
            const Outcome wrong = call(*catalogue, 0x68030003, DISPATCH_PROPERTYGET, {com::Variant::int16(1)});
            right = right && name.result == S_OK && same.result == S_OK && wrong.code == error_code(9) &&
                    com::view(name.value.get().bstrVal) == com::view(same.value.get().bstrVal);
            right = right && can_unload_now() == S_FALSE;
        }
        step.arrive_and_wait();
    }
    step.arrive_and_wait();
    CoUninitialize();
    return right;
}

TEST(Apartments, WorkBesideEachOther) {
    ASSERT_EQ(can_unload_now(), S_OK);
    Meeting step(3);
    bool first = false;
    bool second = false;
    std::thread one([&] { first = use_objects(step); });
    std::thread two([&] { second = use_objects(step); });
    step.arrive_and_wait();
    step.arrive_and_wait();
    EXPECT_EQ(can_unload_now(), S_FALSE);
    step.arrive_and_wait();
    step.arrive_and_wait();
    EXPECT_EQ(can_unload_now(), S_OK) << "both threads have released everything and still run";
    one.join();
    two.join();
    EXPECT_TRUE(first);
    EXPECT_TRUE(second);
    EXPECT_EQ(can_unload_now(), S_OK);
}

}  // namespace
}  // namespace vex::plugin_test
