#include "platform/base/Result.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <string>

namespace {

using platform::Result;

struct Animal {
  virtual ~Animal() = default;
  [[nodiscard]] virtual std::string sound() const { return ""; }
};
struct Dog : Animal {
  [[nodiscard]] std::string sound() const override { return "woof"; }
};

Result<std::unique_ptr<Animal>> adopt(int error) {
  if (error != 0) {
    return error;
  }
  return std::make_unique<Dog>();
}

TEST(Result, HoldsTheObjectAndNoError) {
  const auto animal = adopt(0);
  ASSERT_TRUE(animal);
  EXPECT_EQ(animal.error(), 0);
  EXPECT_EQ(animal->sound(), "woof");
}

TEST(Result, HoldsTheErrorAndNoObject) {
  const auto animal = adopt(ENOENT);
  EXPECT_FALSE(animal);
  EXPECT_EQ(animal.error(), ENOENT);
  EXPECT_THROW(static_cast<void>(*animal), std::bad_optional_access);
}

TEST(Result, GivesTheObjectAway) {
  auto result = adopt(0);
  const std::unique_ptr<Animal> animal = *std::move(result);
  EXPECT_EQ(animal->sound(), "woof");
  EXPECT_EQ((*adopt(0))->sound(), "woof");
}

TEST(Result, ReachesIntoARecordAndThroughAPlainPointer) {
  struct Named {
    std::string name;
  };
  Named dog{"Rex"};
  Result<Named> record = dog;
  record->name += "!";
  EXPECT_EQ((*record).name, "Rex!");
  const Result<Named*> pointer = &dog;
  EXPECT_EQ(pointer->name, "Rex");
}

TEST(Result, MayHaveAnErrorOfItsOwnKind) {
  const Result<int*, std::string> result = std::string("no room");
  EXPECT_FALSE(result);
  EXPECT_EQ(result.error(), "no room");
}

}  // namespace
