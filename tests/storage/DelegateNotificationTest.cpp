#include "storage/DelegateNotification.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <memory>

#include "platform/base/GuardedPointer.h"
#include "support/fakes/RecordingDelegate.h"

namespace {

using support::DelegateCall;
using testing::ElementsAre;

class ADelegate : public testing::Test {
 protected:
  std::shared_ptr<support::RecordingDelegate> delegate_ =
      std::make_shared<support::RecordingDelegate>();
  platform::GuardedPointer<std::weak_ptr<OVAudioBufferDelegate>> reference_;
  const char data_ = 'x';
};

TEST_F(ADelegate, IsNotifiedOfAWriteWithItsArguments) {
  reference_.set(delegate_);
  notifyOfWrite(reference_.get(), &data_, 40, 1, 0);
  notifyOfWrite(reference_.get(), nullptr, ~std::uint64_t{0}, 0, 0);
  EXPECT_THAT(delegate_->calls(), ElementsAre(DelegateCall{&data_, 40, 1, 0},
                                              DelegateCall{nullptr, ~std::uint64_t{0}, 0, 0}));
}

TEST_F(ADelegate, IsNotifiedOfAFailureBeforeItsWrite) {
  reference_.set(delegate_);
  notifyOfWrite(reference_.get(), &data_, 40, 1, ENOSPC);
  EXPECT_THAT(delegate_->calls(),
              ElementsAre(DelegateCall{nullptr, 0, 0, ENOSPC}, DelegateCall{&data_, 40, 1, 0}));
}

TEST_F(ADelegate, IsNotifiedOfAFailureAlone) {
  reference_.set(delegate_);
  notifyOfFailedWrite(reference_.get(), EIO);
  EXPECT_THAT(delegate_->calls(), ElementsAre(DelegateCall{nullptr, 0, 0, EIO}));
}

TEST_F(ADelegate, ThatIsNotThereOrHasGoneIsNotNotified) {
  notifyOfWrite(reference_.get(), &data_, 40, 1, ENOSPC);
  reference_.set(delegate_);
  delegate_.reset();
  notifyOfWrite(reference_.get(), &data_, 40, 1, ENOSPC);
  notifyOfFailedWrite(reference_.get(), EIO);
  EXPECT_TRUE(reference_.get().expired());
}

TEST_F(ADelegate, MayBeReplacedWhileItIsNotified) {
  const auto next = std::make_shared<support::RecordingDelegate>();
  delegate_->during([&] { reference_.set(next); });
  reference_.set(delegate_);
  notifyOfWrite(reference_.get(), &data_, 40, 1, ENOSPC);
  EXPECT_EQ(delegate_->calls().size(), 2U) << "both calls go to the one that was there";
  EXPECT_EQ(reference_.get().lock(), next);
}

}  // namespace
