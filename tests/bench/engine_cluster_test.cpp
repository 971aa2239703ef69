#include "bench/devices/engine_cluster.h"

#include <gtest/gtest.h>

#include <map>

#include "bench/bench_commands.h"
#include "bench/cockpit_view.h"
#include "bench/devices/engine_cluster_gauge.h"
#include "bench/devices/needle_gauges.h"
#include "platform/manual/manual_loop.h"

namespace bench {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

// What an instrument gives to the virtual cockpit.
class Shown : public StateSink {
  public:
    explicit Shown(const EngineCluster& cluster) { cluster.show(*this); }
    void number(std::string_view name, double value) override { numbers.emplace(name, value); }
    void text(std::string_view name, std::string_view value) override { texts.emplace(name, value); }
    void flag(std::string_view name, bool value) override { numbers.emplace(name, value ? 1 : 0); }

    std::map<std::string, double> numbers;
    std::map<std::string, std::string> texts;
};

class Cluster : public testing::Test {
  protected:
    Cluster() {
        unit.on_send = [this](std::string_view bytes) { sent += bytes; };
    }

    // A telegram of blanks with some bytes, by their numbers.
    static std::string telegram(const std::map<int, int>& bytes, char kind = 'F', char filling = ' ') {
        std::string text(40, filling);
        text[0] = kind;
        text[37] = text[38] = 0;
        text[39] = static_cast<char>(170);
        for (const auto& [number, value] : bytes) {
            text[static_cast<std::size_t>(number - 1)] = static_cast<char>(value);
        }
        return text;
    }
    std::string displays() const {
        std::string all;
        for (int display = 1; display <= 4; ++display) {
            all += unit.display_text(display) + "|";
        }
        return all;
    }

    platform::manual::ManualLoop loop;
    EngineCluster unit{loop};
    std::string sent;
};

TEST_F(Cluster, every_needle_takes_its_own_two_bytes_and_moves_at_its_speed) {
    const std::vector<int> places = {2, 4, 6, 22, 8, 12, 14, 16, 16, 18, 20, 10, 24, 26, 28, 30};
    for (std::size_t needle = 0; needle < places.size(); ++needle) {
        const int quarters = 400 + 4 * static_cast<int>(needle);
        unit.receive(telegram({{places[needle], quarters >> 8}, {places[needle] + 1, quarters & 255}}));
        EXPECT_EQ(unit.target_steps(static_cast<int>(needle)), quarters / 4) << needle;
        loop.advance(seconds(2));
        EXPECT_EQ(Shown(unit).numbers.at("needle" + std::to_string(needle)), quarters / 4);
    }
    EXPECT_EQ(unit.target_steps(0), 100) << "blanks leave a needle where it is";
    unit.receive(telegram({{2, 0}, {3, 0}}));
    loop.advance(milliseconds(13));
    EXPECT_DOUBLE_EQ(unit.pointer_steps(0), 90);
    unit.receive(telegram({{2, 0x10}, {3, 0xE1}}));  // beyond a turn
    EXPECT_EQ(unit.target_steps(0), 0);
    unit.receive(telegram({{2, 0x10}, {3, 0xE0}}));
    EXPECT_EQ(unit.target_steps(0), 1080);
}

TEST_F(Cluster, displays_show_their_digits_while_they_have_power) {
    unit.receive(telegram({{36, 75}, {37, 50}, {34, 180}, {35, 50}, {30, 27}, {31, 17}, {32, 171}, {33, 170}}));
    EXPECT_EQ(displays(), "12.3|123.|00.0|99.9|");
    EXPECT_EQ(unit.target_steps(15), 0) << "needle 15 shares its place with the third display";
    unit.receive(telegram({{30, 0x0B}, {31, 0x44}, {38, 0}}));  // a needle there, no reading
    EXPECT_EQ(displays(), "    |    |    |    |");
    EXPECT_EQ(unit.target_steps(15), 0x0B44 / 4.0);
    unit.receive(telegram({{36, 75}, {37, 50}, {38, 2}}));
    EXPECT_EQ(displays(), "    |    |    |    |");
    EXPECT_EQ(Shown(unit).numbers.at("power"), 0);
    unit.receive(telegram({{36, 75}, {37, 50}, {38, 0}}));
    EXPECT_EQ(Shown(unit).texts.at("display1"), "12.3");
}

TEST_F(Cluster, a_level_counts_only_with_its_flag) {
    unit.receive(telegram({{38, 0x51}}));
    EXPECT_TRUE(unit.lights().lit());
    EXPECT_EQ(unit.lights().level(), 15);
    unit.receive(telegram({{38, 0x50}, {39, 1}}));
    EXPECT_FALSE(unit.lights().lit());
    EXPECT_EQ(unit.lights().level(), 5);
}

TEST_F(Cluster, recalibration_finds_lost_steps_and_then_takes_the_next_positions) {
    unit.receive(telegram({{2, 1}, {3, 0x90}}));
    loop.advance(seconds(2));
    EXPECT_TRUE(unit.knock(1, 30));
    EXPECT_FALSE(unit.knock(17, 30));
    EXPECT_EQ(unit.pointer_steps(0), 130);
    unit.receive(telegram({}, 'A', 16));
    EXPECT_EQ(unit.recalibrations(), 1U);
    EXPECT_TRUE(unit.calibrating());
    loop.advance(milliseconds(40));
    unit.receive(telegram({}, 'F', 0));
    loop.advance(milliseconds(40));
    unit.receive(telegram({{2, 0}, {3, 0xC8}}));
    loop.advance(seconds(3));
    EXPECT_FALSE(unit.calibrating());
    EXPECT_EQ(unit.pointer_steps(0), 50);
}

TEST_F(Cluster, every_telegram_is_answered_with_the_version_unless_the_unit_is_faulty) {
    const std::string reply = std::string(1, '\xFF') + std::string(13, '\0') + "21";
    const auto answer = [&] {
        sent.clear();
        unit.receive(std::string(1, 'F') + std::string(37, '\0') + "\xAA\xAA");  // as the search for ports sends it
        loop.advance(milliseconds(100));
        return sent;
    };
    EXPECT_EQ(answer(), reply);
    struct Case {
        Fault fault;
        std::string expected;
    };
    for (const Case& one :
         {Case{Fault::mute, ""}, Case{Fault::drop_reply, ""}, Case{Fault::late_reply, ""},
          Case{Fault::half_report, reply.substr(0, 8)}, Case{Fault::corrupt_byte, reply.substr(0, 15) + "\x55"},
          Case{Fault::noise, "\x03\x7F\xC1" + reply}}) {
        unit.set_fault(one.fault);
        EXPECT_EQ(answer(), one.expected) << fault_name(one.fault);
        unit.set_fault(Fault::none);
        loop.advance(seconds(1));
    }
    unit.set_fault(Fault::drop_reply, 1);
    EXPECT_EQ(answer(), "");
    EXPECT_EQ(answer(), reply);
    unit.set_fault(Fault::deaf);
    const std::uint64_t frames = unit.statistics().frames_in;
    EXPECT_EQ(answer(), "");
    EXPECT_EQ(unit.statistics().frames_in, frames);
}

TEST_F(Cluster, telegrams_are_found_again_behind_noise_and_after_a_cut) {
    const std::string good = telegram({{2, 0}, {3, 40}});
    unit.receive("xyz");
    unit.receive(good.substr(0, 7));
    unit.receive(good.substr(7));
    EXPECT_EQ(unit.target_steps(0), 10);
    EXPECT_EQ(unit.statistics().stray_bytes, 3U);
    unit.receive(good.substr(0, 30));  // cut off; the next comes after a pause
    loop.advance(milliseconds(28));
    unit.receive(telegram({{2, 0}, {3, 80}}));
    EXPECT_EQ(unit.target_steps(0), 20);
    unit.receive(telegram({{2, 0}, {3, 120}, {40, 171}}));
    EXPECT_EQ(unit.target_steps(0), 20) << "a wrong end mark";
    EXPECT_EQ(unit.statistics().bad_frames, 2U);
    EXPECT_EQ(unit.statistics().frames_in, 2U);
}

TEST_F(Cluster, a_power_cycle_runs_the_needles_to_zero_and_blanks_the_displays) {
    unit.receive(telegram({{2, 0}, {3, 200}, {36, 75}, {37, 50}, {38, 0x30}, {39, 1}}));
    loop.advance(seconds(2));
    unit.power_cycle();
    EXPECT_TRUE(unit.calibrating());
    EXPECT_EQ(displays(), "    |    |    |    |");
    EXPECT_TRUE(unit.lights().lit());
    EXPECT_EQ(unit.lights().level(), 15);
    loop.advance(seconds(2));
    EXPECT_EQ(unit.pointer_steps(0), 0);
}

TEST(EngineClusterGauge, each_of_its_commands_moves_one_needle) {
    platform::manual::ManualLoop loop;
    EngineClusterGauge gauge(loop, {.type = 8});
    const std::vector<int> commands = {4, 5, 6, 9, 10, 11, 12, 13};
    for (int needle = 1; needle <= 8; ++needle) {
        gauge.take({commands[static_cast<std::size_t>(needle - 1)], 100 * needle});
    }
    loop.advance(seconds(3));
    const ReportBytes report = gauge.report(3);
    for (int needle = 1; needle <= 8; ++needle) {
        EXPECT_EQ(gauge.pointer_steps(needle), 100 * needle);
        const std::size_t at = 4 + 2 * static_cast<std::size_t>(needle);
        EXPECT_EQ(
            static_cast<unsigned char>(report.view()[at]) * 256 + static_cast<unsigned char>(report.view()[at + 1]),
            400 * needle);
    }
    gauge.take({4, 1080});
    gauge.take({5, -1});
    EXPECT_EQ(gauge.target_steps(1), 1079);
    EXPECT_EQ(gauge.target_steps(2), 0);
    EXPECT_EQ(gauge.bad_values(), 2);
    for (const int unknown : {0, 2, 14, 15}) {
        gauge.take({unknown, 1});
    }
    EXPECT_EQ(gauge.unknown_commands(), 4);
    gauge.take({3, 300});
    EXPECT_EQ(gauge.step_time_us(), 300);
    EXPECT_TRUE(gauge.knock(8, -50));
    EXPECT_EQ(gauge.pointer_steps(8), 750);
    gauge.take({1, 0});
    EXPECT_TRUE(gauge.calibrating());
    loop.advance(seconds(3));
    EXPECT_EQ(gauge.pointer_steps(8), 0);
}

class ClusterOnTheCockpit : public testing::Test {
  protected:
    ClusterOnTheCockpit() {
        fill_standard_tables(tables);
        tables.functions[40].FunctionShortName = "EGT";
        tables.functions[46].FunctionShortName = "Fuel";
        for (int plate = 1; plate <= 8; ++plate) {
            tables.plates.push_back(tables.plates[0]);
            tables.plates.back().PlateName = "plate " + std::to_string(plate);
        }
        tables.ClusterPort = 5;
        tables.cluster[0] = {1, 40, 1};
        tables.cluster[3] = {0, 46, 2};
        tables.cluster[4] = {1, 46, 3};
        tables.cluster[9].ClusterSetting1 = 2;
    }

    platform::manual::ManualLoop loop;
    tables::CoreTables tables;
};

TEST_F(ClusterOnTheCockpit, a_line_with_a_face_is_an_instrument_of_its_own) {
    const DeviceSet devices(loop, tables);
    CockpitView view(devices, [](int) { return true; });
    const std::string first = view.everything();
    EXPECT_NE(first.find(R"({"port":5,"role":"Engine cluster","simulated":true})"), std::string::npos) << first;
    EXPECT_NE(first.find(R"("key":"5.0","port":5,"id":0)"), std::string::npos);
    EXPECT_NE(first.find(R"("face":"engine_cluster","typeName":"Engine cluster")"), std::string::npos);
    const FacePrint& print = devices.print_of(*devices.line(5)->instrument);
    ASSERT_EQ(print.needles.size(), 16U);
    EXPECT_EQ(print.needles[0].title, "EGT");
    EXPECT_EQ(print.needles[0].plate, "plate 1");
    EXPECT_EQ(print.needles[8].sequence, 2);
    EXPECT_EQ(print.needles[11].plate, "plate 2");
    EXPECT_EQ(print.needles[1].title, "");
    const std::vector<int> shown_on = {print.needles[0].display, print.needles[8].display, print.needles[3].display,
                                       print.needles[4].display, print.needles[12].display};
    EXPECT_EQ(shown_on, (std::vector<int>{1, 2, 0, 3, 4}));

    view.changes();
    view.changes();
    std::string telegram(40, ' ');
    telegram.replace(0, 3, std::string("F\0\x28", 3));
    telegram.replace(37, 3, std::string("\0\0\xAA", 3));
    devices.line(5)->device->receive(telegram);
    loop.advance(milliseconds(90));
    const std::string changes = view.changes();
    EXPECT_NE(changes.find(R"("5.0":{"lit":false,"needle0":10})"), std::string::npos) << changes;
}

TEST_F(ClusterOnTheCockpit, the_bus_cluster_has_eight_plates_in_its_record) {
    tables::GaugeRow& row = tables.gauges[20];
    row.GaugeType = 8;
    row.GaugeClass1 = 1;
    row.GaugeSeqNr1 = 2;
    row.GaugePlate1 = 3 * 256 + 4;
    row.GaugeClass2 = 5;
    row.GaugeSeqNr2 = 6;
    row.GaugePlate2 = 7 * 256 + 8;
    const DeviceSet devices(loop, tables);
    const FacePrint& print = devices.print_of(*devices.bus_with(20)->device(20));
    EXPECT_STREQ(print.face, "engine_cluster_gauge");
    ASSERT_EQ(print.needles.size(), 8U);
    for (std::size_t needle = 0; needle < 8; ++needle) {
        EXPECT_EQ(print.needles[needle].plate, "plate " + std::to_string(needle + 1));
    }
    EXPECT_EQ(print.needles[1].title, "Fuel");
    EXPECT_EQ(print.needles[1].sequence, 2);
    EXPECT_EQ(print.needles[2].title, "EGT");
}

TEST_F(ClusterOnTheCockpit, commands_reach_a_unit_by_port_and_a_device_by_port_and_id) {
    const DeviceSet devices(loop, tables);
    BenchCommands commands(devices, {.unplug = [](int) {}, .plug = [](int) {}, .quit = [] {}});
    struct Case {
        const char* line;
        const char* answer;
    };
    for (const Case& one :
         {Case{"fault 5.0 mute", "ok"}, Case{"late_reply 1.3 2", "ok"}, Case{"knock 5.0 16 -30", "ok"},
          Case{"knock 5.0 17 1", "there is no such needle"}, Case{"noise 5", "ok"}, Case{"power 5", "ok"},
          Case{"turn 5.0 knob 1", "the device has no control knob"},
          Case{"fault 5.1 mute", "there is no device with the id 5.1"},
          Case{"fault 1.77 mute", "there is no device with the id 1.77"},
          Case{"fault 0 mute", "there is no device with the id 0"},
          Case{"fault 7.0 mute", "there is no device with the id 7.0"},
          Case{"turn . knob 1", "there is no device with the id ."}}) {
        EXPECT_EQ(commands.carry_out(one.line), one.answer) << one.line;
    }
    EXPECT_EQ(devices.line(5)->instrument->fault(), Fault::mute);
    EXPECT_EQ(devices.line(1)->bus->fault(3), Fault::late_reply);
}

}  // namespace
}  // namespace bench
