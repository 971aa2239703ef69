#include "platform/posix/posix_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/failure.h"
#include "tests/platform/scratch_folder.h"

namespace platform_tests {
namespace {

using support::Failure;

class PosixFiles : public testing::Test {
  protected:
    ScratchFolder folder_;
    platform::posix::PosixFiles files_{folder_.path()};
};

TEST_F(PosixFiles, a_file_keeps_its_permissions) {
    files_.replace("my.cfg", "old");
    ::chmod(folder_.file("my.cfg").c_str(), 0666);
    files_.replace("my.cfg", "new");
    struct stat status {};
    ASSERT_EQ(::stat(folder_.file("my.cfg").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0666U);
}

TEST_F(PosixFiles, pipes_are_refused) {
    ASSERT_EQ(::mkfifo(folder_.file("pipe.cfg").c_str(), 0600), 0);
    EXPECT_THROW(files_.read("pipe.cfg"), Failure);
    EXPECT_THROW(files_.replace("pipe.cfg", "x"), Failure);
    EXPECT_EQ(files_.list(".cfg"), std::vector<std::string>{});
}

}  // namespace
}  // namespace platform_tests
