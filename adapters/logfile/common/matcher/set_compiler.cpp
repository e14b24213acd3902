// The keys of all FORMATs (format_key.h) are sorted, so that those with a common beginning stand
// side by side, and the trie is written straight from the sorted keys without ever being built: a
// range of keys that agree up to some depth gives the steps that they have in common, and then a
// choice, with a smaller range behind each branch.
//
//     keys from depth 0    "a b%s"  "a bcd"  "a x"
//     their steps          text "a "; choice: 'b' -> keys 0 to 1 from depth 3
//                                                'x' -> key 2 from depth 3
//
// The ranges that wait are kept on a list of our own: FORMATs can share beginnings as deep as the
// file is long.
#include "adapters/logfile/common/matcher/set_compiler.h"

#include <algorithm>

#include "adapters/logfile/common/matcher/byte_block.h"
#include "adapters/logfile/common/matcher/format_key.h"

namespace zem::format {

namespace {

constexpr std::size_t kTextBytesMax = 255;

/// One FORMAT: where its elements begin and end, and its place in the set.
struct Key {
  std::size_t begin;
  std::size_t end;
  Position position;
};

/// Sorted keys `first` to `last` (exclusive) that agree up to `depth`; the address of their steps
/// is wanted at `patch`.
struct Range {
  std::size_t first;
  std::size_t last;
  std::size_t depth;
  std::size_t patch;
};

Operation operation_of(ComponentKind kind) {
  switch (kind) {
    case ComponentKind::kWord:
      return Operation::kWord;
    case ComponentKind::kTime:
      return Operation::kTime;
    case ComponentKind::kStar:
      return Operation::kStar;
    case ComponentKind::kPlus:
      return Operation::kPlus;
    default:
      return Operation::kPresent;
  }
}

class SetCompiler {
 public:
  explicit SetCompiler(std::span<FormatSpec* const> specs) {
    collect(specs);
    std::ranges::sort(keys_, [this](const Key& a, const Key& b) {
      return std::ranges::lexicographical_compare(elements(a), elements(b));
    });
  }

  Program compile() {
    if (keys_.empty()) return {};
    program_.first = best_of(0, keys_.size());
    put(std::uint32_t{0});  // stands where the target of a branch would: the whole set's
    waiting_.push_back({0, keys_.size(), 0, 0});
    while (!waiting_.empty()) {
      const Range range = waiting_.back();
      waiting_.pop_back();
      write(range);
    }
    program_.start = load<std::uint32_t>(program_.code.data());
    write_variables();
    program_.code.resize(program_.code.size() + kBlockBytes);
    program_.code.shrink_to_fit();
    return std::move(program_);
  }

 private:
  void collect(std::span<FormatSpec* const> specs) {
    Position position = 0;
    for (const FormatSpec* spec : specs) {
      const std::size_t begin = elements_.size();
      if (append_key(*spec, table_, elements_))
        keys_.push_back({begin, elements_.size(), position});
      ++position;
    }
  }

  [[nodiscard]] std::span<const Element> elements(const Key& key) const {
    return std::span(elements_).subspan(key.begin, key.end - key.begin);
  }
  [[nodiscard]] Element element(std::size_t key, std::size_t depth) const {
    return elements_[keys_[key].begin + depth];
  }
  [[nodiscard]] std::size_t length(std::size_t key) const {
    return keys_[key].end - keys_[key].begin;
  }
  [[nodiscard]] Position best_of(std::size_t first, std::size_t last) const {
    const auto keys = std::span(keys_).subspan(first, last - first);
    return std::ranges::min(keys, {}, &Key::position).position;
  }

  /// Up to where all keys of a range agree: as far as its first and its last do.
  [[nodiscard]] std::size_t common_depth(const Range& range) const {
    const std::span<const Element> a = elements(keys_[range.first]).subspan(range.depth);
    const std::span<const Element> b = elements(keys_[range.last - 1]).subspan(range.depth);
    return range.depth + static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
  }

  /// The end of the keys from `first` on that have the same element at `depth` as it.
  [[nodiscard]] std::size_t end_of_group(std::size_t first, std::size_t last,
                                         std::size_t depth) const {
    std::size_t end = first + 1;
    while (end < last && element(end, depth) == element(first, depth)) ++end;
    return end;
  }

  void write(const Range& range) {
    store(range.patch, static_cast<std::uint32_t>(program_.code.size()));
    const std::size_t depth = common_depth(range);
    write_run(elements(keys_[range.first]).subspan(range.depth, depth - range.depth));
    std::size_t parting = range.first;  // keys before it end here
    while (parting < range.last && length(parting) == depth) ++parting;
    const Position end = parting > range.first ? best_of(range.first, parting) : kNoPosition;
    if (parting == range.last) {
      put(Operation::kEnd);
      put(end);
    } else {
      write_choice(end, {parting, range.last, depth, 0});
    }
  }

  void write_run(std::span<const Element> run) {
    while (!run.empty()) {
      const bool is_variable = run.front() >= kFirstVariable;
      if (is_variable) {
        const std::uint32_t number = run.front() - kFirstVariable;
        put(operation_of(table_.variables()[number].kind));
        put(number);
        run = run.subspan(1);
      } else {
        put(Operation::kText);
      }
      run = run.subspan(write_text(run));
    }
  }

  /// Writes the text at the head of `run`, as much of it as one piece holds; returns its length.
  std::size_t write_text(std::span<const Element> run) {
    const auto end = std::ranges::find_if(run, [](Element e) { return e >= kFirstVariable; });
    const auto length = std::min(static_cast<std::size_t>(end - run.begin()), kTextBytesMax);
    put(static_cast<std::uint8_t>(length));
    for (const Element byte : run.first(length)) put(static_cast<char>(byte));
    return length;
  }

  /// The keys of `range` go on, and not all with the same element at its depth.
  void write_choice(Position end, const Range& range) {
    std::vector<Range> groups;
    for (std::size_t first = range.first; first < range.last;) {
      const std::size_t last = end_of_group(first, range.last, range.depth);
      groups.push_back({first, last, range.depth, 0});
      first = last;
    }
    const auto variables = std::ranges::find_if(groups, [&](const Range& group) {
      return element(group.first, group.depth) >= kFirstVariable;
    });
    std::sort(variables, groups.end(), [this](const Range& a, const Range& b) {
      return best_of(a.first, a.last) < best_of(b.first, b.last);
    });
    const auto texts = static_cast<std::size_t>(variables - groups.begin());
    put(Operation::kChoice);
    put(ChoiceHead{end, static_cast<std::uint32_t>(texts),
                   static_cast<std::uint32_t>(groups.size() - texts)});
    for (std::size_t i = 0; i < texts; ++i) {
      put(static_cast<char>(element(groups[i].first, groups[i].depth)));
      ++groups[i].depth;
    }
    write_branches(groups);
  }

  void write_branches(std::span<Range> groups) {
    for (Range& group : groups) {
      put(best_of(group.first, group.last));
      group.patch = program_.code.size();
      put(std::uint32_t{0});
    }
    waiting_.insert(waiting_.end(), groups.rbegin(), groups.rend());
  }

  void write_variables() {
    for (const KeyVariable& variable : table_.variables()) {
      program_.variables.push_back({static_cast<std::uint32_t>(variable.width),
                                    static_cast<std::uint32_t>(program_.code.size()),
                                    static_cast<std::uint32_t>(variable.cut.size())});
      program_.code.insert(program_.code.end(), variable.cut.begin(), variable.cut.end());
    }
  }

  template <class T>
  void put(const T& value) {
    program_.code.resize(program_.code.size() + sizeof value);
    store(program_.code.size() - sizeof value, value);
  }
  template <class T>
  void store(std::size_t at, const T& value) {
    std::memcpy(program_.code.data() + at, &value, sizeof value);
  }

  VariableTable table_;
  std::vector<Element> elements_;  ///< of all keys, one after another
  std::vector<Key> keys_;
  std::vector<Range> waiting_;
  Program program_;
};

}  // namespace

Program compile_set(std::span<FormatSpec* const> specs) { return SetCompiler(specs).compile(); }

}  // namespace zem::format
