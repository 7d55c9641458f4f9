// The user of the toolkit tests: does one thing after another, whenever the topmost form waits for input.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "core/unicode.h"
#include "simulator/screen.h"

namespace vex::test {

class TestUser final : public sim::ScreenUser {
public:
    explicit TestUser(sim::Screen& screen) noexcept : screen_(screen) { screen_.set_user(this); }
    TestUser(const TestUser&) = delete;
    TestUser& operator=(const TestUser&) = delete;
    ~TestUser() override { screen_.set_user(nullptr); }

    /// Does `action` next, after those that wait already.
    TestUser& then(std::function<void()> action) {
        actions_.push_back(std::move(action));
        return *this;
    }

    std::vector<std::string> dialogs;
    std::vector<forms::MessageBox> boxes;
    /// To the boxes, in their order.
    std::vector<forms::MessageAnswer> answers;
    /// What the user does while messages are handled in the midst of some work.
    std::function<void()> on_messages_handled;
    std::size_t actions_left() const noexcept { return actions_.size(); }

private:
    void form_opened(const std::u16string& name) noexcept override { dialogs.push_back("open " + to_utf8(name)); }
    void form_closed(const std::u16string& name) noexcept override { dialogs.push_back("close " + to_utf8(name)); }
    bool act() noexcept override {
        if (actions_.empty()) return false;
        const auto action = std::move(actions_.front());
        actions_.pop_front();
        action();
        return true;
    }
    void messages_handled() noexcept override {
        if (on_messages_handled) on_messages_handled();
    }
    forms::MessageAnswer answer(const forms::MessageBox& box) noexcept override {
        boxes.push_back(box);
        return answers.at(boxes.size() - 1);
    }
    std::optional<std::u16string> choose_file(const forms::OpenFileRequest&) noexcept override { return std::nullopt; }
    void beeped() noexcept override {}

    sim::Screen& screen_;
    std::deque<std::function<void()>> actions_;
};

}  // namespace vex::test
