#pragma once

#include <functional>
#include <memory>
#include <optional>

namespace drx9 {

/// The desktop's wish for dark or light windows, asked of the appearance portal where there is a session bus.
/// Elsewhere it does nothing and costs nothing.
class AppearancePortal {
public:
    /// Empty: the desktop has no wish.
    using Told = std::function<void(std::optional<bool> dark)>;

    /// `told` is called from the event loop: once the portal has answered, and at each change of mind.
    explicit AppearancePortal(Told told);
    ~AppearancePortal();

private:
    class Backend;
    std::unique_ptr<Backend> backend_;
};

} // namespace drx9
