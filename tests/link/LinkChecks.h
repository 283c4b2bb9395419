#pragma once

#include "link/Commands.h"
#include "link/Crc.h"
#include "link/FrameParser.h"

#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>

namespace drx9 {

/// Ends the process: what a fuzzer takes for a finding, and a test for a failure.
inline void mustHold(bool condition) {
    if (!condition) {
        std::abort();
    }
}

/// Any bytes: the parser stays within its bounds, and the next good reply is understood.
inline void checkReplyStream(std::string_view bytes) {
    FrameParser parser;
    for (const char c : bytes) {
        const auto reply = parser.push(static_cast<std::uint8_t>(c));
        mustHold(parser.Text().size() <= FrameParser::kTextLimit && parser.Bytes().size() <= 224);
        mustHold(parser.Index() >= 0 &&
                 (parser.Index() < 2 || static_cast<std::size_t>(parser.Index()) < parser.Bytes().size()));
        mustHold(!reply || !reply->crcOk || reply->data.size() < parser.Text().size());
    }
    const std::string next = replyPacket('A', "-1.25");
    for (std::size_t i = 0; i + 1 < next.size(); ++i) {
        mustHold(!parser.push(static_cast<std::uint8_t>(next[i])));
    }
    const auto reply = parser.push(static_cast<std::uint8_t>(next.back()));
    mustHold(reply && reply->crcOk && reply->statusLetter == 'A' && reply->data == "-1.25");
}

/// Beyond these a number with 15 digits may leave the range of a double on its way back.
inline bool within(double value) {
    const double size = std::abs(value);
    return size == 0 || (size > 1e-300 && size < 1e300);
}

/// Any reply to "A" c "?", "B?" and "C?": what was taken of it can be sent, and what was sent reads back the
/// same.
inline void checkReplies(std::string_view bytes) {
    const std::string reply(bytes);
    FilmRecord film;
    if (parseFilmReply(reply, 7, film)) {
        mustHold(film.FilmName.size() == 8);
        const std::string sent = filmPayload(film);
        FilmRecord back;
        mustHold(parseFilmReply(sent, 7, back));
        mustHold(!within(film.TimeSet) || !within(film.SensorAvg) || filmPayload(back) == sent);
    }
    SystemParameters parameters;
    parseSystemB(reply, parameters);
    parseSystemC(reply, parameters);
    for (const double value : parameters.Tooling) {
        mustHold(std::isfinite(value));
    }
    SystemParameters back;
    const std::string sentB = systemPayloadB(parameters);
    const std::string sentC = systemPayloadC(parameters);
    const bool readB = parseSystemB(sentB.substr(1), back);
    const bool readC = parseSystemC(sentC.substr(1), back);
    mustHold(!readB || systemPayloadB(back) == sentB);
    mustHold(!readC || systemPayloadC(back) == sentC);
}

} // namespace drx9
