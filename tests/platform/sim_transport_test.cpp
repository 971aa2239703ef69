#include "platform/sim_transport.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/manual/manual_platform.h"
#include "tests/platform/machines.h"
#include "tests/platform/transport_rig.h"

namespace platform_tests {
namespace {

using platform::SimTransport;

class ManualTransportRig : public TransportRig {
  public:
    ManualTransportRig() { machine_.sim_transport.windows.clear(); }
    EventLoop& loop() override { return machine_.loop; }
    platform::SimTransport& transport() override { return machine_.sim_transport; }
    void start_server() override {
        machine_.sim_transport.windows = {window_class()};
        set_answers(Answers::at_once);
    }
    void stop_server() override { machine_.sim_transport.windows.clear(); }
    void set_answers(Answers answers) override {
        machine_.sim_transport.server = nullptr;
        if (answers == Answers::at_once) {
            machine_.sim_transport.server = [this](std::uint8_t* block, std::size_t) {
                ++answered_;
                return answer_block(block);
            };
        }
    }
    int answered() override { return answered_; }

  private:
    platform::manual::ManualPlatform machine_;
    int answered_ = 0;
};

struct TransportBackEnd {
    const char* name;
    std::unique_ptr<TransportRig> (*make)();
};

class SimTransportContract : public testing::TestWithParam<TransportBackEnd> {
  protected:
    std::unique_ptr<TransportRig> rig_ = GetParam().make();
    SimTransport& transport_ = rig_->transport();
};
constexpr TransportBackEnd kTransports[] = {
    {"manual", []() -> std::unique_ptr<TransportRig> { return std::make_unique<ManualTransportRig>(); }},
    {"native", []() -> std::unique_ptr<TransportRig> { return std::make_unique<NativeTransportRig>(); }},
};
INSTANTIATE_TEST_SUITE_P(BackEnds, SimTransportContract, testing::ValuesIn(kTransports),
                         [](const auto& of) { return of.param.name; });

TEST_P(SimTransportContract, a_window_is_found_while_its_server_is_there) {
    EXPECT_EQ(transport_.FindWindowExA(window_class()), 0);
    rig_->start_server();
    const auto window = transport_.FindWindowExA(window_class());
    EXPECT_NE(window, 0);
    EXPECT_EQ(transport_.FindWindowExA(window_class()), window);
    EXPECT_EQ(transport_.FindWindowExA("OTHERMAIN"), 0);
    rig_->stop_server();
    EXPECT_EQ(transport_.FindWindowExA(window_class()), 0);
}

TEST_P(SimTransportContract, a_block_is_answered_in_place_with_the_servers_reply_value) {
    rig_->start_server();
    const Link link(transport_);
    ASSERT_NE(link.block, nullptr);
    EXPECT_EQ(std::count(link.block, link.block + kMappingSize, 0), kMappingSize) << "a new mapping is empty";
    for (int send = 0; send < 300; ++send) {
        link.block[1] = static_cast<std::uint8_t>(send);
        std::uint32_t reply = 0xFFFFFFFF;
        ASSERT_TRUE(link.send(reply)) << send;
        ASSERT_EQ(reply, static_cast<std::uint32_t>(send % 256));
        ASSERT_EQ(link.block[0], (send + 1) % 256);
    }
}

TEST_P(SimTransportContract, a_server_that_does_not_answer_fails_the_send_after_its_time_without_an_error_code) {
    rig_->start_server();
    rig_->set_answers(TransportRig::Answers::never);
    const Link link(transport_);
    std::uint32_t reply = 0;
    const auto begin = rig_->loop().now();
    EXPECT_FALSE(link.send(reply, 60));
    EXPECT_EQ(transport_.GetLastError(), 0U);
    EXPECT_GE(rig_->loop().now() - begin, Milliseconds(60));
    rig_->set_answers(TransportRig::Answers::at_once);
    link.block[1] = 1;
    EXPECT_TRUE(link.send(reply));
    EXPECT_EQ(reply, 1U);
    EXPECT_EQ(rig_->answered(), 1) << "a send that was given up is not answered later";
}

TEST_P(SimTransportContract, a_server_that_has_gone_fails_the_send_with_an_error_code_until_it_is_back) {
    rig_->start_server();
    const Link link(transport_);
    std::uint32_t reply = 0;
    link.block[1] = 7;
    ASSERT_TRUE(link.send(reply));
    rig_->stop_server();
    for (int attempt = 0; attempt < 3; ++attempt) {
        EXPECT_FALSE(link.send(reply));
        EXPECT_NE(transport_.GetLastError(), 0U);
    }
    rig_->start_server();
    EXPECT_TRUE(link.send(reply)) << "the same link serves on";
    EXPECT_EQ(reply, 7U);
}

TEST_P(SimTransportContract, a_link_can_be_closed_and_opened_again_and_again) {
    rig_->start_server();
    for (int opening = 0; opening < 20; ++opening) {
        const Link link(transport_);
        ASSERT_NE(link.block, nullptr);
        link.block[1] = static_cast<std::uint8_t>(opening);
        std::uint32_t reply = 99;
        ASSERT_TRUE(link.send(reply)) << opening;
        EXPECT_EQ(reply, static_cast<std::uint32_t>(opening));
        EXPECT_EQ(link.block[0], 1) << "each opening has a mapping of its own";
    }
}

TEST_P(SimTransportContract, no_task_runs_while_a_send_or_a_sleep_waits) {
    rig_->start_server();
    rig_->set_answers(TransportRig::Answers::never);
    const Link link(transport_);
    int ran = 0;
    rig_->loop().post([&] { ++ran; });
    std::uint32_t reply = 0;
    const auto begin = rig_->loop().now();
    link.send(reply, 20);
    transport_.Sleep(20);
    EXPECT_GE(rig_->loop().now() - begin, Milliseconds(40));
    EXPECT_EQ(ran, 0);
    rig_->loop().yield_once();
    EXPECT_EQ(ran, 1);
}

TEST_P(SimTransportContract, a_send_to_no_window_fails_with_an_error_code) {
    std::uint32_t reply = 0;
    EXPECT_FALSE(transport_.SendMessageTimeoutA(0, 0xC000, 0, 100, reply));
    EXPECT_NE(transport_.GetLastError(), 0U);
    EXPECT_FALSE(transport_.SendMessageTimeoutA(17, 0xC000, 0, 100, reply));
}

TEST(NativeTransport, a_mapping_of_the_same_name_is_there_already) {
    platform::native::Loop loop;
    platform::native::SimTransport transport(loop);
    const auto first = transport.CreateFileMappingA(kMappingSize, "name");
    EXPECT_NE(first, 0);
    EXPECT_EQ(transport.GetLastError(), 0U);
    const auto second = transport.CreateFileMappingA(kMappingSize, "name");
    EXPECT_EQ(transport.GetLastError(), platform::kErrorAlreadyExists);
    transport.CloseHandle(second);
    transport.CloseHandle(first);
    const auto third = transport.CreateFileMappingA(kMappingSize, "name");
    EXPECT_NE(third, 0);
    EXPECT_EQ(transport.GetLastError(), 0U);
    transport.CloseHandle(third);
}

}  // namespace
}  // namespace platform_tests
