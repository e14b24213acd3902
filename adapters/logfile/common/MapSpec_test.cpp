#include "adapters/logfile/common/MapSpec.h"

#include <gtest/gtest.h>

#include <string>

#include "adapters/logfile/common/MsgMapEntry.h"
#include "adapters/logfile/common/ref.h"

namespace {

using zem::format::Ref;

MsgMapEntry* constant(MapSpec* owner, const char* name, const char* value) {
  MsgMapEntry* const entry = MsgMapEntry::create(owner, name, kMapConstant);
  entry->addRule(value, owner);
  return entry;
}

std::string dump(const MapSpec& spec) {
  std::string text;
  for (const MsgMapEntry* entry : spec.slots()) {
    text.append(text.empty() ? "" : ", ").append(entry->fmtMap(&spec).view());
  }
  return text;
}

TEST(MapSpec, ReplacesASlotOfTheSameNameInPlace) {
  MapSpec spec("Any");
  const Ref<MsgMapEntry> first(constant(&spec, "a", "1"));
  spec.addSlot(first.get());
  spec.addSlot(constant(&spec, "b", "2"));
  EXPECT_EQ(first->refcnt(), 2);
  spec.addSlot(constant(&spec, "-a", "3"));
  EXPECT_EQ(first->refcnt(), 1);
  EXPECT_EQ(dump(spec), "-a \"3\", b \"2\"");
  spec.addSlot(spec.getmap("b"));
  EXPECT_EQ(spec.getmap("b")->refcnt(), 1) << "a slot in its own place";
}

TEST(MapSpec, RemovesSlotsByName) {
  MapSpec spec("Any");
  for (const char* name : {"a", "b", "c"}) spec.addSlot(constant(&spec, name, "x"));
  spec.removeSlot("nobody");
  spec.removeSlot("a");
  spec.removeSlot("c");
  EXPECT_EQ(dump(spec), "b \"x\"");
  spec.clear();
  EXPECT_EQ(dump(spec), "");
}

TEST(MapSpec, RanksSelectedSlots) {
  MapSpec spec("Any");
  spec.addSlot(MsgMapEntry::create(&spec, "first", kMapDefault));
  spec.addSlot(constant(&spec, "constant", "x"));
  spec.addSlot(MsgMapEntry::create(&spec, "second", kMapNotification));
  const std::pair<const char*, int> ranks[] = {
      {"first", 1}, {"constant", 1}, {"second", 2}, {"nobody", 2}};
  for (const auto& [name, rank] : ranks) {
    int n = -1;
    EXPECT_EQ(spec.getmap(name, n) == nullptr, std::string(name) == "nobody");
    EXPECT_EQ(n, rank) << name;
  }
}

TEST(MapSpecDeathTest, DestroyedWhileReferencedAborts) {
  EXPECT_DEATH(
      {
        MapSpec spec("Any");
        ++spec.refcnt();
      },
      "destroyed while referenced");
  EXPECT_DEATH(
      {
        MsgMapEntry entry(nullptr, "a");
        ++entry.refcnt();
      },
      "destroyed while referenced");
}

}  // namespace
