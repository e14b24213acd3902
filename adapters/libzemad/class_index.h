/// Which classes an event may belong to, by the value of its `_event_id`. Class files are mostly
/// made of classes that want one id and nobody else's,
///
///   CLASS Su_Failed SELECT 1: ATTR(=,"_event_id"), VALUE(=,"17"); 2: ATTR(=,"user"); ...
///
/// and such a class turns every other event away without a word. The index leaves those out that
/// would do so, and names the others in file order: with 10,000 classes there are one or two to
/// try. A class of any other shape is named for every event, at its place. Whoever listens to the
/// classes being tried must try them all.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "adapters/libzemad/configuration.h"
#include "util/slist.h"

namespace zem::kernel {

/// The id that the class wants, nothing when it is of another shape.
[[nodiscard]] std::optional<std::string_view> wanted_id(const Config* config,
                                                        const SL_List* constants);

class ClassIndex {
 public:
  /// Behind every position.
  static constexpr std::uint32_t kEnd = UINT32_MAX;
  static constexpr std::string_view kEventId = "_event_id";

  /// The positions to try for one event, in file order.
  class Candidates {
   public:
    /// The next one, or kEnd.
    [[nodiscard]] std::uint32_t next();

   private:
    friend class ClassIndex;
    Candidates(const ClassIndex& index, std::uint32_t keyed) : index_(&index), keyed_(keyed) {}

    const ClassIndex* index_;
    std::uint32_t keyed_;    ///< the class that wants this id and was named last, or is to be named
    bool is_named_ = false;  ///< it was: who stops there has not looked for the one behind it
    std::size_t other_ = 0;  ///< how many of the others have been named
  };

  /// `classes` are Config records, `constants` the AttributeEntry records that they name. Both must
  /// outlive the index and stay as they are.
  ClassIndex(const SL_List* classes, const SL_List* constants);

  /// For an event whose first attribute `_event_id` has the value `id`.
  [[nodiscard]] Candidates of(std::string_view id) const { return {*this, first_with(id)}; }
  /// For an event without an id, or with one that is no text.
  [[nodiscard]] Candidates without_id() const { return {*this, kEnd}; }

 private:
  [[nodiscard]] std::uint32_t first_with(std::string_view id) const;
  std::uint32_t& first_slot(std::string_view id);

  /// By id, for ids that are small numbers: those of a generated file are its line numbers.
  std::vector<std::uint32_t> first_by_number_;
  /// The same for any other id; views into the constants.
  std::unordered_map<std::string_view, std::uint32_t> first_by_text_;
  std::vector<std::uint32_t> next_;    ///< by position: the next class that wants the same id
  std::vector<std::uint32_t> others_;  ///< the classes of another shape
};

}  // namespace zem::kernel
