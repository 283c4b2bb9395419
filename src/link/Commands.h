#pragma once

#include "link/Link.h"
#include "link/Records.h"
#include "platform/MessageBoxes.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace drx9 {

/// The instrument's commands over the link. Every wrapper pumps events (it waits for a reply) and leaves
/// CommStatus as Comm_Send set it.
class Commands {
public:
    Commands(Link& link, MessageBoxes& boxes, const Clock& clock);

    /// How one reading ended.
    enum class ReadResult {
        Done,
        Busy,      ///< status was not 0 on entry: "Get Data Error" is shown, nothing was sent
        LinkDead,  ///< two time-outs in a row
        OutOfStep, ///< an answer came late or twice: the values behind it may be other commands'
        Abandoned, ///< `abandon` asked for it between two exchanges
    };
    struct ReadOutcome {
        ReadResult end = ReadResult::Done;
        /// Status text of the last failed exchange with the command it belongs to ("P3: Timeout"); empty when
        /// none failed.
        std::string failure = {};
    };

    /// One acquisition of sensors 1 to `sensors`: "P" per sensor, "L" and "N" of sensors whose "P" value
    /// changed and those letters alone that failed last time, "M", "O". `readings` is changed only when the
    /// end is Done; then its `elapsed` is the monotonic clock minus `startTime` after the last exchange. A
    /// single failed exchange, or an answer without a number, counts as the value 0 and is marked in
    /// `failed`. `abandon` (may be empty) is asked between two exchanges: a complete reading is always
    /// delivered.
    ReadOutcome Comm_GetData(Readings& readings, int sensors, const std::function<bool()>& abandon);

    std::uint16_t Comm_ZeroThickness(); ///< "S"; 0 or the status
    std::uint16_t Comm_ZeroTime();      ///< "T"; 0 or the status
    std::uint16_t Comm_FilmDefaults();  ///< "Z"; 0 or the status

    struct UnitAnswer {
        std::uint16_t status = comm::kOk; ///< of the exchange
        /// The reply's number, 0 for a text without one; nothing when the query failed or brought no text.
        std::optional<std::int16_t> unit;
    };
    UnitAnswer Comm_GetUnit();                      ///< "U?"
    std::uint16_t Comm_SetUnit(std::int16_t value); ///< "U" value; 0 or the status
    std::uint16_t Comm_SelectFilm(int film);        ///< "D" film; 0 or the status

    struct FilmAnswer {
        std::uint16_t status = comm::kOk; ///< of the exchange, or that which kept it from being sent
        std::optional<FilmRecord> film;   ///< nothing on failure
        std::string failure = {};         ///< "Get Film Error: ...", shown already unless Silent
    };
    /// "A" c "?".
    FilmAnswer Comm_GetFilm(int number, Messages messages = Messages::Blocking);
    /// "A" c fields; 0 or the status.
    std::uint16_t Comm_SetFilm(int number, const FilmRecord& film);

    struct SystemAnswer {
        bool taken = false;               ///< both records
        std::uint16_t status = comm::kOk; ///< of "C?"
    };
    /// "B?" and "C?" into `parameters`, each taken whole or not at all, and only from answers in step.
    SystemAnswer Comm_GetSystem(SystemParameters& parameters);
    struct SystemSent {
        std::uint16_t status = comm::kOk; ///< 0, or that of the record that failed
        bool second = false;              ///< "C" went out, as "B" was accepted
    };
    /// "B" and, only if that was accepted, "C".
    SystemSent Comm_SetSystem(const SystemParameters& parameters);

private:
    class Reading;

    void tell(Messages messages, const std::string& text);

    Link& link_;
    MessageBoxes& boxes_;
    const Clock& clock_;
};

/// Payloads, as plain functions.
std::string filmCommand(int number);             ///< "A" + the character of code number + 48
std::string filmPayload(const FilmRecord& film); ///< fields of a film write, after the character
bool parseFilmReply(const std::string& reply, int number, FilmRecord& film); ///< false when shorter than 9
std::string systemPayloadB(const SystemParameters& parameters); ///< "B ..." whole command, eleven numbers
std::string systemPayloadC(const SystemParameters& parameters); ///< "C ..." whole command, seven numbers
/// Takes a reply to "B?" or "C?" when it holds exactly its eleven or seven words and each begins with a
/// number that no "," follows ("5.0MHz" is 5, "2,5" is none); else false, and `parameters` stays as it was.
bool parseSystemB(const std::string& reply, SystemParameters& parameters);
bool parseSystemC(const std::string& reply, SystemParameters& parameters);

} // namespace drx9
