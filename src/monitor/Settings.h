#pragma once

#include "link/LinkSettings.h"
#include "link/Records.h"
#include "util/NumberLocale.h"
#include "util/Paths.h"

#include <cstdint>
#include <string>

namespace drx9 {

class cFile;
class FilePort;

/// The values are those of the settings file. Any other number counts as Append, so that no run goes unlogged
/// or overwritten.
enum class LogMode : std::int16_t { None = 0, Overwrite = 1, Append = 2 };

struct DataLogSettings {
    std::string File = "drx9.txt"; ///< as given; resolved where it is used
    LogMode Type = LogMode::None;  ///< the file's number, also another than these
    std::int32_t Start = 0;        ///< s of elapsed run time from which readings are logged
    std::int32_t End = 300;        ///< s of elapsed run time up to which readings are logged
    std::int16_t Interval = 1;     ///< least number of seconds between two lines
};

/// All that Monitor.ini keeps: read once at start, changed by the windows, written once at exit.
struct Settings {
    std::string DBFileName = "Monitor.mdb"; ///< as given; resolved where it is used
    std::int16_t Display = 0;               ///< 1 rate, 2 thickness, 3 frequency; 0 none chosen yet
    std::int16_t Graph = 0;                 ///< 1..4; 0 none chosen yet
    LinkSettings link;
    DataLogSettings log;
    SystemParameters system;
};

/// Sets the file's name to Monitor.ini in the data folder and reads every key; a missing or empty one gives
/// its default, text that is no number the default too.
void LoadSettings(Settings& settings, cFile& file, const FilePort& files, const Paths& paths,
                  const NumberLocale& locale);

/// Writes every key in one atomic replace; creates the file when it is missing. DBFile/Name is skipped when
/// it is "UploadData.mdb" or resolves to that file in the data folder. False when the file could not be
/// written.
bool SaveSettings(const Settings& settings, cFile& file, FilePort& files, const Paths& paths,
                  const NumberLocale& locale);

} // namespace drx9
