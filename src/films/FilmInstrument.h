#pragma once

#include "link/Commands.h"
#include "link/Link.h"
#include "link/Records.h"
#include "platform/Clock.h"
#include "platform/MessageBoxes.h"

#include <cstdint>
#include <string>

namespace drx9 {

/// The instrument as the film window uses it: what is known of it, and the exchanges with its film memory.
/// Each exchange begins with the status 0, whatever the one before left. They pump events.
class FilmInstrument {
public:
    FilmInstrument(Link& link, Commands& commands, const Clock& clock)
        : link_(link)
        , commands_(commands)
        , clock_(clock) {}

    /// The link is up, and the instrument has told its version.
    [[nodiscard]] bool online() const { return link_.CommOK() && !link_.CommVersion().empty(); }
    /// It cannot be asked anything: off line, or the link has gone since.
    [[nodiscard]] bool lost() const { return !online() || !link_.isOpen(); }
    [[nodiscard]] std::string versionText() const { return link_.Comm_VersionText(); }
    [[nodiscard]] int FilmCount() const { return link_.FilmCount(); }
    [[nodiscard]] int sensorCount() const { return link_.sensorCount(); }

    /// A transfer begins.
    void begin();

    Commands::UnitAnswer unit();
    Commands::FilmAnswer readFilm(int number, Messages messages);
    /// The status of the exchange.
    std::uint16_t writeFilm(int number, const FilmRecord& film);
    std::uint16_t resetFilms();

    /// Two exchanges in a row timed out since begin().
    [[nodiscard]] bool silent() const { return timeouts_ >= kDeadAfterTimeouts; }
    /// An exchange since the last look got no answer.
    [[nodiscard]] bool unanswered() const { return unanswered_; }
    /// An exchange was tried.
    [[nodiscard]] bool reached() const { return reached_; }

    /// Whether the answers since the last look are those of their commands.
    enum class Step : std::uint8_t {
        Sound,
        Doubtful, ///< behind some that were alike an answer came twice, or none: all may have moved by one
        Broken,   ///< an answer came that is none of theirs
    };
    /// Listens a while, and drops what comes.
    Step look();
    /// How long a look may take, s.
    [[nodiscard]] double lookTime() const { return longest_ + kListenAtLeast; }

private:
    void beginExchange();
    void endExchange(std::uint16_t status);

    static constexpr int kDeadAfterTimeouts = 2;
    static constexpr double kListenAtLeast = 0.002; ///< s, for the system's sake

    Link& link_;
    Commands& commands_;
    const Clock& clock_;
    bool reached_ = false;
    int timeouts_ = 0; ///< in a row
    bool unanswered_ = false;
    double began_ = 0;   ///< the exchange in hand; monotonic
    double longest_ = 0; ///< s, of the exchanges since the last look
};

} // namespace drx9
