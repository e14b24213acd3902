// The table of contents of the tool: a command is its row here and a file of its own name.
#include <array>

#include "tools/fmt/cds_command.h"
#include "tools/fmt/check_command.h"
#include "tools/fmt/command.h"
#include "tools/fmt/match_command.h"
#include "tools/fmt/normalize_command.h"

namespace zem::fmt {
namespace {

constexpr std::array kCommands = {
    CommandEntry{"check", "Say everything that is wrong or doubtful",
                 "  zemad_fmt check zemad_logfile.fmt --cds zemad_logfile.cds", make_check_command},
    CommandEntry{"cds", "Write the class file that a format file generates",
                 "  zemad_fmt cds zemad_logfile.fmt -o zemad_logfile.cds", make_cds_command},
    CommandEntry{"normalize", "Write a format file as the engine writes it",
                 "  zemad_fmt normalize site.fmt -o site.fmt", make_normalize_command},
    CommandEntry{"match", "Show what becomes of each message of a log",
                 "  zemad_fmt match zemad_logfile.fmt --cds zemad_logfile.cds /var/log/syslog\n"
                 "  zemad_fmt match zemad_logfile.fmt --stats --unmatched rest.log /var/log/syslog",
                 make_match_command},
};

}  // namespace

std::span<const CommandEntry> commands() { return kCommands; }

}  // namespace zem::fmt
