#include "simulator/Control.h"

#include <algorithm>
#include <array>

#include "simulator/Text.h"

namespace drx9::sim {

namespace {
using Words = std::vector<std::string_view>;

struct Verb {
    std::string_view name;
    std::string_view form;
    std::string_view help;
    ControlAnswer (*run)(Simulator&, const Words&, double);
};

ControlAnswer ok(std::string text = "") {
    return {text.empty() ? "ok" : "ok " + std::move(text)};
}

ControlAnswer wrong(std::string text) {
    return {"error: " + std::move(text)};
}

ControlAnswer faults(Simulator& simulator, const Words& words, double now) {
    FaultList list =
        words.size() == 2 ? parseFaults(words[1]) : FaultList{{}, "say: faults LIST, or faults none"};
    if (!list.error.empty()) {
        return wrong(list.error);
    }
    simulator.setFaults(std::move(list.faults), now);
    return ok("faults " + std::string(words[1]));
}

ControlAnswer crystal(Simulator& simulator, const Words& words, double now) {
    const int sensor = words.size() == 3 ? integerIn(words[1], 1, kMaxSensors).value_or(0) : 0;
    const std::string_view what = sensor > 0 ? words[2] : "";
    if (what == "fail") {
        simulator.failCrystal(sensor, CrystalFailure::Stopped, now);
    } else if (what == "out") {
        simulator.failCrystal(sensor, CrystalFailure::OutOfLimits, now);
    } else if (what == "ok") {
        simulator.mendCrystal(sensor, now);
    } else {
        return wrong("say: crystal 1..6 fail, out or ok");
    }
    return ok("crystal " + std::to_string(sensor) + " " + std::string(what));
}

ControlAnswer shutterState(Simulator& simulator, const Words& /*words*/, double now) {
    return ok(std::string("shutter ") +
              (simulator.instrument().shutterOpen(simulator.simulated(now)) ? "1" : "0"));
}

ControlAnswer shutter(Simulator& simulator, const Words& words, double now) {
    const std::string_view what = words.size() == 2 ? words[1] : "";
    if (what != "open" && what != "close") {
        return wrong("say: shutter open, or shutter close");
    }
    simulator.setShutter(what == "open", now);
    return shutterState(simulator, words, now);
}

ControlAnswer state(Simulator& simulator, const Words& /*words*/, double now) {
    Instrument& instrument = simulator.instrument();
    const double t = simulator.simulated(now);
    return ok("film " + std::to_string(instrument.currentFilm()) + " shutter " +
              (instrument.shutterOpen(t) ? "1" : "0") + " timer " + fixedText(instrument.timer(t), 1) +
              " rate " + fixedText(instrument.averageRate(t), 2) + " thickness " +
              fixedText(instrument.averageThickness(t), 4));
}

ControlAnswer count(Simulator& simulator, const Words& words, double /*now*/) {
    const std::string_view text = words.size() > 1 ? words[1] : "*";
    if (text == "reset") {
        simulator.resetCounts();
        return ok("count reset");
    }
    return ok("count " + std::string(text) + " " + std::to_string(simulator.count(text)));
}

template<LinkAction action>
ControlAnswer act(Simulator& /*simulator*/, const Words& words, double /*now*/) {
    return {"ok " + std::string(words[0]), action};
}

ControlAnswer help(Simulator& simulator, const Words& words, double now);

constexpr std::array<Verb, 11> kVerbs{{
    {"faults", "faults LIST", "the faults to have from now on, as after --faults; \"none\" ends them",
     faults},
    {"crystal", "crystal N fail|out|ok", "crystal N stops, leaps out of limits, or works again", crystal},
    {"shutter", "shutter open|close", "as if somebody did it at the instrument", shutter},
    {"shutter?", "shutter?", "1 open, 0 closed", shutterState},
    {"state?", "state?", "film, shutter, timer, average rate and thickness", state},
    {"count", "count [TEXT]", "how often the command TEXT came (TEXT*: all that begin so); \"count reset\"",
     count},
    {"drop", "drop", "end every connection; new ones are welcome", act<LinkAction::Drop>},
    {"unplug", "unplug", "pull the cable: no connection, no port, no pseudo-terminal",
     act<LinkAction::Unplug>},
    {"plug", "plug", "put the cable back", act<LinkAction::Plug>},
    {"quit", "quit", "end the program", act<LinkAction::Quit>},
    {"help", "help", "this list", help},
}};

ControlAnswer help(Simulator& /*simulator*/, const Words& /*words*/, double /*now*/) {
    std::string text = "ok help";
    for (const Verb& verb : kVerbs) {
        std::string form = "  " + std::string(verb.form);
        form.resize(std::max<std::size_t>(form.size() + 2, 26), ' ');
        text += '\n' + form + std::string(verb.help);
    }
    return {text};
}
} // namespace

ControlAnswer control(Simulator& simulator, std::string_view line, double now) {
    const Words words = wordsOf(line);
    if (words.empty()) {
        return {};
    }
    const auto* verb =
        std::find_if(kVerbs.begin(), kVerbs.end(), [&](const Verb& one) { return one.name == words[0]; });
    if (verb == kVerbs.end()) {
        return wrong("unknown: " + std::string(words[0]) + " (type help)");
    }
    return verb->run(simulator, words, now);
}

} // namespace drx9::sim
