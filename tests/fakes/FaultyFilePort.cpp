#include "fakes/FaultyFilePort.h"

#include <algorithm>

namespace drx9 {

class FaultyFilePort::Output : public OutputFile {
public:
    Output(FaultyFilePort& port, std::unique_ptr<OutputFile> inner)
        : port_(port)
        , inner_(std::move(inner)) {}

    FileStatus write(std::string_view bytes) override {
        if (FileStatus status = port_.take(FileStep::Write); !status.ok()) {
            (void)inner_->write(bytes.substr(0, bytes.size() / 2));
            return status;
        }
        if (!port_.room_) {
            return inner_->write(bytes);
        }
        const auto fits = static_cast<std::size_t>(std::min<std::uint64_t>(*port_.room_, bytes.size()));
        *port_.room_ -= fits;
        const FileStatus status = inner_->write(bytes.substr(0, fits));
        return fits == bytes.size() || !status.ok() ? status : FileStatus::failure("No space left on device");
    }
    FileStatus flush() override {
        const FileStatus status = port_.take(FileStep::Flush);
        return status.ok() ? inner_->flush() : status;
    }
    FileStatus close() override {
        const FileStatus status = port_.take(FileStep::Close);
        const FileStatus closed = inner_->close();
        return status.ok() ? closed : status;
    }

private:
    FaultyFilePort& port_;
    std::unique_ptr<OutputFile> inner_;
};

void FaultyFilePort::failStep(int n, bool forGood) {
    stepsToFailure_ = n;
    forGood_ = forGood;
}

void FaultyFilePort::heal() {
    failStep(0);
    failingKind_.reset();
    room_.reset();
}

FileStatus FaultyFilePort::take(FileStep step) const {
    steps_.push_back(step);
    bool fails = failingKind_ == step;
    if (stepsToFailure_ == 1) {
        fails = true;
        stepsToFailure_ = forGood_ ? 1 : 0;
    } else if (stepsToFailure_ > 1) {
        --stepsToFailure_;
    }
    return fails ? FileStatus::failure("Input/output error") : FileStatus();
}

FileStatus FaultyFilePort::read(const std::string& path, std::string& bytes) const {
    const FileStatus status = take(FileStep::Read);
    return status.ok() ? inner_.read(path, bytes) : status;
}

FileStatus FaultyFilePort::append(const std::string& path, std::string_view bytes) {
    FileStatus status = take(FileStep::Append);
    if (!status.ok()) {
        return status;
    }
    if (room_ && *room_ < bytes.size()) {
        return FileStatus::failure("No space left on device");
    }
    status = inner_.append(path, bytes);
    if (room_ && status.ok()) {
        *room_ -= bytes.size();
    }
    return status;
}

FileStatus FaultyFilePort::remove(const std::string& path) {
    const FileStatus status = take(FileStep::Remove);
    return status.ok() ? inner_.remove(path) : status;
}

std::unique_ptr<OutputFile> FaultyFilePort::create(const std::string& path, const std::string& like,
                                                   FileStatus& status) {
    status = take(FileStep::Create);
    auto file = status.ok() ? inner_.create(path, like, status) : nullptr;
    return file ? std::make_unique<Output>(*this, std::move(file)) : nullptr;
}

FileStatus FaultyFilePort::rename(const std::string& from, const std::string& to) {
    const FileStatus status = take(FileStep::Rename);
    return status.ok() ? inner_.rename(from, to) : status;
}

FileStatus FaultyFilePort::flushFolder(const std::string& folder) {
    const FileStatus status = take(FileStep::FlushFolder);
    return status.ok() ? inner_.flushFolder(folder) : status;
}

} // namespace drx9
