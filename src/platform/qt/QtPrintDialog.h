#pragma once

#include "platform/Desktop.h"

namespace drx9 {

class QtPrintDialog : public PrintDialog {
public:
    Result printPicture(const std::string& title, std::string_view png) override;
};

} // namespace drx9
