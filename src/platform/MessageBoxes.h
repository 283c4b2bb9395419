#pragma once

#include <functional>
#include <string>

namespace drx9 {

enum class MessageIcon { None, Information, Question, Exclamation, Critical };

/// How an operation that runs by itself or by hand tells of a failure.
enum class Messages {
    Blocking,    ///< the operator asked for it and waits
    NonBlocking, ///< unattended: polling, logging and reconnecting must go on behind the box
    Silent,      ///< no box; the caller tells it elsewhere
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
    /// Shows a box and returns at once. There is at most one: a box that is open gets the new text.
    virtual void showNonBlocking(const std::string& text, const std::string& title, MessageIcon icon) = 0;
    /// Takes the non-blocking box away; no effect where none is open.
    virtual void closeNonBlocking() = 0;
    /// Asks and returns at once; `answered` is called later from the event loop: true for Yes, false for No,
    /// Esc and the close box. At most one is open: a new question takes the place of one that was not
    /// answered, whose `answered` is then never called.
    virtual void askYesNoLater(const std::string& text, const std::string& title, MessageIcon icon,
                               std::function<void(bool)> answered) = 0;
    /// Takes the question away; `answered` is never called.
    virtual void dropQuestion() = 0;
};

} // namespace drx9
