#include "app/account/private_process.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "tests/support/temp_dir.h"

TEST(PrivateProcess, MakesFilesThatOnlyTheirOwnerCanRead) {
    const mode_t before = umask(0);
    app::keepPrivate();
    const test::TempDir dir;
    EXPECT_EQ(0600U, test::permissionsOf(dir.write("file", "text")));
    umask(before);
}

TEST(PrivateProcess, LeavesNoCoreFile) {
    app::keepPrivate();
    rlimit limit{1, 1};
    ASSERT_EQ(0, getrlimit(RLIMIT_CORE, &limit));
    EXPECT_EQ(0U, limit.rlim_cur);
    EXPECT_EQ(0U, limit.rlim_max);
}
