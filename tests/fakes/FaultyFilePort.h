#pragma once

#include "platform/FilePort.h"

#include <algorithm>

namespace drx9 {

enum class FileStep { Create, Write, Flush, Close, Rename, FlushFolder, Remove, Append, Read };

/// Passes everything on to another port, counts the steps and fails those that the test names. A failing
/// write leaves half of its bytes behind, as a disk that fills up does; a failing close closes; a failing
/// append, rename, remove or create does nothing.
class FaultyFilePort : public FilePort {
public:
    explicit FaultyFilePort(FilePort& inner)
        : inner_(inner) {}

    /// Fails the n-th step from now, counted from 1; with `forGood` every step after it, too.
    void failStep(int n, bool forGood = false) {
        stepsToFailure_ = n;
        forGood_ = forGood;
    }
    /// Fails every step of the kind.
    void failKind(FileStep kind) { failingKind_ = kind; }
    /// The disk takes so many bytes more, then writes and appends fail with "No space left on device".
    void fillAfter(std::uint64_t bytes) { room_ = bytes; }
    /// No more faults; a full disk is freed again.
    void heal() {
        failStep(0);
        failingKind_.reset();
        room_.reset();
    }
    /// Steps asked for since construction, failed ones included, in order.
    [[nodiscard]] const std::vector<FileStep>& steps() const { return steps_; }

    [[nodiscard]] bool exists(const std::string& path) const override { return inner_.exists(path); }
    [[nodiscard]] std::optional<std::uint64_t> size(const std::string& path) const override {
        return inner_.size(path);
    }
    [[nodiscard]] std::optional<FileIdentity> identity(const std::string& path) const override {
        return inner_.identity(path);
    }
    [[nodiscard]] bool writable(const std::string& path) const override { return inner_.writable(path); }
    [[nodiscard]] bool folderWritable(const std::string& folder) const override {
        return inner_.folderWritable(folder);
    }
    [[nodiscard]] std::string resolveLinks(const std::string& path) const override {
        return inner_.resolveLinks(path);
    }
    std::unique_ptr<InputFile> open(const std::string& path, FileStatus& status) const override {
        auto file = inner_.open(path, status);
        return file ? std::make_unique<Input>(*this, std::move(file)) : nullptr;
    }
    FileStatus read(const std::string& path, std::string& bytes) const override {
        return step(FileStep::Read, [&] { return inner_.read(path, bytes); });
    }
    FileStatus append(const std::string& path, std::string_view bytes) override {
        return step(FileStep::Append, [&] {
            const bool fits = !room_ || bytes.size() <= *room_;
            const FileStatus status = fits ? inner_.append(path, bytes) : full();
            room_ = room_ && status.ok() ? std::optional(*room_ - bytes.size()) : room_;
            return status;
        });
    }
    FileStatus remove(const std::string& path) override {
        return step(FileStep::Remove, [&] { return inner_.remove(path); });
    }
    FileStatus makeFolder(const std::string& path) override { return inner_.makeFolder(path); }
    [[nodiscard]] std::vector<std::string> list(const std::string& folder) const override {
        return inner_.list(folder);
    }
    std::unique_ptr<OutputFile> create(const std::string& path, const std::string& like,
                                       FileStatus& status) override {
        std::unique_ptr<OutputFile> file;
        status = step(FileStep::Create, [&] {
            FileStatus inner;
            file = inner_.create(path, like, inner);
            return inner;
        });
        return file ? std::make_unique<Output>(*this, std::move(file)) : nullptr;
    }
    FileStatus rename(const std::string& from, const std::string& to) override {
        return step(FileStep::Rename, [&] { return inner_.rename(from, to); });
    }
    FileStatus flushFolder(const std::string& folder) override {
        return step(FileStep::FlushFolder, [&] { return inner_.flushFolder(folder); });
    }
    [[nodiscard]] std::string currentFolder() const override { return inner_.currentFolder(); }
    [[nodiscard]] std::uint64_t processId() const override { return inner_.processId(); }

private:
    struct Input : InputFile {
        Input(const FaultyFilePort& port, std::unique_ptr<InputFile> inner)
            : port_(port)
            , inner_(std::move(inner)) {}

        FileStatus read(std::uint64_t at, std::span<char> bytes) override {
            return port_.step(FileStep::Read, [&] { return inner_->read(at, bytes); });
        }
        [[nodiscard]] std::optional<FileIdentity> identity() const override { return inner_->identity(); }

        const FaultyFilePort& port_;
        std::unique_ptr<InputFile> inner_;
    };
    struct Output : OutputFile {
        Output(FaultyFilePort& port, std::unique_ptr<OutputFile> inner)
            : port_(port)
            , inner_(std::move(inner)) {}

        FileStatus write(std::string_view bytes) override {
            if (FileStatus status = port_.take(FileStep::Write); !status.ok()) {
                (void)inner_->write(bytes.substr(0, bytes.size() / 2));
                return status;
            }
            const std::string_view fits = bytes.substr(0, port_.room_.value_or(bytes.size()));
            port_.room_ = port_.room_ ? std::optional(*port_.room_ - fits.size()) : std::nullopt;
            const FileStatus status = inner_->write(fits);
            return fits.size() == bytes.size() || !status.ok() ? status : full();
        }
        FileStatus flush() override {
            return port_.step(FileStep::Flush, [this] { return inner_->flush(); });
        }
        FileStatus close() override {
            const FileStatus status = port_.take(FileStep::Close);
            const FileStatus closed = inner_->close();
            return status.ok() ? closed : status;
        }

        FaultyFilePort& port_;
        std::unique_ptr<OutputFile> inner_;
    };

    static FileStatus full() { return FileStatus::failure("No space left on device"); }
    /// Counts the step; not ok when it is to fail.
    FileStatus take(FileStep step) const {
        steps_.push_back(step);
        const bool planned = stepsToFailure_ == 1;
        stepsToFailure_ -= stepsToFailure_ > 1 || (planned && !forGood_) ? 1 : 0;
        return planned || failingKind_ == step ? FileStatus::failure("Input/output error") : FileStatus();
    }
    template<class Action>
    FileStatus step(FileStep kind, Action action) const {
        const FileStatus status = take(kind);
        return status.ok() ? action() : status;
    }

    FilePort& inner_;
    mutable std::vector<FileStep> steps_;
    mutable int stepsToFailure_ = 0; ///< 0: none planned
    bool forGood_ = false;
    std::optional<FileStep> failingKind_;
    std::optional<std::uint64_t> room_;
};

} // namespace drx9
