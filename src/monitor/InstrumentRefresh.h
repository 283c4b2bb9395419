#pragma once

#include "link/ActionQueue.h"
#include "link/Commands.h"
#include "link/Discovery.h"
#include "link/Link.h"
#include "link/LinkSettings.h"
#include "link/Records.h"
#include "monitor/AnswerRecord.h"
#include "platform/Progress.h"

#include <string>
#include <vector>

namespace drx9 {

/// Reads from the instrument what the main window shows beside the readings: the film list and the system
/// record. When another link is opened, or another version text answers, the films are another instrument's:
/// until they are read their numbers are 0 (not known).
class InstrumentRefresh : public LinkListener {
public:
    struct Parts {
        Commands& commands;
        Link& link;
        Discovery& discovery;
        Films& films;
        SystemParameters& system;
        AnswerRecord& answers;
        ActionQueue& actions;
        Progress& progress;
    };
    enum class End {
        Read,
        Cut,       ///< an action waited; nothing but a complete system record was taken
        OutOfStep, ///< nobody can tell which answer belongs to which film; nothing was taken
    };
    struct Result {
        End end = End::Read;
        std::vector<std::string> films; ///< names in UTF-8, up to the first film that could not be read
        bool recordAsked = false;
        bool recordRead = false; ///< meaningful when recordAsked
    };

    explicit InstrumentRefresh(const Parts& parts)
        : parts_(parts) {
        parts_.discovery.addListener(*this);
    }
    InstrumentRefresh(const InstrumentRefresh&) = delete;
    InstrumentRefresh& operator=(const InstrumentRefresh&) = delete;

    /// Ends early, after the film in hand, where an action waits; for the system window the record is read
    /// all the same. The films of the list are taken into `films` when the result is Read. Pumps events.
    Result run();

    void linkOpening() override {}
    void linkOpened() override;

private:
    void readFilms(Films& films, Result& result);
    void readRecord(Result& result);

    Parts parts_;
    LinkSettings link_;   ///< of the instrument that the known films belong to
    std::string version_; ///< and its version text
};

} // namespace drx9
