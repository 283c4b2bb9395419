#pragma once

#include "platform/Desktop.h"

#include <QString>
#include <QStringList>

namespace drx9 {

class QtFileDialogs : public FileDialogs {
public:
    std::string openFile(const FileDialogRequest& request) override;
    std::string saveFile(const FileDialogRequest& request) override;
};

/// "DB Files (*.mdb)|*.mdb|All Files|*.*" as Qt writes its filters: one entry a kind, the patterns in
/// brackets.
QStringList nameFilters(const std::string& filter);

} // namespace drx9
