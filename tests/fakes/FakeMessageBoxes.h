#pragma once

#include "platform/MessageBoxes.h"

#include <deque>
#include <functional>
#include <string>
#include <vector>

namespace drx9 {

/// Message boxes answered in advance. A box that was not expected next fails the test (and is answered No or
/// Cancel); when the object goes, each expected box that never came fails it too.
class FakeMessageBoxes : public MessageBoxes {
public:
    enum class Kind { Show, YesNo, OkCancel, NonBlocking };
    struct Box {
        Kind kind = Kind::Show;
        std::string text;
        std::string title;
        MessageIcon icon = MessageIcon::None;
        bool systemModal = false;
    };
    /// Runs while the box stands, as the event loop of a real one would; may be empty.
    using Meanwhile = std::function<void()>;

    FakeMessageBoxes() = default;
    ~FakeMessageBoxes() override;
    FakeMessageBoxes(const FakeMessageBoxes&) = delete;
    FakeMessageBoxes& operator=(const FakeMessageBoxes&) = delete;

    // What will come, in this order.
    void expectShow(const std::string& text, Meanwhile meanwhile = {});
    void expectYesNo(const std::string& text, bool yes, Meanwhile meanwhile = {});
    void expectOkCancel(const std::string& text, bool ok, Meanwhile meanwhile = {});
    void expectNonBlocking(const std::string& text);
    /// Boxes that begin so may come at any time, any number of them; they are answered No or Cancel.
    void allow(const std::string& beginning) { allowed_.push_back(beginning); }

    /// Every box that came so far, in order.
    [[nodiscard]] const std::vector<Box>& shown() const { return shown_; }
    [[nodiscard]] bool allCame() const { return expected_.empty(); }
    /// Text of the non-blocking box that stands; empty when none does.
    [[nodiscard]] const std::string& nonBlockingText() const { return nonBlocking_; }

    void show(const std::string& text, const std::string& title, MessageIcon icon, bool systemModal) override;
    bool askYesNo(const std::string& text, const std::string& title, MessageIcon icon) override;
    bool askOkCancel(const std::string& text, const std::string& title, MessageIcon icon) override;
    void showNonBlocking(const std::string& text, const std::string& title, MessageIcon icon) override;
    void closeNonBlocking() override { nonBlocking_.clear(); }

private:
    struct Expected {
        Kind kind = Kind::Show;
        std::string text;
        bool answer = false;
        Meanwhile meanwhile;
    };

    bool come(Box box);

    std::deque<Expected> expected_;
    std::vector<std::string> allowed_;
    std::vector<Box> shown_;
    std::string nonBlocking_;
};

} // namespace drx9
