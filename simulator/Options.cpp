#include "simulator/Options.h"

#include <algorithm>
#include <array>

#include "simulator/Text.h"

namespace drx9::sim {

namespace {
enum class Value { None, Needed, Optional };

struct Option {
    std::string_view name;
    Value value;
    std::string_view form;
    std::string_view help;
    bool (*take)(Options&, const std::string&); ///< false: the value makes no sense
};

constexpr std::size_t kMaxVersionText = 200;

bool takeTcp(Options& options, const std::string& value) {
    TcpAddress address;
    const std::size_t colon = value.rfind(':');
    if (colon != std::string::npos) {
        address.host = value.substr(0, colon);
    }
    if (!value.empty()) {
        address.port = colon == std::string::npos ? value : value.substr(colon + 1);
    }
    options.tcp = address;
    return !address.host.empty() && integerIn(address.port, 0, 65535).has_value();
}

bool takeFilms(Options& options, const std::string& value) {
    InstrumentOptions& instrument = options.simulator.instrument;
    instrument.films = integerIn(value, 9, 99).value_or(0);
    return instrument.films == 9 || instrument.films == 99;
}

bool takeSpeed(Options& options, const std::string& value) {
    options.simulator.speed = numberIn(value).value_or(0);
    return options.simulator.speed > 0 && options.simulator.speed <= 1e6;
}

bool takeBaud(Options& options, const std::string& value) {
    const auto baud = integerIn(value, 50, 10'000'000);
    options.simulator.baud = static_cast<unsigned>(baud.value_or(0));
    return baud.has_value();
}

bool takeSeed(Options& options, const std::string& value) {
    const auto seed = integerIn(value, 0, 2'147'483'647);
    options.simulator.instrument.seed = static_cast<std::uint64_t>(seed.value_or(0));
    return seed.has_value();
}

bool takeSensors(Options& options, const std::string& value) {
    const auto sensors = integerIn(value, 0, kMaxSensors);
    options.simulator.instrument.sensors = sensors.value_or(0);
    return sensors.has_value();
}

bool takeFaults(Options& options, const std::string& value) {
    FaultList list = parseFaults(value);
    options.simulator.faults = std::move(list.faults);
    options.error = list.error;
    return list.error.empty();
}

constexpr std::array<Option, 14> kOptions{{
    {"--tcp", Value::Optional, "--tcp [[HOST:]PORT]",
     "listen on this port, 127.0.0.1:2101 when not told; port 0 takes any free one", takeTcp},
    {"--pty", Value::Optional, "--pty [LINK]", "offer a pseudo-terminal, and a symbolic link to it at LINK",
     [](Options& o, const std::string& v) {
         o.pty = true;
         o.ptyLink = v;
         return true;
     }},
    {"--baud", Value::Needed, "--baud N", "answer at the pace of a serial line of N baud (default: at once)",
     takeBaud},
    {"--sensors", Value::Needed, "--sensors N",
     "0 to 6 crystals (default 6); 0 does not tell and measures six", takeSensors},
    {"--films", Value::Needed, "--films N", "9 or 99 film slots (default 99); 9 also makes it version 4.08",
     takeFilms},
    {"--version-text", Value::Needed, "--version-text TEXT", "what it answers when asked for its version",
     [](Options& o, const std::string& v) {
         o.simulator.instrument.versionText = v;
         return v.size() <= kMaxVersionText;
     }},
    {"--seed", Value::Needed, "--seed N",
     "another deposition; the same number gives the same one (default 1)", takeSeed},
    {"--speed", Value::Needed, "--speed N", "the deposition runs N times faster", takeSpeed},
    {"--frozen", Value::None, "--frozen", "time stands still: every reading repeats",
     [](Options& o, const std::string& /*none*/) { return o.simulator.instrument.frozen = true; }},
    {"--faults", Value::Needed, "--faults LIST", "misbehave; the faults are listed below", takeFaults},
    {"--trace", Value::Optional, "--trace [FILE]", "print every exchange, to FILE or to standard error",
     [](Options& o, const std::string& v) {
         o.traceFile = v;
         return o.trace = true;
     }},
    {"--quiet", Value::None, "--quiet", "no greeting and no notes about connections",
     [](Options& o, const std::string& /*none*/) { return o.quiet = true; }},
    {"--help", Value::None, "--help", "this text",
     [](Options& o, const std::string& /*none*/) { return o.help = true; }},
    {"--version", Value::None, "--version", "the program's own version",
     [](Options& o, const std::string& /*none*/) { return o.version = true; }},
}};

std::string padded(std::string_view text, std::size_t width) {
    std::string column = "  " + std::string(text);
    column.resize(std::max(column.size() + 2, width), ' ');
    return column;
}

/// An option and its value, taken off the arguments from `at` on.
void takeOption(Options& options, const std::vector<std::string>& arguments, std::size_t& at) {
    const std::string& word = arguments[at++];
    const std::size_t equals = std::min(word.find('='), word.size());
    const std::string name = word.substr(0, equals);
    const auto* found =
        std::find_if(kOptions.begin(), kOptions.end(), [&](const Option& one) { return one.name == name; });
    if (found == kOptions.end()) {
        options.error = "unknown option: " + word;
        return;
    }
    std::string value;
    bool given = equals < word.size();
    if (given) {
        value = word.substr(equals + 1);
    } else if (found->value != Value::None && at < arguments.size() && !arguments[at].starts_with("--")) {
        value = arguments[at++];
        given = true;
    }
    if (given == (found->value == Value::None) && found->value != Value::Optional) {
        options.error = std::string(given ? "takes no value: " : "needs a value: ") + name;
    } else if (!found->take(options, value) && options.error.empty()) {
        options.error = "no sensible value for " + name + ": " + value;
    }
}
} // namespace

Options parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    InstrumentOptions& instrument = options.simulator.instrument;
    instrument.versionText.clear();
    bool ownText = false;
    for (std::size_t at = 0; at < arguments.size() && options.error.empty();) {
        ownText = ownText || arguments[at].starts_with("--version-text");
        takeOption(options, arguments, at);
    }
    if (!ownText) {
        instrument.versionText = instrument.films == 9 ? "DRX-9 Ver 4.08" : "DRX-9 Ver 4.12";
    }
    if (!options.tcp && !options.pty) {
        options.tcp = TcpAddress{};
    }
    return options;
}

std::string helpText() {
    std::string text = "drx9sim: a DRX-9 deposition monitor without the hardware\n"
                       "\n"
                       "Start it, then point the operator's program at it: choose Ethernet with address\n"
                       "127.0.0.1 and port 2101, or RS-232 with the pseudo-terminal's name.\n"
                       "\n"
                       "  drx9sim                          an instrument on TCP port 2101\n"
                       "  drx9sim --trace                  the same, printing every exchange\n"
                       "  drx9sim --pty COM1 --baud 19200  on a pseudo-terminal, as slow as the real thing\n"
                       "  drx9sim --speed 20 --faults lose=10,crystal3=60s\n"
                       "\n"
                       "Options:\n";
    for (const Option& option : kOptions) {
        text += padded(option.form, 24) + std::string(option.help) + '\n';
    }
    text += "\nFaults, separated by commas; \"every n-th\" may also be a share (lose=5%), or be left out "
            "(every one).\n"
            "Times are 1500ms, 30s or 2m, counted from the moment the fault is set:\n";
    for (const FaultName& fault : faultTable()) {
        text += padded(fault.form, 24) + std::string(fault.help) + '\n';
    }
    return text +
           "\nWhile it runs it takes commands on its standard input; type \"help\" there for the list.\n";
}

} // namespace drx9::sim
