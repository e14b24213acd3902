#include "tools/fmt/graph_command.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "adapters/logfile/common/FormatSpec.h"
#include "adapters/logfile/common/LogDriver.h"
#include "tools/fmt/format_file.h"
#include "tools/fmt/message_reader.h"
#include "util/text.h"

namespace zem::fmt {
namespace {

struct Node {
  std::string name;
  std::size_t tried;  ///< 1: the first that a message is tried on
  long uses = 0;
  std::vector<std::size_t> children;  ///< places in the file
};

/// All FORMATs by their place in the file, and those that follow none.
struct Forest {
  std::vector<Node> nodes;
  std::vector<std::size_t> roots;
  bool has_uses = false;
};

Forest forest_of(const std::vector<FormatSpec*>& formats) {
  Forest forest;
  std::map<const MapSpec*, std::size_t> places;
  for (std::size_t i = 0; i < formats.size(); ++i) {
    forest.nodes.push_back({formats[i]->name(), formats.size() - i, 0, {}});
    places[formats[i]] = i;
    const auto parent = places.find(formats[i]->parent());
    if (parent == places.end()) {
      forest.roots.push_back(i);
    } else {
      forest.nodes[parent->second].children.push_back(i);
    }
  }
  return forest;
}

/// Draws the trees, one line a FORMAT, with its turn and, for logs, how often it matched:
///
///   Logfile_Base            #97           12
///   └── Logfile_Program     #96            3
class TreeText {
 public:
  TreeText(const Forest& forest, const Painter& paint) : forest_(forest), paint_(paint) {
    for (const std::size_t root : forest.roots) measure(root, 0);
  }

  [[nodiscard]] std::string text() {
    for (const std::size_t root : forest_.roots) draw(root, "", "", 0);
    return text_;
  }

 private:
  static constexpr std::size_t kIndent = 4;

  void measure(std::size_t place, std::size_t indent) {
    const Node& node = forest_.nodes[place];
    width_ = std::max(width_, indent + node.name.size());
    for (const std::size_t child : node.children) measure(child, indent + kIndent);
  }

  void draw(std::size_t place, const std::string& branch, const std::string& below,
            std::size_t indent) {
    const Node& node = forest_.nodes[place];
    const bool is_unused = forest_.has_uses && node.uses == 0;
    text_ +=
        paint_(Color::kDim, branch) + paint_(is_unused ? Color::kRed : Color::kGreen, node.name);
    text_.append(width_ - indent - node.name.size(), ' ');
    text_ += util::format_text("  #%-4zu", node.tried);
    if (forest_.has_uses) text_ += util::format_text(" %10ld", node.uses);
    while (text_.ends_with(' ')) text_.pop_back();
    text_ += "\n";
    for (std::size_t i = 0; i < node.children.size(); ++i) {
      const bool is_last = i + 1 == node.children.size();
      draw(node.children[i], below + (is_last ? "└── " : "├── "),
           below + (is_last ? "    " : "│   "), indent + kIndent);
    }
  }

  const Forest& forest_;
  const Painter& paint_;
  std::size_t width_ = 0;
  std::string text_;
};

/// A text between double quotes, as Graphviz reads it.
std::string dot_text(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;
  }
  return quoted + '"';
}

std::string dot_of(const Forest& forest) {
  std::string text = "digraph formats {\n  rankdir=LR;\n  node [shape=box];\n";
  for (std::size_t i = 0; i < forest.nodes.size(); ++i) {
    const Node& node = forest.nodes[i];
    std::string label = node.name + " #" + std::to_string(node.tried);
    if (forest.has_uses) label += ", " + std::to_string(node.uses);
    text += util::format_text("  f%zu [label=%s];\n", i, dot_text(label).c_str());
    for (const std::size_t child : node.children) {
      text += util::format_text("  f%zu -> f%zu;\n", i, child);
    }
  }
  return text + "}\n";
}

class GraphCommand final : public Command {
 public:
  void declare(CLI::App& app) override {
    app.add_option("FMT", format_path_, "The format file")->required()->type_name("");
    app.add_option("LOG", log_paths_,
                   "Logs (\"-\": standard input): how often was each FORMAT used?")
        ->type_name("");
    app.add_flag("--dot", wants_dot_, "For Graphviz");
  }

  ExitStatus run(Console& console) override {
    LogDriver set;
    load_formats(format_path_, set);
    Forest forest = forest_of(set.specs());
    if (!log_paths_.empty()) count_uses(set, forest);
    console.out.write(wants_dot_ ? dot_of(forest) : TreeText(forest, console.paint).text());
    return ExitStatus::kDone;
  }

 private:
  void count_uses(LogDriver& set, Forest& forest) const {
    forest.has_uses = true;
    order_formats(set);
    MessageReader reader(log_paths_);
    for (Message message{}; reader.next(message);) {
      int index = -1;
      if (set.bind(message.text, index) == nullptr) continue;
      ++forest.nodes[static_cast<std::size_t>(index)].uses;
    }
  }

  std::string format_path_;
  std::vector<std::string> log_paths_;
  bool wants_dot_ = false;
};

}  // namespace

std::unique_ptr<Command> make_graph_command() { return std::make_unique<GraphCommand>(); }

}  // namespace zem::fmt
