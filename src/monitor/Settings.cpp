#include "monitor/Settings.h"

#include "monitor/cFile.h"
#include "platform/FilePort.h"
#include "util/Numbers.h"

#include <algorithm>

namespace drx9 {

namespace {

constexpr const char* kFileName = "Monitor.ini";
// Kept: the address is read under its own name and written under this one, so that one entered in the program
// is not read back at the next start.
constexpr const char* kWrittenAddress = "EAddresst";
constexpr const char* kRateMax = "Rate Max"; // kept: with a blank, unlike its partner
constexpr const char* kTimebase = "2,5";     // kept: 25 where the comma groups

/// Values of one section, each with the text of its default.
class Reader {
public:
    Reader(cFile& file, const char* section, const NumberLocale& locale)
        : file_(file)
        , section_(section)
        , locale_(locale) {}

    std::string text(const char* key, const char* fallback) const {
        return file_.ReadIniStr(section_, key, fallback, 0);
    }
    std::int16_t int16(const char* key, const char* fallback) const { return toInt16(number(key, fallback)); }
    std::int32_t int32(const char* key, const char* fallback) const { return toInt32(number(key, fallback)); }
    double number(const char* key, const char* fallback) const {
        const auto value = parseLocaleNumber(text(key, fallback), locale_);
        return value ? *value : defaultNumber(fallback);
    }

private:
    /// A default is a text like any other; in a locale where it is no number its separator counts as the
    /// decimal one.
    double defaultNumber(std::string fallback) const {
        if (const auto value = parseLocaleNumber(fallback, locale_)) {
            return *value;
        }
        std::replace(fallback.begin(), fallback.end(), ',', '.');
        return Val(fallback);
    }

    cFile& file_;
    const char* section_;
    const NumberLocale& locale_;
};

class Writer {
public:
    Writer(cFile& file, const char* section, const NumberLocale& locale)
        : file_(file)
        , section_(section)
        , locale_(locale) {}

    void text(const std::string& key, const std::string& value) const {
        file_.WriteIniStr(section_, key, value);
    }
    void integer(const std::string& key, std::int32_t value) const { text(key, std::to_string(value)); }
    void general(const std::string& key, double value) const { text(key, generalNumber(value, locale_)); }
    void fixed(const std::string& key, double value, int decimals) const {
        text(key, fixedNumber(value, decimals, locale_, false));
    }

private:
    cFile& file_;
    const char* section_;
    const NumberLocale& locale_;
};

std::string toolKey(std::size_t crystal) {
    return "Tool" + std::to_string(crystal + 1);
}

void loadLink(LinkSettings& link, const Reader& in) {
    link.CommType = LinkType{in.int16("CommType", "0")};
    link.Baud = in.int32("Baud", "19200");
    link.Port = in.int16("Port", "1");
    link.USBSerNum = in.text("USBSerNum", "0");
    link.EPort = in.text("EPort", "2101");
    link.EAddress = in.text("EAddress", "192.168.1.200");
}

void loadLog(DataLogSettings& log, const Reader& in, const FilePort& files, const Paths& paths) {
    log.File = in.text("File", "drx9.txt");
    if (!files.exists(paths.resolve(log.File))) {
        log.File = bareName(log.File);
    }
    log.Type = LogMode{in.int16("Type", "0")};
    log.Start = in.int32("Start", "0");
    log.End = in.int32("End", "300");
    log.Interval = in.int16("Interval", "1");
}

void loadSystem(SystemParameters& system, const Reader& in) {
    system.Simulate = in.number("Simulate", "0");
    system.RateResolution = in.number("Resolution", "0");
    system.FreqDisplay = in.number("Display", "0");
    system.RateFilter = in.number("Filter", "4");
    system.Timebase = in.number("Timebase", kTimebase);
    for (std::size_t crystal = 0; crystal < system.Tooling.size(); ++crystal) {
        system.Tooling[crystal] = in.number(toolKey(crystal).c_str(), "100");
    }
    system.EtchMode = in.number("Etch", "0");
    system.FreqMin = in.number("FreqMin", "5.0");
    system.FreqMax = in.number("FreqMax", "6.0");
    system.ThickMin = in.number("ThickMin", "0");
    system.ThickMax = in.number("ThickMax", "100");
    system.RateMin = in.number("RateMin", "0");
    system.RateMax = in.number(kRateMax, "10");
}

void saveLink(const LinkSettings& link, const Writer& out) {
    out.integer("CommType", static_cast<std::int32_t>(link.CommType));
    out.integer("Baud", link.Baud);
    out.integer("Port", link.Port);
    out.text("USBSerNum", link.USBSerNum);
    out.text("EPort", link.EPort);
    out.text(kWrittenAddress, link.EAddress);
}

void saveLog(const DataLogSettings& log, const Writer& out) {
    out.text("File", log.File);
    out.integer("Type", static_cast<std::int32_t>(log.Type));
    out.integer("Start", log.Start);
    out.integer("End", log.End);
    out.integer("Interval", log.Interval);
}

void saveSystem(const SystemParameters& system, const Writer& out) {
    out.general("Simulate", system.Simulate);
    out.general("Resolution", system.RateResolution);
    out.general("Display", system.FreqDisplay);
    out.general("Filter", system.RateFilter);
    out.fixed("Timebase", system.Timebase, 2);
    for (std::size_t crystal = 0; crystal < system.Tooling.size(); ++crystal) {
        out.general(toolKey(crystal), system.Tooling[crystal]);
    }
    out.general("Etch", system.EtchMode);
    out.fixed("FreqMin", system.FreqMin, 1);
    out.fixed("FreqMax", system.FreqMax, 1);
    out.general("ThickMin", system.ThickMin);
    out.fixed("ThickMax", system.ThickMax, 3);
    out.general("RateMin", system.RateMin);
    out.fixed(kRateMax, system.RateMax, 3);
}

/// The database made for uploaded films is never remembered as the working one, whatever way it was named.
bool isUploadDatabase(const std::string& name, const FilePort& files, const Paths& paths) {
    const std::string upload = paths.resolve(kUploadFile);
    const std::string path = paths.resolve(name);
    if (name == kUploadFile || files.resolveLinks(path) == files.resolveLinks(upload)) {
        return true;
    }
    const auto a = files.identity(path);
    const auto b = files.identity(upload);
    return a && b && a->device == b->device && a->node == b->node;
}

} // namespace

void LoadSettings(Settings& settings, cFile& file, const FilePort& files, const Paths& paths,
                  const NumberLocale& locale) {
    file.setFileName(paths.resolve(kFileName));
    const auto section = [&](const char* name) { return Reader(file, name, locale); };
    settings.DBFileName = section("DBFile").text("Name", "Monitor.mdb");
    settings.Display = section("Display").int16("View", "0");
    settings.Graph = section("Graph").int16("View", "0");
    loadLink(settings.link, section("CommSettings"));
    loadLog(settings.log, section("DataLog"), files, paths);
    loadSystem(settings.system, section("System"));
}

bool SaveSettings(const Settings& settings, cFile& file, FilePort& files, const Paths& paths,
                  const NumberLocale& locale) {
    if (!file.beginWrites(paths.resolve(kFileName))) {
        return false;
    }
    const auto section = [&](const char* name) { return Writer(file, name, locale); };
    section("Display").integer("View", settings.Display);
    section("Graph").integer("View", settings.Graph);
    saveLink(settings.link, section("CommSettings"));
    saveLog(settings.log, section("DataLog"));
    saveSystem(settings.system, section("System"));
    if (!isUploadDatabase(settings.DBFileName, files, paths)) {
        section("DBFile").text("Name", settings.DBFileName);
    }
    return file.commitWrites();
}

} // namespace drx9
