#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "panel/panel_host.h"
#include "platform/manual/manual_platform.h"
#include "simhost/block_server.h"
#include "simhost/offset_space.h"
#include "simlink/ipc_client.h"
#include "simlink/sim_com.h"
#include "tables/core_tables.h"

// The port layer on an open link to a simulator in the same process, on virtual time.
class SimComTest : public testing::Test {
  protected:
    SimComTest() {
        simulator_.write_u32(simhost::kServerVersionOffset, simhost::kServerVersion);
        simulator_.write_u32(simhost::kSimVersionOffset, simhost::kSimVersion);
        server_.on_write = [this](std::uint32_t offset, std::uint32_t size) { writes_.emplace_back(offset, size); };
        machine_.sim_transport.server = [this](std::uint8_t* block, std::size_t size) {
            return server_.answer(block, size).value;
        };
        client_.IpcInit();
        EXPECT_TRUE(client_.IpcOpen(0, client_.IpcResult));
        machine_.boxes.default_answer.answer = platform::Answer::yes;
        writes_.clear();
    }

    // Makes a function row with neutral scaling.
    tables::FunctionRow& function(int number, std::uint8_t data_type, std::int32_t offset, std::int16_t mask = 0) {
        tables::FunctionRow& row = tables_->functions[static_cast<std::size_t>(number)];
        row.FunctionShortName = "Function " + std::to_string(number);
        row.FunctionDataType = data_type;
        row.FunctionOffset1 = offset;
        row.FunctionMultiplier = 1;
        row.FunctionDivider = 1;
        row.FunctionMask = mask;
        return row;
    }
    // Opens a port on a function's first offset, with reading on.
    std::int16_t reading_port(std::int16_t number) {
        std::uint8_t seqnr = 1;
        const std::int16_t port = sim_com_.OpenSimPort(number, seqnr);
        sim_com_.EnableReadSimPort(port);
        return port;
    }
    float value_of(int port, float before = -99) {
        sim_com_.GetPort(port, before);
        return before;
    }
    void put(int port, float value) { sim_com_.PutPort(port, value); }
    void run_for(int milliseconds) { machine_.loop.advance(platform::Milliseconds(milliseconds)); }
    void cycle() { sim_com_.ProcessTimer_Timer(); }
    // The offsets written since the last call, in order.
    std::vector<std::pair<std::uint32_t, std::uint32_t>> taken_writes() { return std::exchange(writes_, {}); }

    using Writes = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

    platform::manual::ManualPlatform machine_;
    platform::Platform platform_ = machine_.platform();
    simhost::OffsetSpace simulator_;
    simhost::BlockServer server_{simulator_};
    std::unique_ptr<tables::CoreTables> tables_ = std::make_unique<tables::CoreTables>();
    simlink::IpcClient client_{machine_.sim_transport};
    panel::PanelHost panels_;
    simlink::SimCom sim_com_{*tables_, client_, platform_, panels_};
    Writes writes_;
};
