#pragma once

#include "monitor/Settings.h"
#include "util/NumberLocale.h"
#include "util/Paths.h"

#include <string>

namespace drx9 {

class cFile;
class FilePort;
class Readouts;

/// Monitor.ini at the program's start and end, with what the view menu has chosen.
class SettingsStore {
public:
    SettingsStore(Settings& settings, Readouts& readouts, cFile& file, FilePort& files, const Paths& paths,
                  const NumberLocale& locale);

    void load();
    /// The reason of a failure; empty on success, and where nothing has been loaded that could be written
    /// back.
    [[nodiscard]] std::string save();

private:
    Settings& settings_;
    Readouts& readouts_;
    cFile& file_;
    FilePort& files_;
    const Paths& paths_;
    const NumberLocale& locale_;
    bool loaded_ = false;
};

} // namespace drx9
