#include "platform/automation/components.h"

#include <gtest/gtest.h>

using platform::Failure;
using platform::automation::Components;
using platform::automation::CreateObject;
using platform::automation::ScopedComponents;
namespace automation = platform::automation;

namespace {

struct Sheet {
  int number = 0;
};
struct Chart {};

std::function<std::shared_ptr<Sheet>()> sheetNumbered(int number) {
  return [number] { return std::make_shared<Sheet>(Sheet{number}); };
}

template <class Action>
Failure failureOf(Action action) {
  try {
    action();
  } catch (const Failure& failure) {
    return failure;
  }
  ADD_FAILURE() << "no failure came";
  return Failure(0, {});
}

TEST(Components, AreMadeByTheirProgIdInAnyCase) {
  Components components;
  components.add<Sheet>(u"OWC11.Spreadsheet"_qs, sheetNumbered(11));
  const ScopedComponents scope(components);

  EXPECT_EQ(CreateObject<Sheet>(u"owc11.SPREADSHEET"_qs)->number, 11);
  EXPECT_TRUE(components.has(u"owc11.spreadsheet"_qs));
}

TEST(Components, GiveANewObjectAtEachCreation) {
  Components components;
  components.add<Sheet>(u"A.Sheet"_qs, sheetNumbered(1));
  const ScopedComponents scope(components);

  EXPECT_NE(CreateObject<Sheet>(u"A.Sheet"_qs), CreateObject<Sheet>(u"A.Sheet"_qs));
}

TEST(Components, ThatAreMissingFailWith429AndTheProgId) {
  Components components;
  const ScopedComponents scope(components);

  const Failure failure = failureOf([] { CreateObject<Sheet>(u"OWC9.Spreadsheet"_qs); });

  EXPECT_EQ(failure.number(), 429);
  EXPECT_EQ(failure.description(), u"ActiveX component can't create object");
  EXPECT_EQ(failure.source(), u"OWC9.Spreadsheet");
  EXPECT_FALSE(components.has(u"OWC9.Spreadsheet"_qs));
}

TEST(Components, OfAnotherKindFailWith429) {
  Components components;
  components.add<Sheet>(u"A.Sheet"_qs, sheetNumbered(1));
  const ScopedComponents scope(components);

  EXPECT_EQ(failureOf([] { CreateObject<Chart>(u"A.Sheet"_qs); }).number(), 429);
}

TEST(Components, WhoseFactoryGivesNothingFailWith429) {
  Components components;
  components.add<Sheet>(u"A.Sheet"_qs, [] { return std::shared_ptr<Sheet>(); });
  const ScopedComponents scope(components);

  EXPECT_EQ(failureOf([] { CreateObject<Sheet>(u"A.Sheet"_qs); }).number(), 429);
}

TEST(Components, PassOnTheFailureOfTheirFactory) {
  Components components;
  components.add<Sheet>(u"A.Sheet"_qs,
                        []() -> std::shared_ptr<Sheet> { throw Failure(70, u"Permission denied"_qs); });
  const ScopedComponents scope(components);

  EXPECT_EQ(failureOf([] { CreateObject<Sheet>(u"A.Sheet"_qs); }).number(), 70);
}

TEST(Components, AreFoundWhileTheyRun) {
  Components components;
  const auto running = std::make_shared<Sheet>(Sheet{7});
  components.addRunning<Sheet>(u"A.Sheet"_qs, [running] { return running; });
  const ScopedComponents scope(components);

  EXPECT_EQ(automation::GetObject<Sheet>(u"a.sheet"_qs), running);
}

TEST(Components, ThatDoNotRunFailWith429EvenWhenInstalled) {
  Components components;
  components.add<Sheet>(u"A.Sheet"_qs, sheetNumbered(1));
  components.addRunning<Sheet>(u"B.Sheet"_qs, [] { return std::shared_ptr<Sheet>(); });
  const ScopedComponents scope(components);

  EXPECT_EQ(failureOf([] { automation::GetObject<Sheet>(u"A.Sheet"_qs); }).number(), 429);
  EXPECT_EQ(failureOf([] { automation::GetObject<Sheet>(u"B.Sheet"_qs); }).number(), 429);
  EXPECT_EQ(failureOf([] { automation::GetObject<Chart>(u"B.Sheet"_qs); }).number(), 429);
}

TEST(Components, AreGoneOnceRemoved) {
  Components components;
  components.add<Sheet>(u"A.Sheet"_qs, sheetNumbered(1));
  components.addRunning<Sheet>(u"A.Sheet"_qs, sheetNumbered(2));
  const ScopedComponents scope(components);

  components.remove(u"a.SHEET"_qs);

  EXPECT_EQ(failureOf([] { CreateObject<Sheet>(u"A.Sheet"_qs); }).number(), 429);
  EXPECT_EQ(failureOf([] { automation::GetObject<Sheet>(u"A.Sheet"_qs); }).number(), 429);
}

TEST(Components, AreThoseOfTheInnermostScope) {
  Components outer;
  outer.add<Sheet>(u"A.Sheet"_qs, sheetNumbered(1));
  Components inner;
  inner.add<Sheet>(u"A.Sheet"_qs, sheetNumbered(2));

  const ScopedComponents outerScope(outer);
  {
    const ScopedComponents innerScope(inner);
    EXPECT_EQ(CreateObject<Sheet>(u"A.Sheet"_qs)->number, 2);
  }
  EXPECT_EQ(CreateObject<Sheet>(u"A.Sheet"_qs)->number, 1);
}

TEST(Components, FailWith91BeforeAnyAreInForceAndAfterTheLastScope) {
  EXPECT_EQ(failureOf([] { CreateObject<Sheet>(u"A.Sheet"_qs); }).number(), 91);
  {
    Components components;
    const ScopedComponents scope(components);
  }
  EXPECT_EQ(failureOf([] { automation::GetObject<Sheet>(u"A.Sheet"_qs); }).number(), 91);
}

}  // namespace
