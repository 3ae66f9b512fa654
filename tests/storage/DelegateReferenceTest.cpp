#include "storage/DelegateReference.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <memory>

#include "support/fakes/RecordingDelegate.h"

namespace {

using support::DelegateCall;
using testing::ElementsAre;

class ADelegateReference : public testing::Test {
 protected:
  std::shared_ptr<support::RecordingDelegate> delegate_ =
      std::make_shared<support::RecordingDelegate>();
  DelegateReference reference_;
  const char data_ = 'x';
};

TEST_F(ADelegateReference, TellsAWriteWithItsArguments) {
  reference_.set(delegate_);
  reference_.tellWrite(&data_, 40, 1, 0);
  reference_.tellWrite(nullptr, ~std::uint64_t{0}, 0, 0);
  EXPECT_THAT(delegate_->calls(), ElementsAre(DelegateCall{&data_, 40, 1, 0},
                                              DelegateCall{nullptr, ~std::uint64_t{0}, 0, 0}));
}

TEST_F(ADelegateReference, TellsAFailureBeforeItsWrite) {
  reference_.set(delegate_);
  reference_.tellWrite(&data_, 40, 1, ENOSPC);
  EXPECT_THAT(delegate_->calls(),
              ElementsAre(DelegateCall{nullptr, 0, 0, ENOSPC}, DelegateCall{&data_, 40, 1, 0}));
}

TEST_F(ADelegateReference, TellsAFailureAlone) {
  reference_.set(delegate_);
  reference_.tellFailure(EIO);
  EXPECT_THAT(delegate_->calls(), ElementsAre(DelegateCall{nullptr, 0, 0, EIO}));
}

TEST_F(ADelegateReference, TellsNobodyWhereThereIsNoneOrItHasGone) {
  reference_.tellWrite(&data_, 40, 1, ENOSPC);
  reference_.set(delegate_);
  delegate_.reset();
  reference_.tellWrite(&data_, 40, 1, ENOSPC);
  reference_.tellFailure(EIO);
  EXPECT_TRUE(reference_.get().expired());
}

TEST_F(ADelegateReference, MayBeSetByADelegateThatIsBeingTold) {
  const auto next = std::make_shared<support::RecordingDelegate>();
  delegate_->during([&] { reference_.set(next); });
  reference_.set(delegate_);
  reference_.tellWrite(&data_, 40, 1, ENOSPC);
  EXPECT_EQ(delegate_->calls().size(), 2U) << "both calls go to the one that was there";
  EXPECT_EQ(reference_.get().lock(), next);
}

}  // namespace
