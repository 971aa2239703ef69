#include "bench/device_set.h"

#include <gtest/gtest.h>

#include <cmath>

#include "bench/bench_commands.h"
#include "bench/cockpit_view.h"
#include "bench/devices/device_families.h"
#include "bench/devices/needle_gauges.h"
#include "bench/json_writer.h"
#include "platform/manual/manual_loop.h"

namespace bench {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class Set : public testing::Test {
  protected:
    Set() {
        fill_standard_tables(tables);
        tables.gauges[17].GaugeType = 7;
        tables.gauges[17].GaugeModel = 3;
        tables.GaugeBusPort2 = 4;
        tables.plates[0].PlateName = "0-100 \xB0";
    }

    platform::manual::ManualLoop loop;
    tables::CoreTables tables;
};

TEST_F(Set, holds_what_the_configuration_names) {
    const DeviceSet devices(loop, tables);
    ASSERT_EQ(devices.lines().size(), 2U);
    BusController& bus = *devices.line(1)->bus;
    for (int type = 1; type <= 6; ++type) {
        ASSERT_NE(bus.device(type), nullptr);
        EXPECT_EQ(bus.device(type)->identity().type, type);
        EXPECT_NE(dynamic_cast<NeedleGauge*>(bus.device(type)), nullptr);
    }
    EXPECT_EQ(bus.device(17)->identity().model, 3);
    EXPECT_EQ(bus.device(18), nullptr);
    EXPECT_EQ(devices.line(4)->bus, nullptr);
    EXPECT_EQ(devices.bus_with(17), &bus);
    EXPECT_EQ(devices.bus_with(18), nullptr);

    const FacePrint& print = devices.print_of(*bus.device(5));
    EXPECT_STREQ(print.face, "needle_gauge");
    EXPECT_EQ(print.needles[0].title, "Percent");
    EXPECT_EQ(print.needles[1].sequence, 2);
    ASSERT_EQ(print.needles[0].points.size(), 2U);
    EXPECT_EQ(print.needles[0].points[1].value, 100);
    EXPECT_EQ(print.needles[0].points[1].position, 945);
}

TEST_F(Set, survives_rows_that_point_nowhere) {
    tables.gauges[3].GaugeFunction1 = 9999;
    tables.gauges[3].GaugePlate1 = 77;
    tables.gauges[3].GaugeFunction2 = -5;
    tables.gauges[3].GaugePlate2 = -1;
    tables.plates[0].PlateValue[1] = 1e9;  // points
    tables.GaugeBusPort3 = 1;              // the number of the first line again
    const DeviceSet devices(loop, tables);
    const FacePrint& print = devices.print_of(*devices.line(1)->bus->device(3));
    EXPECT_EQ(print.needles[0].title, "");
    EXPECT_TRUE(print.needles[0].points.empty());
    EXPECT_EQ(devices.lines().size(), 2U);
    tables.plates[0].PlateValue[1] = std::nan("");
    const DeviceSet again(loop, tables);
    EXPECT_EQ(again.print_of(*again.line(1)->bus->device(1)).needles[0].points.size(), 2U);
}

TEST_F(Set, every_type_has_one_row_and_makes_a_device_that_says_so) {
    int last = 0;
    for (const DeviceFamily& family : device_families()) {
        EXPECT_GT(family.type, last);
        last = family.type;
        EXPECT_EQ(family.create(loop, {.type = family.type})->identity().type, family.type);
    }
    EXPECT_EQ(device_family(77).create(loop, {.type = 77})->report(4).view()[2], 77);
}

TEST_F(Set, pages_are_told_everything_once_and_then_what_changes) {
    const DeviceSet devices(loop, tables);
    bool plugged = true;
    CockpitView view(devices, [&plugged](int) { return plugged; });
    const std::string first = view.changes();
    EXPECT_NE(first.find(R"({"type":"layout","lines":[{"port":1,"role":"Gauge bus","simulated":true},{"port":4,)"),
              std::string::npos);
    EXPECT_NE(first.find(R"("plate":"0-100 \u00b0","points":[[0,0],[100,945]])"), std::string::npos);
    EXPECT_NE(first.find(R"("1.17":{"fault":"none","lit":true,"level":15,"power":true,"commands":0})"),
              std::string::npos);
    view.changes();
    EXPECT_EQ(view.changes(), "");

    BusController& bus = *devices.line(1)->bus;
    bus.device(2)->take({3, 2000});
    bus.device(2)->take({5, 100});
    loop.advance(milliseconds(20));
    EXPECT_EQ(view.changes(), R"({"type":"values","deviceValues":{"1.2":{"pointer1":10}}})");
    loop.advance(milliseconds(20));
    // A page that joins now must not keep the others from hearing of this change.
    EXPECT_NE(view.everything().find(R"("pointer1":20)"), std::string::npos);
    EXPECT_EQ(view.changes(), R"({"type":"values","deviceValues":{"1.2":{"pointer1":20}}})");
    bus.device(1)->take({8, 15});
    plugged = false;
    loop.advance(seconds(1));
    EXPECT_EQ(view.changes(), R"({"type":"values","lineValues":{"1":{"plugged":false},"4":{"plugged":false}},)"
                              R"("deviceValues":{"1.1":{"lit":false,"power":false},"1.2":{"pointer1":100}}})");
    std::string change;
    bus::append_change_id_frame(change, 2, 40);
    bus.receive(change);
    EXPECT_NE(view.changes().find(R"("key":"1.40")"), std::string::npos);
}

TEST(JsonWriter, writes_any_bytes_and_numbers_as_valid_json) {
    JsonWriter writer;
    writer.begin_array().value("a\"b\\c\n\x80\xE9").value(-0.5).value(1e300).value(std::nan("")).value(12.34567);
    writer.begin_object().name("x").value(true).name("y").begin_array().end_array().end_object().end_array();
    EXPECT_EQ(writer.text(), R"(["a\"b\\c\u000a\u20ac\u00e9",-0.5,1e+300,null,12.346,{"x":true,"y":[]}])");
}

TEST_F(Set, commands_set_faults_and_say_what_they_do_not_understand) {
    const DeviceSet devices(loop, tables);
    std::string done;
    BenchCommands commands(devices, {.unplug = [&](int port) { done += "unplug " + std::to_string(port); },
                                     .plug = [&](int port) { done += "plug " + std::to_string(port); },
                                     .quit = [&] { done += "quit"; }});
    BusController& bus = *devices.line(1)->bus;
    struct Case {
        const char* line;
        const char* answer;
    };
    const std::vector<Case> cases = {
        {"fault 5 corrupt_byte 3", "ok"},
        {"  mute   17 ", "ok"},
        {"knock 5 2 -30", "ok"},
        {"power 1", "ok"},
        {"noise 1 2", "ok"},
        {"unplug 1", "ok"},
        {"plug 4", "ok"},
        {"quit", "ok"},
        {"", ""},
        {"unplug 9", "there is no line 9"},
        {"noise 4", "there is no line 4"},
        {"mute 18", "there is no device with the id 18"},
        {"fault 5 tired", "there is no fault tired"},
        {"fault 5 mute 0", "replies are a number above 0"},
        {"knock 1 2 5", "there is no such needle"},
        {"knock 5 1 99999", "steps are -1080 to 1080"},
        {"turn 5 knob 1", "the device has no control knob"},
        {"unplug 99999999999999", "there is no line 99999999999999"},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(commands.carry_out(one.line), one.answer) << one.line;
    }
    EXPECT_EQ(done, "unplug 1plug 4quit");
    EXPECT_EQ(bus.fault(5), Fault::corrupt_byte);
    EXPECT_EQ(bus.fault(17), Fault::mute);
    EXPECT_EQ(bus.statistics().bytes_out, 10U);
    EXPECT_NE(commands.carry_out("help").find("unplug PORT"), std::string::npos);
    EXPECT_NE(commands.carry_out("explode").find("no such command"), std::string::npos);
    EXPECT_NE(commands.carry_out("unplug").find("unplug PORT"), std::string::npos);
    EXPECT_NE(commands.carry_out("mute 17 3 4 5").find("help"), std::string::npos);
    EXPECT_EQ(commands.carry_out(std::string(300, 'x')), "the command is too long");
}

}  // namespace
}  // namespace bench
