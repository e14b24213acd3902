/// The built-in functions of FETCH expressions. Each checks its arguments, reports everything that
/// is wrong with them, and makes a new string entry.
#include <arpa/inet.h>

#include <cstdint>
#include <string>
#include <string_view>

#include "adapters/libzemad/entry_view.h"
#include "adapters/libzemad/error.h"
#include "adapters/libzemad/evaluation.h"
#include "util/resolver.h"

namespace {

using zem::kernel::int_of;
using zem::kernel::is_number;
using zem::kernel::is_text;
using zem::kernel::text_of;
using zem::kernel::word_of;
using zem::util::Resolver;

constexpr zem::log::Source kSource{zem::log::kKernel, "evaluation"};
constexpr int kBadArgument = 61;
constexpr int kNoMemory = 99;

bool check(bool holds, const char* complaint) {
  if (!holds) zem::log::fail(kSource, zem::log::kMajor, kBadArgument, complaint);
  return holds;
}

const AttributeEntry* argument(const SL_List* arguments, int index) {
  return static_cast<const AttributeEntry*>(SL_GetPos(arguments, index));
}

AttributeEntry* make_text(std::string_view text) {
  zem::util::HeapText copy(zem::util::duplicate(text));
  if (!copy) {
    zem::log::fail(kSource, zem::log::kMajor, kNoMemory, "Malloc failure");
    return nullptr;
  }
  AttributeEntry* entry = ZEMAD_MakeAttributeEntry(
      ZEMAD_TYPE_STRING, static_cast<std::uint32_t>(text.size() + 1), copy.get());
  if (entry != nullptr) static_cast<void>(copy.release());
  return entry;
}

/// Every fault is reported, not only the first.
bool are_substring_arguments(const AttributeEntry* text, const AttributeEntry* position,
                             const AttributeEntry* length) {
  bool fit = check(text != nullptr, "Substring argument 1 NULL");
  fit &= check(position != nullptr, "Substring argument 2 NULL");
  fit &= check(length != nullptr, "Substring argument 3 NULL");
  fit &= check(text == nullptr || is_text(text), "Substring argument 1 no string");
  fit &= check(position == nullptr || is_number(position), "Substring argument 2 no integer");
  fit &= check(length == nullptr || is_number(length), "Substring argument 3 no integer");
  return fit;
}

std::int64_t number_of(const AttributeEntry& entry) {
  return entry.Type == ZEMAD_TYPE_UINT ? std::int64_t{word_of(entry)} : int_of(entry);
}

/// Positions count from 1; what lies beyond the end of the text is not there.
std::string_view part_of(std::string_view text, std::int64_t position, std::int64_t length) {
  const auto start = static_cast<std::size_t>(position - 1);
  if (start >= text.size()) return {};
  return text.substr(start, static_cast<std::size_t>(length));
}

/// Deliberate: both look-ups speak of "ipname" (Builtins.AddressLookUpComplainsAsIpname).
bool is_look_up_argument(int count, const AttributeEntry* text) {
  return check(count == 1, "ipname needs 1 argument") &&
         check(text != nullptr, "ipname argument 1 NULL") &&
         check(is_text(text), "ipname argument 1 no string");
}

/// Host name for a dotted address; the text itself when it is none, or one that nobody knows. The
/// all-ones address is indistinguishable from no address for inet_addr(3).
std::string name_for(std::string text) {
  const in_addr address{::inet_addr(text.c_str())};
  if (address.s_addr == INADDR_NONE) return text;
  const auto name = zem::util::current<Resolver>().name_of(address);
  return name && !name->empty() ? *name : text;
}

/// Dotted address for a host name; the text itself when it is an address or a network number
/// already, or a name that nobody knows.
std::string address_for(std::string text) {
  const bool is_address =
      ::inet_addr(text.c_str()) != INADDR_NONE || ::inet_network(text.c_str()) != INADDR_NONE;
  if (is_address) return text;
  const auto address = zem::util::current<Resolver>().address_of(text);
  return address ? ::inet_ntoa(*address) : text;
}

}  // namespace

AttributeEntry* ZEMAD_EvalSubstr(int /*number*/, int count, SL_List* arguments) {
  if (!check(count == 3, "Substring needs 3 arguments")) return nullptr;
  const AttributeEntry* text = argument(arguments, 0);
  const AttributeEntry* position = argument(arguments, 1);
  const AttributeEntry* length = argument(arguments, 2);
  if (!are_substring_arguments(text, position, length)) return nullptr;
  const bool are_positive = number_of(*position) >= 1 && number_of(*length) >= 1;
  if (!check(are_positive, "Substring values faulty")) return nullptr;
  return make_text(part_of(text_of(*text), number_of(*position), number_of(*length)));
}

AttributeEntry* ZEMAD_EvalIPname(int /*number*/, int count, SL_List* arguments) {
  const AttributeEntry* text = argument(arguments, 0);
  if (!is_look_up_argument(count, text)) return nullptr;
  return ZEMAD_MakeStringAttributeEntry(name_for(std::string(text_of(*text))).c_str());
}

AttributeEntry* ZEMAD_EvalIPaddr(int /*number*/, int count, SL_List* arguments) {
  const AttributeEntry* text = argument(arguments, 0);
  if (!is_look_up_argument(count, text)) return nullptr;
  return ZEMAD_MakeStringAttributeEntry(address_for(std::string(text_of(*text))).c_str());
}
