#pragma once

#include "monitor/IniText.h"

#include <cstdlib>
#include <string>
#include <string_view>

namespace drx9 {

inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

/// What must hold of an INI file of any bytes; aborts where it does not.
inline void checkIniFile(std::string_view bytes) {
    const IniText untouched(bytes);
    require(untouched.bytes() == bytes);
    const auto display = untouched.find("Display", "View");
    const auto link = untouched.find("commsettings", "EAddress");

    IniText changed(bytes);
    for (const char* value : {"run.txt", "", "\xC3\xB6.txt", "\xCE\xA9.txt"}) { // o with diaeresis, omega
        changed.set("DataLog", "File", value);
        require(changed.find("DATALOG", "file") == value);
        const std::string written = changed.bytes();
        IniText again(written);
        require(again.find("DataLog", "File") == value);
        again.set("DataLog", "File", value);
        require(again.bytes() == written);
        require(again.find("Display", "View") == display);
        require(again.find("CommSettings", "EAddress") == link);
    }
    changed.removeSection("DataLog");
    require(changed.find("Display", "View") == display);
}

} // namespace drx9
