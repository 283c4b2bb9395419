#pragma once

#include "jet/JetError.h"

#include <string>

namespace drx9 {

/// Runs the statements of a procedure whose database errors are ignored one by one: a statement that fails is
/// skipped and the next one runs. This is the only place in the film library that swallows such an error; why
/// the last one failed is kept for the window's bottom line.
class Statements {
public:
    /// True when the statement ran through.
    template<class Statement>
    bool run(const Statement& statement) {
        try {
            statement();
            return true;
        } catch (const jet::JetError& error) {
            reason_ = error.reason();
            return false;
        }
    }

    /// Why the last statement that failed did so, for people.
    [[nodiscard]] const std::string& reason() const { return reason_; }

private:
    std::string reason_;
};

} // namespace drx9
