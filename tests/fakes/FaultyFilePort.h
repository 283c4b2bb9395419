#pragma once

#include "platform/FilePort.h"

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
    void failStep(int n, bool forGood = false);
    /// Fails every step of the kind.
    void failKind(FileStep kind) { failingKind_ = kind; }
    /// The disk takes so many bytes more, then writes and appends fail with "No space left on device".
    void fillAfter(std::uint64_t bytes) { room_ = bytes; }
    /// No more faults; a full disk is freed again.
    void heal();
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
    FileStatus read(const std::string& path, std::string& bytes) const override;
    FileStatus append(const std::string& path, std::string_view bytes) override;
    FileStatus remove(const std::string& path) override;
    FileStatus makeFolder(const std::string& path) override { return inner_.makeFolder(path); }
    [[nodiscard]] std::vector<std::string> list(const std::string& folder) const override {
        return inner_.list(folder);
    }
    std::unique_ptr<OutputFile> create(const std::string& path, const std::string& like,
                                       FileStatus& status) override;
    FileStatus rename(const std::string& from, const std::string& to) override;
    FileStatus flushFolder(const std::string& folder) override;
    [[nodiscard]] std::string currentFolder() const override { return inner_.currentFolder(); }
    [[nodiscard]] std::uint64_t processId() const override { return inner_.processId(); }

private:
    class Output;

    /// Counts the step; not ok when it is to fail.
    FileStatus take(FileStep step) const;

    FilePort& inner_;
    mutable std::vector<FileStep> steps_;
    mutable int stepsToFailure_ = 0; ///< 0: none planned
    bool forGood_ = false;
    std::optional<FileStep> failingKind_;
    std::optional<std::uint64_t> room_;
};

} // namespace drx9
