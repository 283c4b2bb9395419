#pragma once

#include <string>
#include <string_view>

namespace drx9 {

struct FileDialogRequest {
    std::string title;            ///< empty: the dialog's own
    std::string filter;           ///< "DB Files (*.mdb)|*.mdb"
    std::string defaultExtension; ///< without the dot
    std::string initialFolder;
    std::string fileName; ///< initial name, may be a path
    bool overwritePrompt = false;
    bool suffixByFilter = false; ///< the default extension follows the filter that is chosen
};

/// File dialogs; both run the event loop and return the chosen full path, empty when cancelled.
class FileDialogs {
public:
    virtual ~FileDialogs() = default;
    virtual std::string openFile(const FileDialogRequest& request) = 0;
    virtual std::string saveFile(const FileDialogRequest& request) = 0;
};

/// The printing dialog.
class PrintDialog {
public:
    struct Result {
        bool printed = false;
        std::string reason; ///< why it was not printed; empty when cancelled
    };

    virtual ~PrintDialog() = default;
    /// Asks for a printer and prints the picture on one page, as large as fits. Runs the event loop.
    virtual Result printPicture(const std::string& title, std::string_view png) = 0;
};

/// The desktop's shell. Both return an empty text on success, else a reason for people.
class Shell {
public:
    virtual ~Shell() = default;
    /// Opens a document with the program that the desktop associates with it.
    virtual std::string openDocument(const std::string& path) = 0;
    /// Starts a program and does not wait for it.
    virtual std::string startProgram(const std::string& program) = 0;
};

/// The manual. It touches windows only, so it may be shown at any time.
class HelpViewer {
public:
    virtual ~HelpViewer() = default;
    virtual void showIndex() = 0;
    /// Opens it at the chapter of a window, named by its object name.
    virtual void showChapter(const std::string& window) = 0;
};

/// Keeps the machine awake while held; no effect where the desktop offers no way to say so.
class SleepInhibitor {
public:
    virtual ~SleepInhibitor() = default;
    virtual void hold(const std::string& reason) = 0;
    virtual void release() = 0;
};

/// A repeating timer of the user-interface thread. Of the ticks that are due while one runs at most one is
/// made up for, never a queue of them.
class Ticker {
public:
    virtual ~Ticker() = default;
    virtual void start() = 0;
    virtual void stop() = 0;
    [[nodiscard]] virtual bool running() const = 0;
};

} // namespace drx9
