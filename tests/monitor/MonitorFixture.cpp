#include "monitor/MonitorFixture.h"

namespace drx9 {

MonitorFixture::MonitorFixture()
    : core({files, clock, pump, boxes, serial, socket, usb, ticker, progress, sleep,
            GraphSet{&averageRate.graph, &rates.graph, &averageThickness.graph, &thicknesses.graph}},
           Paths{"/app", "/app"}, NumberLocale{}, AppInfo{}) {
    files.put("/app/Monitor.ini",
              "[Display]\r\nView=1\r\n[Graph]\r\nView=1\r\n[CommSettings]\r\nCommType=2\r\n"
              "EAddress=127.0.0.1\r\n[DataLog]\r\nType=2\r\nEnd=100000\r\n");
    ticker.events = &events;
    progress.pump = &pump;
    window.events = &events;
    window.pump = &pump;
    for (FakeWire* wire : {&serial.wire, &socket.wire, &usb.wire}) {
        wire->setAnswerer([this](const std::string& command) { return answer(command); }, 0.002);
    }
    usb.devices.push_back({"83F5", "0A7C21"});
    core.window.set(window);
}

void MonitorFixture::bringUp() {
    ASSERT_TRUE(core.lifecycle.Form_Load());
    tick();
    events.clear();
    socket.wire.forget();
}

void MonitorFixture::click(const std::string& what) {
    what == "zero"      ? monitor.cmdZero_Click()
    : what == "shutter" ? monitor.cmdShutter_Click()
    : what == "start"   ? monitor.cmdStartStop_Click()
                        : monitor.cboFilms_Click(2);
}

void MonitorFixture::loseLink() {
    silent = true;
    socket.drop();
    socket.refusal = "Connection refused";
}

void MonitorFixture::returnLink() {
    silent = false;
    socket.refusal.clear();
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
    if (const auto found = onCommand.find(command); found != onCommand.end()) {
        const std::function<void()> hook = found->second; // it may take itself out
        hook();
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
    frequency_ -= command[0] == 'P' ? 0.5 : 0;
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
