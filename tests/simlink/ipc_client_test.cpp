#include "simlink/ipc_client.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/simlink/scripted_transport.h"

namespace {

using simlink::IpcClient;

constexpr std::uint32_t kGoodVersion = 0x49740001;
constexpr std::uint32_t kFsx = 0xFADE0008;

class IpcClientTest : public testing::Test {
  protected:
    IpcClientTest() { transport_.answer_reads({{0x3304, kGoodVersion}, {0x3308, kFsx}}); }

    // Opens the link anew and returns the result.
    std::int32_t open(std::int32_t requestedSim = 0) {
        client_.IpcInit();
        const bool opened = client_.IpcOpen(requestedSim, result_);
        EXPECT_EQ(opened, result_ == simlink::kIpcOkay);
        return result_;
    }
    void open_and_forget_calls() {
        ASSERT_EQ(open(), simlink::kIpcOkay);
        transport_.calls.clear();
        transport_.sends = 0;
        transport_.slept_ms = 0;
        std::fill(transport_.block.begin(), transport_.block.end(), std::uint8_t{0xEE});
    }

    ScriptedTransport transport_;
    IpcClient client_{transport_};
    std::int32_t result_ = -1;
};

TEST_F(IpcClientTest, an_open_link_has_shared_its_block_and_knows_the_versions) {
    EXPECT_EQ(open(), simlink::kIpcOkay);
    EXPECT_EQ(transport_.calls,
              (std::vector<std::string>{"find UIPCMAIN", "register FSASMLIB:IPC", "add atom FSASMLIB:IPC:1A2B:1",
                                        "map 32768 FSASMLIB:IPC:1A2B:1", "view"}));
    EXPECT_EQ(client_.FsuipcVersionWord, kGoodVersion);
    EXPECT_EQ(client_.SimVersionWord, 8U);
    EXPECT_EQ(transport_.sent_atom, -16383) << "the atom is widened with its sign";
    EXPECT_EQ(transport_.sent_timeout_ms, 2000U);
    EXPECT_EQ(transport_.sends, 1);
    EXPECT_EQ(transport_.slept_ms, 100U);

    transport_.calls.clear();
    client_.IpcClose();
    EXPECT_EQ(transport_.calls, (std::vector<std::string>{"delete atom 49153", "unmap", "close mapping"}));
    client_.IpcClose();
    EXPECT_EQ(transport_.calls.size(), 3U) << "a closed link has nothing left to release";
    EXPECT_EQ(client_.FsuipcVersionWord, kGoodVersion) << "the versions stay";
}

TEST_F(IpcClientTest, each_failure_of_an_open_gives_its_result_and_leaves_nothing_held) {
    struct Case {
        std::int32_t result;
        std::function<void(ScriptedTransport&)> spoil;
        std::vector<std::string> released;
    };
    const std::vector<std::string> all = {"delete atom 49153", "unmap", "close mapping"};
    const Case cases[] = {
        {2, [](ScriptedTransport& t) { t.windows.clear(); }, {}},
        {3, [](ScriptedTransport& t) { t.message = 0; }, {}},
        {4, [](ScriptedTransport& t) { t.atom = 0; }, {}},
        {5, [](ScriptedTransport& t) { t.mapping = 0; }, {"delete atom 49153"}},
        {5, [](ScriptedTransport& t) { t.last_error = 183; }, {"delete atom 49153", "close mapping"}},
        {6, [](ScriptedTransport& t) { t.view_fails = true; }, {"delete atom 49153", "close mapping"}},
        {7,
         [](ScriptedTransport& t) {
             t.answer_reads({{0x3304, 0x19980004}, {0x3308, kFsx}});
         },
         all},
        {7,
         [](ScriptedTransport& t) {
             t.answer_reads({{0x3304, 0x80000000}, {0x3308, kFsx}});
         },
         all},
        {7,
         [](ScriptedTransport& t) {
             t.answer_reads({{0x3304, kGoodVersion}, {0x3308, 0xFADF0008}});
         },
         all},
        {14,
         [](ScriptedTransport& t) {
             t.windows = {{"FS98MAIN", 6}};
             t.answer_reads({{0x3304, 0x19980004}, {0x3308, kFsx}});
         },
         all},
        {11, [](ScriptedTransport& t) { t.failing_sends = 11; }, all},
        {13, [](ScriptedTransport& t) { t.reply = 2; }, all},
    };
    for (const Case& c : cases) {
        ScriptedTransport transport;
        transport.answer_reads({{0x3304, kGoodVersion}, {0x3308, kFsx}});
        c.spoil(transport);
        IpcClient client(transport);
        std::int32_t result = -1;
        client.IpcInit();
        EXPECT_FALSE(client.IpcOpen(0, result));
        EXPECT_EQ(result, c.result);
        EXPECT_FALSE(client.is_open());
        std::vector<std::string> released;
        std::copy_if(transport.calls.begin(), transport.calls.end(), std::back_inserter(released),
                     [](const std::string& call) {
                         return call == "unmap" || call == "close mapping" || call.rfind("delete atom", 0) == 0;
                     });
        EXPECT_EQ(released, c.released) << "result " << c.result;
    }
}

TEST_F(IpcClientTest, the_least_version_passes_and_a_wanted_simulator_must_be_the_one) {
    transport_.answer_reads({{0x3304, 0x19980005}, {0x3308, kFsx}});
    EXPECT_EQ(open(8), simlink::kIpcOkay);
    client_.IpcClose();
    EXPECT_EQ(open(7), simlink::kIpcWrongSimulator);
    EXPECT_FALSE(client_.is_open());
    transport_.windows = {{"FS98MAIN", 6}};
    EXPECT_EQ(open(), simlink::kIpcOkay);
    EXPECT_EQ(transport_.window, 6);
}

TEST_F(IpcClientTest, a_server_that_answers_with_zeros_is_asked_five_times) {
    transport_.answer_reads({});
    EXPECT_EQ(open(), simlink::kIpcWrongVersion);
    EXPECT_EQ(transport_.sends, 5);
    EXPECT_EQ(transport_.slept_ms, 500U);
}

TEST_F(IpcClientTest, opening_an_open_link_clears_the_versions_and_the_link_goes_on) {
    ASSERT_EQ(open(), simlink::kIpcOkay);
    EXPECT_FALSE(client_.IpcOpen(0, result_));
    EXPECT_EQ(result_, simlink::kIpcAlreadyOpen);
    EXPECT_EQ(client_.FsuipcVersionWord, 0U);
    EXPECT_EQ(client_.SimVersionWord, 0U);
    std::uint32_t word = 0;
    EXPECT_TRUE(client_.IpcRead(0x3304, 4, &word, result_));
    EXPECT_TRUE(client_.IpcProcess(result_));
    EXPECT_EQ(word, kGoodVersion);
}

TEST_F(IpcClientTest, a_block_has_its_golden_bytes) {
    open_and_forget_calls();
    std::vector<std::uint8_t> seen;
    transport_.answer = [&](std::uint8_t* block) { seen.assign(block, block + 66); };
    std::uint16_t heading = 0xFFFF;
    const std::uint8_t gear[] = {0xAA, 0xBB, 0xCC};
    EXPECT_TRUE(client_.IpcRead(0x0580, 2, &heading, result_));
    EXPECT_TRUE(client_.IpcWrite(0x12345678, 3, gear, result_));
    EXPECT_TRUE(client_.IpcRead(0x0590, 1, nullptr, result_));
    EXPECT_TRUE(client_.IpcWrite(0x3110, 0, nullptr, result_));
    EXPECT_TRUE(client_.IpcProcess(result_));
    const std::vector<std::uint8_t> golden = {
        1, 0, 0, 0, 0x80, 0x05, 0,    0,    2, 0, 0, 0, 1,    0,    0,    0, 0, 0,  // read, entry 1
        2, 0, 0, 0, 0x78, 0x56, 0x34, 0x12, 3, 0, 0, 0, 0xAA, 0xBB, 0xCC,           // write
        1, 0, 0, 0, 0x90, 0x05, 0,    0,    1, 0, 0, 0, 0,    0,    0,    0, 0,     // read without destination
        2, 0, 0, 0, 0x10, 0x31, 0,    0,    0, 0, 0, 0,                             // write without data
        0, 0, 0, 0,                                                                 // end
    };
    EXPECT_EQ(seen, golden);
    EXPECT_EQ(heading, 0U) << "a server that fills in nothing leaves the zeros";
}

TEST_F(IpcClientTest, a_block_takes_requests_up_to_its_limit) {
    open_and_forget_calls();
    std::vector<std::uint8_t> data(32500, 7);
    EXPECT_FALSE(client_.IpcRead(0, 32493, data.data(), result_));
    EXPECT_EQ(result_, simlink::kIpcBlockFull);
    EXPECT_FALSE(client_.IpcRead(0, 0xFFFFFFFF, data.data(), result_)) << "the sum must not wrap";
    EXPECT_TRUE(client_.IpcRead(0, 32492, data.data(), result_));
    EXPECT_FALSE(client_.IpcWrite(0, 0, data.data(), result_));
    EXPECT_TRUE(client_.IpcProcess(result_)) << "what was accepted can still be processed";
    EXPECT_EQ(data[32491], 0);
    EXPECT_EQ(data[32492], 7);

    EXPECT_FALSE(client_.IpcWrite(0, 32497, data.data(), result_));
    EXPECT_EQ(result_, simlink::kIpcBlockFull);
    EXPECT_TRUE(client_.IpcWrite(0, 32496, data.data(), result_));
    client_.drop_pending();

    std::uint32_t accepted = 0;
    while (client_.IpcWrite(0, 0, nullptr, result_)) {
        ++accepted;
    }
    EXPECT_EQ(accepted, simlink::kMostRequests);
    EXPECT_TRUE(client_.IpcProcess(result_));
    EXPECT_EQ(transport_.block[0x7F00], 0xEE) << "the last 256 bytes are never used";
}

TEST_F(IpcClientTest, requests_and_sends_without_a_link_or_without_requests_do_nothing) {
    std::uint32_t word = 7;
    EXPECT_FALSE(client_.IpcRead(0x3304, 4, &word, result_));
    EXPECT_EQ(result_, simlink::kIpcNotConnected);
    EXPECT_FALSE(client_.IpcWrite(0x3304, 4, &word, result_));
    EXPECT_EQ(result_, simlink::kIpcNotConnected);
    EXPECT_FALSE(client_.IpcProcess(result_));
    EXPECT_EQ(result_, simlink::kIpcNotConnected);
    open_and_forget_calls();
    EXPECT_FALSE(client_.IpcProcess(result_));
    EXPECT_EQ(result_, simlink::kIpcNoRequests);
    EXPECT_EQ(transport_.sends, 0);
    EXPECT_EQ(word, 7U);
}

TEST_F(IpcClientTest, nine_retries_can_succeed_and_the_tenth_cannot) {
    struct Case {
        int failing_sends;
        std::uint32_t last_error;
        std::int32_t result;
        int sends;
    };
    const Case cases[] = {
        {0, 5, 0, 1}, {1, 5, 0, 2}, {9, 5, 0, 10}, {10, 0, 11, 11}, {10, 5, 12, 11}, {99, 0, 11, 11}, {99, 104, 12, 11},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::to_string(c.failing_sends) + " failing sends");
        client_.IpcClose();
        transport_.last_error = 0;
        transport_.failing_sends = 0;
        open_and_forget_calls();
        transport_.failing_sends = c.failing_sends;
        transport_.last_error = c.last_error;
        std::uint32_t word = 7;
        client_.IpcRead(0x3304, 4, &word, result_);
        EXPECT_EQ(client_.IpcProcess(result_), c.result == 0);
        EXPECT_EQ(result_, c.result);
        EXPECT_EQ(transport_.sends, c.sends);
        EXPECT_EQ(transport_.slept_ms, static_cast<std::uint32_t>(c.sends - 1) * 100);
        EXPECT_EQ(word, c.result == 0 ? kGoodVersion : 7U);
        EXPECT_FALSE(client_.has_pending_requests()) << "a failed call leaves an empty block";
        if (c.result != 0) {
            EXPECT_EQ(support::read_u32le(transport_.block.data()), 0U);
        }
    }
}

TEST_F(IpcClientTest, an_answer_with_a_foreign_record_fails_with_the_result_as_it_was) {
    open_and_forget_calls();
    std::uint16_t word = 7;
    transport_.answer = [](std::uint8_t* block) { block[0] = 3; };
    client_.IpcRead(0x100, 2, &word, result_);
    result_ = 42;
    EXPECT_FALSE(client_.IpcProcess(result_));
    EXPECT_EQ(result_, 42);
    EXPECT_EQ(word, 7U);

    transport_.answer = [](std::uint8_t* block) { support::put_u32le(block + 8, 0x7FFFFFFF); };
    client_.IpcRead(0x100, 2, &word, result_);
    EXPECT_FALSE(client_.IpcProcess(result_));
    EXPECT_EQ(result_, simlink::kIpcBadData) << "a size that lies";
    EXPECT_EQ(word, 7U);

    transport_.answer = nullptr;
    client_.IpcRead(0x100, 2, &word, result_);
    EXPECT_TRUE(client_.IpcProcess(result_)) << "the next block is sound again";
}

TEST_F(IpcClientTest, a_probe_sends_once_and_takes_the_window_of_a_simulator_started_anew) {
    open_and_forget_calls();
    std::uint16_t word = 7;
    client_.IpcRead(0x100, 2, &word, result_);
    transport_.windows.clear();
    EXPECT_EQ(client_.probe(100), simlink::ProbeOutcome::no_window);
    EXPECT_EQ(transport_.sends, 0);
    transport_.windows = {{"UIPCMAIN", 77}};
    transport_.failing_sends = 1;
    EXPECT_EQ(client_.probe(100), simlink::ProbeOutcome::no_answer);
    EXPECT_EQ(client_.probe(100), simlink::ProbeOutcome::answered);
    EXPECT_EQ(transport_.sends, 2);
    EXPECT_EQ(transport_.slept_ms, 0U);
    EXPECT_EQ(transport_.sent_timeout_ms, 100U);
    EXPECT_EQ(client_.LinkWindow, 77);
    EXPECT_FALSE(client_.has_pending_requests()) << "old requests are not sent to a new simulator";
    EXPECT_EQ(word, 7U);
}

}  // namespace
