#include "monitor/SettingsStore.h"

#include "monitor/Readouts.h"
#include "monitor/cFile.h"

namespace drx9 {

SettingsStore::SettingsStore(Settings& settings, Readouts& readouts, cFile& file, FilePort& files,
                             const Paths& paths, const NumberLocale& locale)
    : settings_(settings)
    , readouts_(readouts)
    , file_(file)
    , files_(files)
    , paths_(paths)
    , locale_(locale) {}

void SettingsStore::load() {
    LoadSettings(settings_, file_, files_, paths_, locale_);
    loaded_ = true;
    readouts_.setDisplay(settings_.Display);
    readouts_.setGraph(settings_.Graph);
}

std::string SettingsStore::save() {
    if (!loaded_) {
        return {};
    }
    settings_.Display = readouts_.Display();
    settings_.Graph = readouts_.Graph();
    return SaveSettings(settings_, file_, files_, paths_, locale_) ? std::string() : file_.writeFailure();
}

} // namespace drx9
