#include "platform/file_store.h"

#include <sys/stat.h>

#include <fstream>

#include "platform/posix/posix_files.h"
#include "platform/posix/posix_instance_lock.h"
#include "support/failure.h"
#include "tests/platform/machines.h"
#include "tests/platform/scratch_folder.h"

namespace platform_tests {
namespace {

using support::Failure;

class FileStoreContract : public ContractTest {
  protected:
    platform::FileStore& files_ = machine_->files();
};
INSTANTIATE_TEST_SUITE_P(BackEnds, FileStoreContract, testing::ValuesIn(kBackEnds), back_end_name);

TEST_P(FileStoreContract, what_was_written_is_read_and_the_version_before_is_kept) {
    const std::string binary("a\0b\r\n\xFF", 6);
    files_.replace("my.cfg", "first");
    EXPECT_FALSE(files_.exists("my.cfg.bak"));
    files_.replace("my.cfg", "second");
    files_.replace("my.cfg", binary);
    EXPECT_EQ(files_.read("my.cfg"), binary);
    EXPECT_EQ(files_.read("my.cfg.bak"), "second");
    files_.replace("my.cfg", "");
    EXPECT_EQ(files_.read("my.cfg"), "");
}

TEST_P(FileStoreContract, a_write_protected_file_is_refused_and_untouched) {
    files_.replace("my.cfg", "before");
    files_.replace("my.cfg", "now");
    machine_->write_protect("my.cfg");
    EXPECT_THROW(files_.replace("my.cfg", "after"), Failure);
    EXPECT_EQ(files_.read("my.cfg"), "now");
    EXPECT_EQ(files_.read("my.cfg.bak"), "before");
    EXPECT_EQ(files_.list("").size(), 2U) << "nothing is left over";
}

TEST_P(FileStoreContract, only_plain_names_are_taken) {
    for (const std::string& name : {std::string(), std::string("."), std::string(".."), std::string("../my.cfg"),
                                    std::string("/etc/passwd"), std::string("a\\b"), std::string("a\0b", 3)}) {
        EXPECT_THROW(files_.read(name), Failure) << name;
        EXPECT_THROW(files_.replace(name, "x"), Failure) << name;
        EXPECT_THROW(files_.remove(name), Failure) << name;
    }
}

TEST_P(FileStoreContract, a_file_that_is_not_there_cannot_be_read_or_removed) {
    EXPECT_THROW(files_.read("none.cfg"), Failure);
    EXPECT_THROW(files_.remove("none.cfg"), Failure);
    files_.replace("my.cfg", "x");
    EXPECT_TRUE(files_.exists("my.cfg"));
    files_.remove("my.cfg");
    EXPECT_FALSE(files_.exists("my.cfg"));
}

TEST_P(FileStoreContract, files_are_listed_by_their_ending_in_any_case_and_in_order) {
    for (const char* name : {"b.cfg", "A.CFG", "cfg", "c.cfg.txt", "a.cfg"}) {
        files_.replace(name, "x");
    }
    EXPECT_EQ(files_.list(".cfg"), (std::vector<std::string>{"A.CFG", "a.cfg", "b.cfg"}));
}

class PosixFiles : public testing::Test {
  protected:
    ScratchFolder folder_;
    platform::posix::PosixFiles files_{folder_.path()};
};

TEST_F(PosixFiles, what_a_crash_has_left_over_is_in_nobodys_way_and_nothing_is_left_behind) {
    files_.replace("my.cfg", "first");
    std::ofstream(folder_.file("my.cfg.tmp")) << "half a fi";
    std::ofstream(folder_.file("my.cfg.bak.tmp")) << "x";
    files_.replace("my.cfg", "second");
    EXPECT_EQ(files_.list(""), (std::vector<std::string>{"my.cfg", "my.cfg.bak"}));
    EXPECT_EQ(files_.read("my.cfg"), "second");
    EXPECT_EQ(files_.read("my.cfg.bak"), "first");
}

TEST_F(PosixFiles, a_replacement_that_fails_leaves_the_old_file_whole) {
    files_.replace("my.cfg", "old");
    std::filesystem::create_directory(folder_.file("my.cfg.bak"));  // stands where the version before is to go
    EXPECT_THROW(files_.replace("my.cfg", "new"), Failure);
    EXPECT_EQ(files_.read("my.cfg"), "old");
    EXPECT_EQ(files_.list(""), std::vector<std::string>{"my.cfg"});
}

TEST_F(PosixFiles, a_file_keeps_its_permissions) {
    files_.replace("my.cfg", "old");
    ::chmod(folder_.file("my.cfg").c_str(), 0666);
    files_.replace("my.cfg", "new");
    struct stat status {};
    ASSERT_EQ(::stat(folder_.file("my.cfg").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777U, 0666U);
}

TEST_F(PosixFiles, folders_pipes_and_huge_files_are_refused) {
    std::filesystem::create_directory(folder_.file("folder.cfg"));
    ASSERT_EQ(::mkfifo(folder_.file("pipe.cfg").c_str(), 0600), 0);
    std::ofstream(folder_.file("huge.cfg")).put('x');
    std::filesystem::resize_file(folder_.file("huge.cfg"), (64U << 20) + 1);  // takes no room on the disk
    for (const char* name : {"folder.cfg", "pipe.cfg", "huge.cfg"}) {
        EXPECT_THROW(files_.read(name), Failure) << name;
    }
    EXPECT_THROW(files_.replace("folder.cfg", "x"), Failure);
    EXPECT_THROW(files_.replace("pipe.cfg", "x"), Failure);
    EXPECT_EQ(files_.list(".cfg"), std::vector<std::string>{"huge.cfg"});
}

TEST(PosixInstanceLock, a_second_program_is_kept_out_and_told_where_the_first_one_is) {
    const ScratchFolder folder;
    platform::posix::PosixInstanceLock second(folder.path());
    {
        platform::posix::PosixInstanceLock first(folder.path());
        ASSERT_TRUE(first.acquire());
        first.publish("http://127.0.0.1:8790/");
        EXPECT_FALSE(second.acquire());
        EXPECT_EQ(second.other_address(), "http://127.0.0.1:8790/");
    }
    EXPECT_TRUE(second.acquire()) << "the first has ended";
    EXPECT_EQ(second.other_address(), "");
    platform::posix::PosixInstanceLock nowhere(folder.file("none"));
    EXPECT_THROW(nowhere.acquire(), Failure);
}

}  // namespace
}  // namespace platform_tests
