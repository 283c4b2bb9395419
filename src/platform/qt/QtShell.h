#pragma once

#include "platform/Desktop.h"

namespace drx9 {

class QtShell : public Shell {
public:
    std::string openDocument(const std::string& path) override;
    /// A bare name is looked for in the program's folder first, then where the system looks for programs.
    std::string startProgram(const std::string& program) override;
};

} // namespace drx9
