#include "adapters/libzemad/fetch.h"

#include "adapters/libzemad/error.h"
#include "adapters/libzemad/evaluation.h"
#include "adapters/libzemad/kernel.h"

namespace {

using zem::kernel::AttributeEntryPtr;
using EntryList = zem::util::SlListOf<ZEMAD_FreeAttributeEntry>;

constexpr zem::log::Source kSource{zem::log::kFetch, "fetch"};
constexpr int kNoSubExpression = 12;
constexpr int kNoResult = 13;
constexpr int kNoItem = 14;
constexpr int kNotAppended = 21;
constexpr int kMissing = 22;
constexpr int kNotCreated = 23;

bool fail(int number, const char* text) {
  zem::log::fail(kSource, zem::log::kMajor, number, text);
  return false;
}

bool append(SL_List* list, AttributeEntryPtr entry) {
  if (SL_InsLast(list, entry.get()) != 1) return false;
  static_cast<void>(entry.release());  // the list owns it now
  return true;
}

bool evaluate_argument(const Expression* argument, SL_List* results) {
  if (argument == nullptr) return fail(kMissing, "List failure");
  AttributeEntryPtr result(ZEMAD_EvalFetchExpression(argument));
  if (!result) return fail(kNoSubExpression, "SubExpression failure");
  return append(results, std::move(result)) || fail(kNotAppended, "List failure");
}

bool evaluate_arguments(const SL_List* arguments, SL_List* results) {
  for (const Expression* argument : zem::util::sl_items<Expression>(arguments)) {
    if (!evaluate_argument(argument, results)) return false;
  }
  return true;
}

/// An expression without a routine is a fetch result named inside FETCH: it is copied, as in MAP.
AttributeEntry* apply(const Expression& expression, SL_List* arguments) {
  const ZEMAD_EvalRoutine routine =
      expression.Routine == nullptr ? ZEMAD_EvalFetchEntry : expression.Routine;
  return routine(expression.Number, SL_NbrElm(arguments), arguments);
}

bool evaluate_item(const Fetch* item) {
  if (item == nullptr) return fail(kMissing, "ZEMAD_FetchList failure");
  AttributeEntryPtr result(ZEMAD_EvalFetchExpression(item->Expr));
  if (!result) return fail(kNoItem, "Calculate Fetch failure");
  return append(ZEMAD_FetchList, std::move(result)) ||
         fail(kNotAppended, "ZEMAD_FetchList failure");
}

/// Each result is in ZEMAD_FetchList before the next item is evaluated, which may name it.
bool evaluate_items(const SL_List* fetches) {
  ZEMAD_FetchList = SL_Create();
  if (ZEMAD_FetchList == nullptr) return fail(kNotCreated, "ZEMAD_FetchList failure");
  for (const Fetch* item : zem::util::sl_items<Fetch>(fetches)) {
    if (!evaluate_item(item)) return false;
  }
  return true;
}

}  // namespace

int ZEMAD_EvalFetch(const SL_List* fetches) {
  zem::log::trace(kSource, "Entered Eval_Fetch", zem::log::kNormal);
  bool succeeded = true;
  if (fetches == nullptr) {
    zem::log::trace(kSource, "ZEMAD_EvalFetch List NULL");
  } else {
    succeeded = evaluate_items(fetches);
  }
  if (!succeeded) {
    SL_DelAll(ZEMAD_FetchList, zem::util::sl_free<ZEMAD_FreeAttributeEntry>);
    ZEMAD_FetchList = nullptr;
  }
  zem::log::trace(kSource, "Finished Eval_Fetch", zem::log::kNormal);
  return succeeded ? 1 : 0;
}

AttributeEntry* ZEMAD_EvalFetchExpression(const Expression* expression) {
  zem::log::trace(kSource, "Entered Eval_Fetch_Expression", zem::log::kNormal);
  const EntryList results(SL_Create());
  if (!results) fail(kNotCreated, "List failure");
  if (!results || expression == nullptr) return nullptr;
  if (!evaluate_arguments(expression->Arguments, results.get())) return nullptr;
  AttributeEntry* result = apply(*expression, results.get());
  if (result == nullptr) fail(kNoResult, "Operator failure");
  zem::log::trace(kSource, "Finished Eval_Fetch_Expression", zem::log::kNormal);
  return result;
}
