#pragma once

#include <QtGlobal>

#include <gtest/gtest.h>

namespace drx9 {

/// A critical message of the program (qCritical) fails the test in which it comes. A test in which one must
/// come holds an Expected.
class CriticalMessages {
public:
    /// From now on, for the whole test program.
    static void failTests() { previous_ = qInstallMessageHandler(handle); }

    class Expected {
    public:
        Expected() { expected_ = this; }
        ~Expected() { expected_ = nullptr; }
        Expected(const Expected&) = delete;
        Expected& operator=(const Expected&) = delete;
        [[nodiscard]] int count() const { return count_; }

    private:
        friend class CriticalMessages;
        int count_ = 0;
    };

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text) {
        if (type == QtCriticalMsg && expected_ != nullptr) {
            ++expected_->count_;
            return;
        }
        if (type == QtCriticalMsg) {
            ADD_FAILURE() << text.toStdString();
        }
        previous_(type, context, text);
    }

    inline static QtMessageHandler previous_ = nullptr;
    inline static Expected* expected_ = nullptr;
};

} // namespace drx9
