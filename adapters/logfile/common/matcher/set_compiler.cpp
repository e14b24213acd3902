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

#include "adapters/logfile/common/FormatSpec.h"
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
  std::size_t pending;  ///< branches that may wait meanwhile
};

Operation operation_of(const KeyVariable& variable) {
  switch (variable.kind) {
    case ComponentKind::kWord:
      return variable.width == 0 && variable.cut.empty() ? Operation::kWord : Operation::kCutWord;
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
    sort_keys();
  }

  Program compile() {
    put(std::uint32_t{0});  // stands where the target of a branch would: the whole set's
    if (keys_.empty()) {
      write_dead_end();
    } else {
      waiting_.push_back({0, keys_.size(), 0, 0, 0});
    }
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
    elements_.reserve(elements_max(specs));
    keys_.reserve(specs.size());
    Position position = 0;
    for (const FormatSpec* spec : specs) {
      const std::size_t begin = elements_.size();
      if (append_key(*spec, table_, elements_)) {
        keys_.push_back({begin, elements_.size(), position});
        program_.values_max = std::max(program_.values_max, variables_from(begin));
      }
      ++position;
    }
  }

  /// Keys that agree so far are parted by their next element into those with a smaller one, the
  /// same one and a greater one than some key in their midst; only those with the same go on to the
  /// next. A comparison of whole keys would go over their common beginnings again and again
  /// (BM_Start).
  void sort_keys() {
    struct Part {
      std::span<Key> keys;
      std::size_t depth;  ///< up to where they agree
    };
    std::vector<Part> parts{{keys_, 0}};
    while (!parts.empty()) {
      const auto [keys, depth] = parts.back();
      parts.pop_back();
      if (keys.size() < 2) continue;
      const auto rank = [this, at = depth](const Key& key) { return rank_at(key, at); };
      const std::size_t pivot = rank(keys[keys.size() / 2]);
      const auto same = std::partition(keys.begin(), keys.end(),
                                       [&](const Key& key) { return rank(key) < pivot; });
      const auto greater =
          std::partition(same, keys.end(), [&](const Key& key) { return rank(key) == pivot; });
      parts.push_back({{keys.begin(), same}, depth});
      if (pivot != 0) parts.push_back({{same, greater}, depth + 1});
      parts.push_back({{greater, keys.end()}, depth});
    }
  }

  /// Grows with the element at `depth`; 0 for a key that ends there.
  [[nodiscard]] std::size_t rank_at(const Key& key, std::size_t depth) const {
    return depth == key.end - key.begin ? 0 : std::size_t{elements_[key.begin + depth]} + 1;
  }

  /// A component gives no more elements than its piece has characters, or one.
  static std::size_t elements_max(std::span<FormatSpec* const> specs) {
    std::size_t elements = 0;
    for (const FormatSpec* spec : specs) {
      for (const FormatComponent* component : spec->components()) {
        elements += std::max<std::size_t>(component->length(), 1);
      }
    }
    return elements;
  }

  [[nodiscard]] std::size_t variables_from(std::size_t begin) const {
    const auto is_variable = [](Element e) { return e >= kFirstVariable; };
    return static_cast<std::size_t>(
        std::ranges::count_if(std::span(elements_).subspan(begin), is_variable));
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

  /// For a set that no message can match.
  void write_dead_end() {
    store(0, static_cast<std::uint32_t>(program_.code.size()));
    write_run({});
    put(Operation::kEnd);
    put(kNoPosition);
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
      write_parting(end, {parting, range.last, depth, 0, range.pending});
    }
  }

  /// Pieces of text and the variables between them, a piece at either end.
  void write_run(std::span<const Element> run) {
    for (run = run.subspan(write_text(run)); !run.empty(); run = run.subspan(write_text(run))) {
      if (run.front() < kFirstVariable) {
        put(Operation::kMore);
        continue;
      }
      write_variable(run.front() - kFirstVariable);
      run = run.subspan(1);
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

  void write_variable(std::uint32_t number) {
    const Operation operation = operation_of(table_.variables()[number]);
    put(operation);
    if (operation != Operation::kWord) put(number);
  }

  /// The keys of `range` go on, and not all with the same element at its depth.
  void write_parting(Position end, const Range& range) {
    std::vector<Range> groups;
    for (std::size_t first = range.first; first < range.last;) {
      const std::size_t last = end_of_group(first, range.last, range.depth);
      groups.push_back({first, last, range.depth, 0, range.pending});
      first = last;
    }
    const auto variables = std::ranges::find_if(groups, [&](const Range& group) {
      return element(group.first, group.depth) >= kFirstVariable;
    });
    std::sort(variables, groups.end(), [this](const Range& a, const Range& b) {
      return best_of(a.first, a.last) < best_of(b.first, b.last);
    });
    if (end != kNoPosition || variables != groups.end()) {
      write_branches(end, {variables, groups.end()});
    } else {
      put(Operation::kChoice);
    }
    write_choice({groups.begin(), variables});
    const std::size_t pending = range.pending + static_cast<std::size_t>(groups.end() - variables);
    program_.pending_max = std::max(program_.pending_max, pending);
    for (Range& group : groups) group.pending = pending;
    waiting_.insert(waiting_.end(), groups.rbegin(), groups.rend());
  }

  void write_branches(Position end, std::span<Range> groups) {
    put(Operation::kParting);
    put(PartingHead{end, static_cast<std::uint32_t>(groups.size())});
    for (Range& group : groups) {
      put(best_of(group.first, group.last));
      put_target(group);
    }
  }

  void write_choice(std::span<Range> groups) {
    if (groups.empty()) return put(ChoiceHead{0, 0});
    const Element lowest = element(groups.front().first, groups.front().depth);
    const Element highest = element(groups.back().first, groups.back().depth);
    std::vector<std::uint8_t> numbers(highest - lowest + 1, kNoBranch);
    std::uint8_t number = 0;
    for (Range& group : groups) numbers[element(group.first, group.depth++) - lowest] = number++;
    put(ChoiceHead{static_cast<std::uint8_t>(lowest), static_cast<std::uint8_t>(numbers.size())});
    program_.code.insert(program_.code.end(), numbers.begin(), numbers.end());
    for (Range& group : groups) put_target(group);
  }

  void put_target(Range& group) {
    group.patch = program_.code.size();
    put(std::uint32_t{0});
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
