#include "platform/mainloop/FailureReason.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <system_error>

using platform::failureReason;

TEST(FailureReasonTest, IsASentenceForWhatAUserMeets) {
  EXPECT_EQ(failureReason(ENOSPC), "The disk is full.");
  EXPECT_EQ(failureReason(EACCES), failureReason(EPERM));
  EXPECT_EQ(failureReason(EISDIR), "There is a folder of this name.");
}

// Each of them may end a save. The system's own text would stand there in one language only.
TEST(FailureReasonTest, NoneThatMayEndASaveIsToldInTheSystemsText) {
  for (const int error : {EACCES,    EPERM,     ENOSPC,       EDQUOT,       EFBIG,     EROFS,
                          ENOENT,    ENOTDIR,   EISDIR,       EINVAL,       EIO,       ENODEV,
                          ENXIO,     ESTALE,    ENAMETOOLONG, ELOOP,        EMFILE,    ENFILE,
                          ENOMEM,    EAGAIN,    EBUSY,        ETXTBSY,      EEXIST,    EOPNOTSUPP,
                          ETIMEDOUT, ENOTEMPTY, ENETUNREACH,  ECONNREFUSED, ECONNRESET}) {
    EXPECT_NE(failureReason(error), std::generic_category().message(error) + ".") << error;
  }
}

TEST(FailureReasonTest, IsTheSystemsOwnTextForAnythingElse) {
  EXPECT_NE(failureReason(ECHILD), "");
  EXPECT_NE(failureReason(ECHILD), failureReason(ENOSPC));
}
