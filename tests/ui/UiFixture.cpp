// The monitor's fixture serves the windows too.
#include "monitor/MonitorFixture.cpp"
