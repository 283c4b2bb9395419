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
    const auto answerer = [this](const std::string& command) { return answer(command); };
    serial.wire.setAnswerer(answerer, 0.002);
    socket.wire.setAnswerer(answerer, 0.002);
    usb.wire.setAnswerer(answerer, 0.002);
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
    switch (command[0]) {
    case '@':
        return replyPacket('A', version);
    case 'J':
        return replyPacket('A', "DRX-9 " + std::to_string(sensors));
    case 'P':
        frequency_ -= frozen ? 0 : 0.5;
        return replyPacket('A', std::to_string(frequency_));
    case 'L':
    case 'M':
        return replyPacket('A', std::to_string(rate));
    case 'N':
    case 'O':
        return replyPacket('A', std::to_string(thickness));
    case 'A':
        return replyPacket('A', "FILM_" + std::to_string(command[1] - 48) +
                                    "  2.700 100 1.080 6.000 4.500  125  3");
    case 'B':
        return replyPacket('A', " .25 0 0 1 4 100 100 100 100 100 100");
    case 'C':
        return replyPacket('A', "5 6 0 10 0 100 0");
    case 'U':
        if (command != "U?") {
            shutter = command[1] - '0';
            return replyPacket('A', "");
        }
        return replyPacket('A', std::to_string(shutter));
    default:
        return replyPacket('A', "");
    }
}

} // namespace drx9
