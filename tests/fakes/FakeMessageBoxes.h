#pragma once

#include "platform/MessageBoxes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace drx9 {

/// Message boxes answered in advance. A box that was not expected next fails the test (and is answered No or
/// Cancel); when the object goes, each expected box that never came fails it too.
class FakeMessageBoxes : public MessageBoxes {
public:
    enum class Kind { Show, YesNo, OkCancel, NonBlocking, Later };
    struct Box {
        Kind kind = Kind::Show;
        std::string text;
        std::string title;
        MessageIcon icon = MessageIcon::None;
        bool systemModal = false;
    };
    /// Runs while the box is open, as the event loop of a real one would; may be empty.
    using Meanwhile = std::function<void()>;

    FakeMessageBoxes() = default;
    ~FakeMessageBoxes() override {
        for (const Expected& box : expected_) {
            ADD_FAILURE() << "expected message box never came: " << box.text;
        }
    }
    FakeMessageBoxes(const FakeMessageBoxes&) = delete;
    FakeMessageBoxes& operator=(const FakeMessageBoxes&) = delete;

    /// What will come next, behind what is expected already, and its answer.
    void expect(Kind kind, const std::string& text, bool answer = false, Meanwhile meanwhile = {}) {
        expected_.push_back({kind, text, answer, std::move(meanwhile)});
    }
    void expectShow(const std::string& text, Meanwhile meanwhile = {}) {
        expect(Kind::Show, text, false, std::move(meanwhile));
    }
    void expectNonBlocking(const std::string& text) { expect(Kind::NonBlocking, text); }
    /// Boxes that begin so may come at any time, any number of them; they are answered No or Cancel.
    void allow(const std::string& beginning) { allowed_.push_back(beginning); }

    /// Every box that came so far, in order.
    [[nodiscard]] const std::vector<Box>& shown() const { return shown_; }
    [[nodiscard]] bool allCame() const { return expected_.empty(); }
    /// Text of the non-blocking box that is open; empty when none does.
    [[nodiscard]] const std::string& nonBlockingText() const { return nonBlocking_; }

    void show(const std::string& text, const std::string& title, MessageIcon icon,
              bool systemModal) override {
        come({Kind::Show, text, title, icon, systemModal});
    }
    bool askYesNo(const std::string& text, const std::string& title, MessageIcon icon) override {
        return come({Kind::YesNo, text, title, icon, false});
    }
    bool askOkCancel(const std::string& text, const std::string& title, MessageIcon icon) override {
        return come({Kind::OkCancel, text, title, icon, false});
    }
    void showNonBlocking(const std::string& text, const std::string& title, MessageIcon icon) override {
        nonBlocking_ = text;
        come({Kind::NonBlocking, text, title, icon, false});
    }
    void closeNonBlocking() override { nonBlocking_.clear(); }
    void askYesNoLater(const std::string& text, const std::string& title, MessageIcon icon,
                       std::function<void(bool)> answered) override {
        later_ = std::move(answered);
        come({Kind::Later, text, title, icon, false});
    }
    void dropQuestion() override { later_ = {}; }
    /// Answers the question that is open; there must be one.
    void answerLater(bool yes) {
        ASSERT_TRUE(later_);
        std::exchange(later_, {})(yes);
    }

private:
    struct Expected {
        Kind kind = Kind::Show;
        std::string text;
        bool answer = false;
        Meanwhile meanwhile;
    };

    bool come(const Box& box) {
        shown_.push_back(box);
        const auto begins = [&](const std::string& beginning) { return box.text.rfind(beginning, 0) == 0; };
        if (std::any_of(allowed_.begin(), allowed_.end(), begins)) {
            return false;
        }
        if (expected_.empty() || expected_.front().kind != box.kind || expected_.front().text != box.text) {
            ADD_FAILURE() << "unexpected message box: \"" << box.text << "\" (" << box.title << "), expected "
                          << (expected_.empty() ? "none" : "\"" + expected_.front().text + "\"");
            return false;
        }
        const Expected next = std::move(expected_.front());
        expected_.pop_front();
        if (next.meanwhile) {
            next.meanwhile();
        }
        return next.answer;
    }

    std::deque<Expected> expected_;
    std::vector<std::string> allowed_;
    std::vector<Box> shown_;
    std::string nonBlocking_;
    std::function<void(bool)> later_;
};

} // namespace drx9
