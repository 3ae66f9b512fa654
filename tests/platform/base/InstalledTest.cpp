#include "platform/base/Installed.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

/// An interface for these tests: each implementation returns its name.
class Greeter {
 public:
  virtual ~Greeter() = default;
  [[nodiscard]] virtual int name() const { return 0; }
  static std::shared_ptr<Greeter> whenNoneIsInstalled() { return std::make_shared<Greeter>(); }
};

class NamedGreeter : public Greeter {
 public:
  explicit NamedGreeter(int name) : name_(name) {}
  [[nodiscard]] int name() const override { return name_; }

 private:
  const int name_;
};

using InstalledGreeter = platform::Installed<Greeter>;

int greeting() {
  return InstalledGreeter::get()->name();
}

TEST(InstalledTest, IsTheDefaultWithNoneInstalled) {
  EXPECT_EQ(greeting(), 0);
  EXPECT_EQ(InstalledGreeter::get(), InstalledGreeter::get()) << "made once";
}

TEST(InstalledTest, ScopesNestAndEndWithTheDefault) {
  NamedGreeter outer(1);
  {
    const InstalledGreeter::Scope outerScope(outer);
    EXPECT_EQ(greeting(), 1);
    {
      const InstalledGreeter::Scope innerScope(std::make_shared<NamedGreeter>(2));
      EXPECT_EQ(greeting(), 2);
    }
    EXPECT_EQ(greeting(), 1);
  }
  EXPECT_EQ(greeting(), 0);
}

TEST(InstalledTest, ScopeOwnsWhatIsSharedWithIt) {
  std::weak_ptr<Greeter> installed;
  {
    auto greeter = std::make_shared<NamedGreeter>(1);
    installed = greeter;
    const InstalledGreeter::Scope scope(std::move(greeter));
    EXPECT_EQ(greeting(), 1);
  }
  EXPECT_TRUE(installed.expired());
}

TEST(InstalledTest, ImplementationInUseOutlivesItsScope) {
  std::shared_ptr<Greeter> inUse;
  {
    const InstalledGreeter::Scope scope(std::make_shared<NamedGreeter>(1));
    inUse = InstalledGreeter::get();
  }
  EXPECT_EQ(inUse->name(), 1);
}

TEST(InstalledTest, ThreadsReadItWhileScopesComeAndGo) {
  std::atomic<bool> isDone = false;
  std::atomic<int> strangers = 0;
  std::vector<std::thread> readers;
  for (int i = 0; i < 4; ++i) {
    readers.emplace_back([&] {
      while (!isDone) {
        const int name = greeting();
        strangers += name < 0 || name > 2 ? 1 : 0;
      }
    });
  }
  for (int round = 0; round < 500; ++round) {
    const InstalledGreeter::Scope outer(std::make_shared<NamedGreeter>(1));
    const InstalledGreeter::Scope inner(std::make_shared<NamedGreeter>(2));
    EXPECT_EQ(greeting(), 2);
  }
  isDone = true;
  for (std::thread& reader : readers) {
    reader.join();
  }
  EXPECT_EQ(strangers, 0);
  EXPECT_EQ(greeting(), 0);
}

}  // namespace
