// The table of contents of the tool: a command is its row here and a file of its own name.
#include <array>

#include "tools/fmt/cds_command.h"
#include "tools/fmt/check_command.h"
#include "tools/fmt/command.h"
#include "tools/fmt/explain_command.h"
#include "tools/fmt/graph_command.h"
#include "tools/fmt/match_command.h"
#include "tools/fmt/normalize_command.h"
#include "tools/fmt/test_command.h"

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
    CommandEntry{"explain", "Say why a message becomes what it becomes",
                 "  zemad_fmt explain zemad_logfile.fmt --cds zemad_logfile.cds \\\n"
                 "    \"Nov 15 09:47:37 hostA sshd[123]: Failed password for root\"",
                 make_explain_command},
    CommandEntry{"test", "Check that messages become what a test file says",
                 "  zemad_fmt test zemad_logfile.fmt --cds zemad_logfile.cds zemad_logfile.test",
                 make_test_command},
    CommandEntry{"graph", "Show which FORMAT follows which, and in what order they are tried",
                 "  zemad_fmt graph zemad_logfile.fmt /var/log/syslog\n"
                 "  zemad_fmt graph zemad_logfile.fmt --dot | dot -Tsvg -o formats.svg",
                 make_graph_command},
};

}  // namespace

std::span<const CommandEntry> commands() { return kCommands; }

}  // namespace zem::fmt
