#include "platform/file_store.h"

#include <fstream>

#include "app/native.h"
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
    for (const char* name : {"b.cfg", "A.CFG", "cfg", "c.cfg.txt", "a2.cfg"}) {
        files_.replace(name, "x");
    }
    EXPECT_EQ(files_.list(".cfg"), (std::vector<std::string>{"A.CFG", "a2.cfg", "b.cfg"}));
}

class NativeFiles : public testing::Test {
  protected:
    ScratchFolder folder_;
    platform::native::Files files_{folder_.path()};
};

TEST_F(NativeFiles, what_a_crash_has_left_over_is_in_nobodys_way_and_nothing_is_left_behind) {
    files_.replace("my.cfg", "first");
    std::ofstream(folder_.file("my.cfg.tmp")) << "half a fi";
    std::ofstream(folder_.file("my.cfg.bak.tmp")) << "x";
    files_.replace("my.cfg", "second");
    EXPECT_EQ(files_.list(""), (std::vector<std::string>{"my.cfg", "my.cfg.bak"}));
    EXPECT_EQ(files_.read("my.cfg"), "second");
    EXPECT_EQ(files_.read("my.cfg.bak"), "first");
}

TEST_F(NativeFiles, a_replacement_that_fails_leaves_the_old_file_whole) {
    files_.replace("my.cfg", "old");
    std::filesystem::create_directory(folder_.file("my.cfg.bak"));  // stands where the version before is to go
    EXPECT_THROW(files_.replace("my.cfg", "new"), Failure);
    EXPECT_EQ(files_.read("my.cfg"), "old");
    EXPECT_EQ(files_.list(""), std::vector<std::string>{"my.cfg"});
}

TEST_F(NativeFiles, folders_and_huge_files_are_refused) {
    std::filesystem::create_directory(folder_.file("folder.cfg"));
    std::ofstream(folder_.file("huge.cfg")).put('x');
    std::filesystem::resize_file(folder_.file("huge.cfg"), (64U << 20) + 1);  // takes no room on the disk
    for (const char* name : {"folder.cfg", "huge.cfg"}) {
        EXPECT_THROW(files_.read(name), Failure) << name;
    }
    EXPECT_THROW(files_.replace("folder.cfg", "x"), Failure);
    EXPECT_EQ(files_.list(".cfg"), std::vector<std::string>{"huge.cfg"});
}

TEST_F(NativeFiles, names_are_windows_1252_whatever_the_system_writes) {
    files_.replace("K\xF6ln \x80.cfg", "x");
    EXPECT_TRUE(std::filesystem::exists(folder_.file("") / std::filesystem::path(u8"K\u00F6ln \u20AC.cfg")));
    std::ofstream(folder_.file("") / std::filesystem::path(u8"\u0416.cfg")) << "a name that no text here can hold";
    EXPECT_EQ(files_.list(".cfg"), std::vector<std::string>{"K\xF6ln \x80.cfg"});
    EXPECT_EQ(files_.read("K\xF6ln \x80.cfg"), "x");
}

TEST(NativeInstanceLock, a_second_program_is_kept_out_and_told_where_the_first_one_is) {
    const ScratchFolder folder;
    platform::native::InstanceLock second(folder.path());
    {
        platform::native::InstanceLock first(folder.path());
        ASSERT_TRUE(first.acquire());
        first.publish("http://127.0.0.1:8790/");
        EXPECT_FALSE(second.acquire());
        EXPECT_EQ(second.other_address(), "http://127.0.0.1:8790/");
    }
    EXPECT_TRUE(second.acquire()) << "the first has ended";
    EXPECT_EQ(second.other_address(), "");
    platform::native::InstanceLock nowhere(folder.path() + "/none");
    EXPECT_THROW(nowhere.acquire(), Failure);
}

}  // namespace
}  // namespace platform_tests
