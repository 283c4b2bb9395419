#pragma once

#include <string>

namespace drx9 {

enum class MessageIcon { None, Information, Question, Exclamation, Critical };

/// How an operation that runs by itself or by hand tells of a failure.
enum class Messages {
    Blocking,    ///< the operator asked for it and waits
    NonBlocking, ///< unattended: polling, logging and reconnecting must go on behind the box
};

/// Message boxes over the window that is active. The blocking ones run the event loop until answered. Texts
/// are UTF-8.
class MessageBoxes {
public:
    virtual ~MessageBoxes() = default;
    /// Blocks until the operator presses OK. `systemModal` keeps the box above all other windows.
    virtual void show(const std::string& text, const std::string& title, MessageIcon icon,
                      bool systemModal = false) = 0;
    /// True for Yes. Esc and the close box mean No.
    virtual bool askYesNo(const std::string& text, const std::string& title, MessageIcon icon) = 0;
    /// True for OK. Esc and the close box mean Cancel.
    virtual bool askOkCancel(const std::string& text, const std::string& title, MessageIcon icon) = 0;
    /// Shows a box and returns at once. There is at most one: a box that stands gets the new text.
    virtual void showNonBlocking(const std::string& text, const std::string& title, MessageIcon icon) = 0;
    /// Takes the non-blocking box away; no effect where none stands.
    virtual void closeNonBlocking() = 0;
};

} // namespace drx9
