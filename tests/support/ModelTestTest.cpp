#include "support/ModelTest.h"

#include <gmock/gmock.h>

namespace {

using modeltest::asCode;
using modeltest::Step;
using modeltest::Steps;
using testing::HasSubstr;
using testing::IsEmpty;

// A sum that, once doubled, is wrong from 1000 on.
struct DefectiveSum {
  static constexpr const char* kName = "DefectiveSum";

  void apply(const Step& step) {
    if (step.what == "double") {
      doubled_ = true;
      real_ *= 2;
      model_ *= 2;
    } else {
      real_ += step.a + (doubled_ && real_ + step.a >= 1000 ? 1 : 0);
      model_ += step.a;
    }
  }

  std::string difference() const {
    modeltest::Comparison comparison;
    comparison.tell("sum", real_, model_);
    return comparison.text();
  }

 private:
  std::uint64_t real_ = 0;
  std::uint64_t model_ = 0;
  bool doubled_ = false;
};

Step draw(std::mt19937_64& random, const DefectiveSum&) {
  if (modeltest::below(random, 10) == 0) {
    return {"double"};
  }
  return {"add", modeltest::below(random, 2000)};
}

TEST(ModelTestTest, FindsNothingWhereThereIsNothing) {
  EXPECT_EQ(modeltest::findAmong<DefectiveSum>(100, 1, draw), "");
  EXPECT_EQ(modeltest::firstDifference<DefectiveSum>({{"add", 900}, {"double"}}), "");
}

TEST(ModelTestTest, TellsTheFirstDifferenceAndTheStepBeforeIt) {
  EXPECT_EQ(modeltest::firstDifference<DefectiveSum>({{"double"}, {"add", 1200}, {"add", 1}}),
            "after step 2, {\"add\", 1200}: sum: 1201, not 1200");
}

TEST(ModelTestTest, ShrinksADrawnSequenceToTheLeastThatDiffersAndPrintsItAsATest) {
  const std::string found = modeltest::findAmong<DefectiveSum>(100, 200, draw);
  EXPECT_THAT(found, HasSubstr("after step 2, {\"add\", 1000}: sum: 1001, not 1000"));
  EXPECT_THAT(found, HasSubstr("TEST(DefectiveSum, DoesAsItsModelSinceSeed1) {\n"
                               "  EXPECT_EQ(modeltest::firstDifference<DefectiveSum>({\n"
                               "                {\"double\"},\n"
                               "                {\"add\", 1000},\n"
                               "            }),\n"
                               "            \"\");\n"
                               "}\n"));
}

TEST(ModelTestTest, WritesAStepAsItStandsInATest) {
  EXPECT_EQ(asCode({"undo"}), "{\"undo\"}");
  EXPECT_EQ(asCode({"write", 0, 5}), "{\"write\", 0, 5}");
  EXPECT_EQ(asCode({"cut", ~std::uint64_t{0}}), "{\"cut\", 18446744073709551615U}");
}

TEST(ModelTestTest, ComparesSequencesByTheFirstPlaceThatDiffers) {
  modeltest::Comparison comparison;
  comparison.tellSequence("bytes", std::vector{1, 2, 3}, {1, 2, 3});
  EXPECT_THAT(comparison.text(), IsEmpty());
  comparison.tellSequence("bytes", std::vector{1, 2, 3}, {1, 2, 4, 5});
  comparison.tell("later", 1, 2);
  EXPECT_EQ(comparison.text(), "bytes: 3 long, not 4; they part at 2");
}

}  // namespace
