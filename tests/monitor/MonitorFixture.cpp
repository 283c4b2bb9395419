#include "monitor/MonitorFixture.h"

namespace drx9 {

MonitorFixture::MonitorFixture(std::int16_t commType) {
    settings.link.CommType = commType;
    settings.link.EAddress = "127.0.0.1";
    settings.Display = 1;
    settings.Graph = 1;
    settings.log.Type = kLogAppend;
    settings.log.End = 100000;
    files.makeFolder("/app");
    ticker.events = &events;
    progress.pump = &pump;
    window.events = &events;
    window.pump = &pump;
    for (FakeWire* wire : {&serial.wire, &socket.wire, &usb.wire}) {
        wire->setAnswerer([this](const std::string& command) { return answer(command); }, 0.002);
    }
    usb.devices.push_back({"83F5", "0A7C21"});
    errors = std::make_unique<CErrHandler>(CErrHandlerParts{files, boxes, clock, locale, AppInfo{}, paths});
    discovery =
        std::make_unique<Discovery>(link, settings.link, transports, pump, clock, actions, boxes, *errors);
    log = std::make_unique<DataLog>(files, clock, locale, paths, boxes, pump, settings.log);
    monitor = std::make_unique<Monitor>(MonitorParts{
        settings, films, link, commands, *discovery, actions, *log, readouts, timer,
        GraphSet{&averageRate, &rates, &averageThickness, &thicknesses}, progress, sleep, clock, pump, [] {},
        [this] {
            ++saves;
            events.emplace_back("settings saved");
        }});
    monitor->setWindow(window);
}

void MonitorFixture::bringUp() {
    ASSERT_TRUE(monitor->Form_Load());
    tick();
    events.clear();
    socket.wire.forget();
}

std::vector<std::string> MonitorFixture::requestsOfTick() {
    socket.wire.forget();
    tick();
    std::vector<std::string> commands_;
    for (const std::string& command : socket.wire.commands()) {
        if (std::string("PLNMO").find(command[0]) == std::string::npos) {
            commands_.push_back(command);
        }
    }
    return commands_;
}

std::string MonitorFixture::logText() const {
    std::string text;
    files.read("/app/drx9.txt", text);
    return text;
}

std::string MonitorFixture::answer(const std::string& command) {
    events.push_back(command);
    if (const auto hook = onCommand.find(command); hook != onCommand.end()) {
        hook->second();
    }
    const auto given = special.find(command);
    if (given != special.end()) {
        return given->second;
    }
    if (silent) {
        return "";
    }
    if (command[0] == 'U' && command != "U?") {
        shutter = command[1] - '0';
        return replyPacket('A', "");
    }
    frequency_ -= command[0] == 'P' && !frozen ? 0.5 : 0;
    const std::map<char, std::string> data = {
        {'@', version},
        {'J', "DRX-9 " + std::to_string(sensors)},
        {'P', std::to_string(frequency_)},
        {'L', std::to_string(rate)},
        {'M', std::to_string(rate)},
        {'N', std::to_string(thickness)},
        {'O', std::to_string(thickness)},
        {'A', "FILM_" + std::to_string(command[1] - 48) + "  2.700 100 1.080 6.000 4.500  125  3"},
        {'B', " .25 0 0 1 4 100 100 100 100 100 100"},
        {'C', "5 6 0 10 0 100 0"},
        {'U', std::to_string(shutter)}};
    const auto found = data.find(command[0]);
    return replyPacket('A', found == data.end() ? "" : found->second);
}

} // namespace drx9
