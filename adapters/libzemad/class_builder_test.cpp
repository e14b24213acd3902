#include "adapters/libzemad/class_builder.h"

#include <gmock/gmock.h>

#include <functional>
#include <string>

#include "adapters/libzemad/class_scanner.h"
#include "tests/support/log_capture.h"
#include "tests/support/table.h"
#include "tests/support/text_source.h"
#include "util/heap.h"

namespace zem::kernel {
namespace {

using testing::ElementsAre;

int no_keyword(const char*) { return -1; }

/// A builder whose scanner stands at the word "here" in line 1 of "f.cds".
class ClassBuilderTest : public testing::Test {
 protected:
  ClassBuilderTest() { scan.yylex(); }
  ~ClassBuilderTest() override { ZEMAD_KernelCleanup(); }

  const test::TextSource source{"here;"};
  ClassScanner scan{test::TextSource::next, no_keyword};
  ClassBuilder build{scan, "f.cds"};
};

TEST_F(ClassBuilderTest, CutsALongFileNameInMessagesOnly) {
  test::LogCapture log(log::kParser);
  ClassBuilder(scan, std::string(3000, 'n')).yyerror("x");
  EXPECT_THAT(log.lines(), ElementsAre("MAJOR PARSER 8 Parser " + std::string(1023, 'n') +
                                           ":x on line 1 current keyword \"here\"",
                                       ""));
}

// Failures ----------------------------------------------------------------------------------------

const Operand kFirst{ZEMAD_ACCESS_CONSTANT, 0};

char* word() { return util::duplicate("w"); }
SL_List* selects() {
  SL_List* list = SL_Create();
  SL_InsLast(list, ZEMAD_CreateSelect(1, nullptr, nullptr, nullptr));
  return list;
}
Expression* expression() { return ZEMAD_CreateFetchArg(nullptr, 0, nullptr); }
Variable* variable() { return ZEMAD_CreateVariable(nullptr, 0); }
SL_List* variables() {
  SL_List* list = SL_Create();
  SL_InsLast(list, variable());
  return list;
}
SelectOperation* operation() {
  return ZEMAD_CreateSelectOperation(1, ZEMAD_GetOperatorAttr(ZEMAD_ACCESS_CONSTANT), 0);
}

struct BuildFailureCase {
  const char* name;
  int successes;  ///< requests for memory that succeed, those for the arguments included
  std::function<bool(ClassBuilder&)> build;
  const char* message;
};

class ClassBuilderFailures : public ClassBuilderTest,
                             public testing::WithParamInterface<BuildFailureCase> {};

/// The message names what could not be built, and what was handed over is freed.
TEST_P(ClassBuilderFailures, AreNamed) {
  test::LogCapture log(log::kParser);
  build.begin_class();
  {
    const util::ScopedAllocationFailure failure(GetParam().successes);
    EXPECT_FALSE(GetParam().build(build));
  }
  const auto texts = log.texts();
  EXPECT_EQ(texts.at(texts.size() - 2), std::string("Parser f.cds:") + GetParam().message +
                                            " on line 1 current keyword \"here\"");
  EXPECT_EQ(build.parse_errors(), ClassBuilder::kSyntaxError);
}

bool made(const void* record) { return record != nullptr; }

const BuildFailureCase kBuildFailureCases[] = {
    {"Lists", 0, [](ClassBuilder& b) { return b.begin_file(); }, "SL_Create config error"},
    {"Copy", 0, [](ClassBuilder& b) { return made(b.copy("x")); }, "strdup config error"},
    {"Class", 4,
     [](ClassBuilder& b) { return made(b.make_class(word(), selects(), nullptr, nullptr)); },
     "ZEMAD_CreateClass config error"},
    {"Test", 0, [](ClassBuilder& b) { return made(b.attr_test(1, kFirst)); },
     "CreateSelectOperation config error"},
    {"Select", 1, [](ClassBuilder& b) { return made(b.select(1, operation(), nullptr, nullptr)); },
     "ZEMAD_CreateSelect config error"},
    {"FirstTestOfTheShortForm", 0,
     [](ClassBuilder& b) { return made(b.short_select(1, kFirst, kFirst)); },
     "ZEMAD_CreateSelectOperation config error"},
    {"SecondTestOfTheShortForm", 1,
     [](ClassBuilder& b) { return made(b.short_select(1, kFirst, kFirst)); },
     "ZEMAD_CreateSelectOperationconfig error"},
    {"SelectList", 1,
     [](ClassBuilder& b) {
       return made(b.add_select(nullptr, ZEMAD_CreateSelect(1, nullptr, nullptr, nullptr)));
     },
     "SL_Createconfig error"},
    {"Leaf", 0, [](ClassBuilder& b) { return made(b.leaf(kFirst)); },
     "ZEMAD_CreateFetchArg config error"},
    {"ArgumentList", 3,
     [](ClassBuilder& b) {
       return made(b.call(nullptr, {expression(), expression(), expression()}));
     },
     "SL_Create config error"},
    {"Fetch", 1, [](ClassBuilder& b) { return made(b.fetch(1, expression())); },
     "ZEMAD_CreateFetch config error"},
    {"FetchList", 2,
     [](ClassBuilder& b) { return made(b.add_fetch(nullptr, ZEMAD_CreateFetch(1, expression()))); },
     "SL_Create config error"},
    {"Variable", 0, [](ClassBuilder& b) { return made(b.variable(kFirst)); },
     "ZEMAD_CreateVariable config error"},
    {"VariableList", 1, [](ClassBuilder& b) { return made(b.add_variable(nullptr, variable())); },
     "SL_Create config error"},
    {"VariableListsArray", 2,
     [](ClassBuilder& b) { return made(b.add_variable(nullptr, variable())); },
     "SL_InsLast config error"},
    {"PlainLineOfAClass", 4, [](ClassBuilder& b) { return made(b.assignment(word(), variable())); },
     "SL_InsLast config error"},
    {"PlainLineOfTheDefaults", 4,
     [](ClassBuilder& b) { return made(b.default_assignment(word(), variable())); },
     "ZEMAD_CreateMap config error"},
    {"PrintfLine", 5, [](ClassBuilder& b) { return made(b.printf(word(), word(), variables())); },
     "ZEMAD_CreateMap config error"},
    {"Constant", 1,
     [](ClassBuilder& b) {
       Operand operand{};
       return b.constant("x", operand);
     },
     "SL_InsLast config error"}};
INSTANTIATE_TEST_SUITE_P(ClassBuilder, ClassBuilderFailures, testing::ValuesIn(kBuildFailureCases),
                         test::kRowName);

}  // namespace
}  // namespace zem::kernel
