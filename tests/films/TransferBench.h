#pragma once

#include "films/FilmBench.h"

namespace drx9 {

inline constexpr const char* kUpload = "/data/UploadData.mdb";

/// An open library, and an instrument whose films have been read.
struct Transfer : OpenBench {
    explicit Transfer(const std::vector<TestFilm>& rows, int slots = 9, int sensors = 6)
        : OpenBench(rows, nullptr, slots, sensors) {
        exchanges = 0;
        for (int f = 1; f <= slots; ++f) {
            parseFilmReply(held(f), f, films[static_cast<std::size_t>(f)]);
        }
    }
    std::string told() { return library.notice().text; }
    auto boxesOf(const std::string& beginning) {
        return std::count_if(boxes.shown().begin(), boxes.shown().end(),
                             [&](const auto& box) { return box.text.rfind(beginning, 0) == 0; });
    }
    /// The f-th row of the upload is the instrument's film f.
    bool isOwn(std::size_t f) {
        return rows("Film", kUpload)[f - 1].substr(2, 8) == held(static_cast<int>(f)).substr(0, 8);
    }
    /// Answers come after 0.02 s, that of the k-th exchange twice; those of the next ones in that range do
    /// not.
    void answerTwice(int k, double copyAfter, int silentFrom = 0, int silentTo = 0) {
        boxes.allow("Error reading Film number ");
        boxes.allow("Get Film Error: ");
        wire().setAnswerer([this](const std::string& command) { return answer(command); }, 0.02);
        spoilAt = exchanges + k;
        spoil = [=, this](const std::string& command) {
            const int behind = ++spoilAt - 1 - k;
            const std::string reply = soundAnswer(command);
            if (behind == 0) {
                wire().arrive(reply, copyAfter);
            }
            return behind >= silentFrom && behind <= silentTo && behind > 0 ? std::string() : reply;
        };
    }
};

} // namespace drx9
