#pragma once

#include <string>

#include "completion/Scripts.h"
#include "completion/Vocabulary.h"

namespace Korvel::Ctl {

/// A shell that completes the command line.
struct Shell {
    const char* name;
    const char* path;  ///< where its script is installed, below the folder for data
    std::string (*makeScript)(const Reference::Vocabulary& vocabulary);
};

inline constexpr Shell Shells[] = {
    {"bash", "bash-completion/completions/korvelctl", Reference::BashCompletion},
    {"zsh", "zsh/site-functions/_korvelctl", Reference::ZshCompletion},
    {"fish", "fish/vendor_completions.d/korvelctl.fish", Reference::FishCompletion},
    {"powershell", "korvelctl/korvelctl.ps1", Reference::PowerShellCompletion},
};

}  // namespace Korvel::Ctl
