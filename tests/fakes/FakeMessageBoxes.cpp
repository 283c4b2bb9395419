#include "fakes/FakeMessageBoxes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace drx9 {

FakeMessageBoxes::~FakeMessageBoxes() {
    for (const Expected& box : expected_) {
        ADD_FAILURE() << "expected message box never came: " << box.text;
    }
}

void FakeMessageBoxes::expectShow(const std::string& text, Meanwhile meanwhile) {
    expected_.push_back({Kind::Show, text, false, std::move(meanwhile)});
}

void FakeMessageBoxes::expectYesNo(const std::string& text, bool yes, Meanwhile meanwhile) {
    expected_.push_back({Kind::YesNo, text, yes, std::move(meanwhile)});
}

void FakeMessageBoxes::expectOkCancel(const std::string& text, bool ok, Meanwhile meanwhile) {
    expected_.push_back({Kind::OkCancel, text, ok, std::move(meanwhile)});
}

void FakeMessageBoxes::expectNonBlocking(const std::string& text) {
    expected_.push_back({Kind::NonBlocking, text, false, {}});
}

void FakeMessageBoxes::show(const std::string& text, const std::string& title, MessageIcon icon,
                            bool systemModal) {
    come({Kind::Show, text, title, icon, systemModal});
}

bool FakeMessageBoxes::askYesNo(const std::string& text, const std::string& title, MessageIcon icon) {
    return come({Kind::YesNo, text, title, icon, false});
}

bool FakeMessageBoxes::askOkCancel(const std::string& text, const std::string& title, MessageIcon icon) {
    return come({Kind::OkCancel, text, title, icon, false});
}

void FakeMessageBoxes::showNonBlocking(const std::string& text, const std::string& title, MessageIcon icon) {
    nonBlocking_ = text;
    come({Kind::NonBlocking, text, title, icon, false});
}

bool FakeMessageBoxes::come(Box box) {
    shown_.push_back(box);
    if (std::any_of(allowed_.begin(), allowed_.end(),
                    [&](const std::string& beginning) { return box.text.rfind(beginning, 0) == 0; })) {
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

} // namespace drx9
