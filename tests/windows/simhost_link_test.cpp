// The client's whole conversation with the simulator's program, window to window.
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <filesystem>
#include <string>

#include "platform/win32/win32_transport.h"
#include "simlink/ipc_client.h"

namespace {

using platform::win32::Handle;
using platform::win32::Win32Loop;
using platform::win32::Win32Transport;
using simlink::IpcClient;
using std::chrono::steady_clock;

constexpr std::uint32_t kHeadingOffset = 0x580;

// The simulator's program, which stands beside the tests.
class Simhost {
  public:
    Simhost() {
        Handle input_end = make_pipe(input_, true);
        Handle output_end = make_pipe(output_, false);
        STARTUPINFOW start{};
        start.cb = sizeof(start);
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdInput = input_end.get();
        start.hStdOutput = output_end.get();
        start.hStdError = output_end.get();
        std::wstring command = L"simhost.exe";
        const std::filesystem::path program = own_path().parent_path() / "simhost.exe";
        PROCESS_INFORMATION made{};
        if (::CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                             &made) == FALSE) {
            platform::win32::throw_system_failure(program.string() + " cannot be started");
        }
        process_ = Handle(made.hProcess);
        const Handle thread(made.hThread);
        input_end.reset();
        output_end.reset();
        read_line();  // it is there
    }
    ~Simhost() { end(); }
    Simhost(const Simhost&) = delete;
    Simhost& operator=(const Simhost&) = delete;

    // The first line of the answer.
    std::string command(const std::string& words) {
        const std::string line = words + "\r\n";
        DWORD count = 0;
        ::WriteFile(input_.get(), line.data(), static_cast<DWORD>(line.size()), &count, nullptr);
        return read_line();
    }
    void end() {
        ::TerminateProcess(process_.get(), 0);
        ::WaitForSingleObject(process_.get(), INFINITE);
    }

  private:
    static std::filesystem::path own_path() {
        std::wstring path(MAX_PATH, L'\0');
        path.resize(::GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
        return path;
    }
    // Makes a pipe: `ours` is our end, what comes back the other program's.
    static Handle make_pipe(Handle& ours, bool we_write) {
        SECURITY_ATTRIBUTES inherited{};
        inherited.nLength = sizeof(inherited);
        inherited.bInheritHandle = TRUE;
        HANDLE read_end = nullptr;
        HANDLE write_end = nullptr;
        if (::CreatePipe(&read_end, &write_end, &inherited, 0) == FALSE) {
            platform::win32::throw_system_failure("No pipe");
        }
        ours = Handle(we_write ? write_end : read_end);
        ::SetHandleInformation(ours.get(), HANDLE_FLAG_INHERIT, 0);
        return Handle(we_write ? read_end : write_end);
    }
    std::string read_line() {
        std::string line;
        char letter = 0;
        DWORD count = 0;
        while (::ReadFile(output_.get(), &letter, 1, &count, nullptr) != FALSE && count == 1 && letter != '\n') {
            line.push_back(letter);
        }
        while (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        return line;
    }

    Handle input_;
    Handle output_;
    Handle process_;
};

class SimhostLink : public testing::Test {
  protected:
    // Opens the link and gives the result.
    std::int32_t open() {
        std::int32_t result = -1;
        client_.IpcInit();
        const bool opened = client_.IpcOpen(0, result);
        EXPECT_EQ(opened, result == simlink::kIpcOkay);
        return result;
    }
    // One read of the heading, and the result of the block.
    std::int32_t read_heading() {
        std::int32_t result = -1;
        EXPECT_TRUE(client_.IpcRead(kHeadingOffset, sizeof(heading_), &heading_, result));
        const bool processed = client_.IpcProcess(result);
        EXPECT_EQ(processed, result == simlink::kIpcOkay);
        return result;
    }

    Win32Loop loop_;
    Win32Transport transport_{loop_};
    IpcClient client_{transport_};
    std::uint32_t heading_ = 0;
};

TEST_F(SimhostLink, without_a_simulator_there_is_no_window) {
    EXPECT_EQ(open(), 2);
    EXPECT_FALSE(client_.is_open());
}

TEST_F(SimhostLink, blocks_are_answered_and_a_closed_link_opens_again) {
    Simhost simhost;
    ASSERT_EQ(open(), 0);
    EXPECT_EQ(client_.SimVersionWord, 8U);
    EXPECT_EQ(simhost.command("pause on"), "ok");
    ASSERT_EQ(read_heading(), 0);
    const double degrees = heading_ * 360.0 / 65536.0 / 65536.0;
    EXPECT_NEAR(degrees, std::stod(simhost.command("get heading")), 0.01);
    client_.IpcClose();
    EXPECT_EQ(open(), 0) << "a link that was closed opens again";
}

TEST_F(SimhostLink, a_mapping_of_the_clients_name_that_is_there_already_is_a_failure) {
    Simhost simhost;
    std::string name = "FSASMLIB:IPC:";
    for (int shift = 28; shift >= 0; shift -= 4) {
        const std::uint32_t digit = (::GetCurrentProcessId() >> shift) & 15U;
        if (digit != 0 || name.back() != ':') {
            name.push_back("0123456789ABCDEF"[digit]);
        }
    }
    {
        const Handle mapping(
            ::CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 32768, (name + ":1").c_str()));
        EXPECT_EQ(open(), 5);
        EXPECT_FALSE(client_.is_open());
    }
    EXPECT_EQ(open(), 0);
}

TEST_F(SimhostLink, wrong_version_words_are_refused_by_the_kind_of_the_window) {
    Simhost simhost;
    for (const char* version : {"wrong", "unmarked", "zero"}) {
        simhost.command(std::string("version ") + version);
        EXPECT_EQ(open(), 7) << version;
    }
    simhost.command("window FS98MAIN");
    EXPECT_EQ(open(), 14);
    simhost.command("version right");
    EXPECT_EQ(open(), 0);
}

TEST_F(SimhostLink, a_bad_reply_value_is_bad_data_and_nothing_is_read) {
    Simhost simhost;
    ASSERT_EQ(open(), 0);
    simhost.command("reply bad");
    heading_ = 0x1234;
    EXPECT_EQ(read_heading(), 13);
    EXPECT_EQ(heading_, 0x1234U);
    simhost.command("reply good");
    EXPECT_EQ(read_heading(), 0);
}

TEST_F(SimhostLink, a_simulator_that_has_ended_fails_all_sends_and_the_next_one_serves_the_same_link) {
    Simhost first;
    ASSERT_EQ(open(), 0);
    first.end();
    EXPECT_EQ(read_heading(), 12);
    const Simhost second;
    EXPECT_EQ(read_heading(), 0);
}

TEST_F(SimhostLink, a_simulator_that_hangs_runs_into_all_time_outs) {
    Simhost simhost;
    ASSERT_EQ(open(), 0);
    simhost.command("silence on");
    const auto begin = steady_clock::now();
    EXPECT_EQ(read_heading(), 11);
    const auto took = steady_clock::now() - begin;
    EXPECT_GE(took, std::chrono::seconds(23)) << "eleven sends of two seconds and ten pauses";
    EXPECT_LE(took, std::chrono::seconds(26));
    simhost.command("silence off");
    EXPECT_EQ(read_heading(), 0);
}

}  // namespace
