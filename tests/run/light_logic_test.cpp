#include "run/light_logic.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

// A fresh set of tables with the lights by switch, as they stand after a start.
struct LightLogic : testing::Test {
    std::unique_ptr<tables::CoreTables> held = std::make_unique<tables::CoreTables>();
    tables::CoreTables& tables = *held;
    std::int16_t BrightnessByte = 0;
    run::ClusterState cluster;

    LightLogic() { tables.LightMask = 32; }
    void tick() { run::update_lights(tables, BrightnessByte, cluster); }
};

TEST_F(LightLogic, a_switch_of_the_mask_lights_the_gauges_only_above_nine_volts) {
    struct Case {
        float volts;
        int light_byte;
    };
    for (const Case& expected : {Case{9.0F, 128}, Case{9.01F, 192}, Case{28.0F, 192}}) {
        *held = tables::CoreTables{};
        tables.LightMask = 32;
        tables.MainBusVoltage = tables.MainBusVoltageSeen = expected.volts;
        tables.LightSwitches = 32 + 1;
        tick();
        EXPECT_EQ(tables.LightChange, 1);
        EXPECT_EQ(tables.LightsOn, 32);
        EXPECT_EQ(tables.MainBusLightByte, expected.light_byte) << expected.volts;
        tick();
        EXPECT_EQ(tables.LightChange, 0) << "an unchanged switch is no change";
    }
}

TEST_F(LightLogic, a_switch_outside_the_mask_changes_nothing) {
    tables.LightSwitches = 1;
    tick();
    EXPECT_EQ(tables.LightChange, 0);
    tables.LightMask = 63;
    tick();
    EXPECT_EQ(tables.LightChange, 1);
}

TEST_F(LightLogic, exactly_eight_volts_count_as_power) {
    struct Case {
        float volts;
        int light_byte;
        int change;
    };
    for (const Case& step : {Case{7.9F, 0, 0}, Case{8.0F, 128, 1}, Case{8.1F, 128, 0}, Case{7.99F, 0, 1}}) {
        tables.MainBusVoltage = step.volts;
        tick();
        EXPECT_EQ(tables.MainBusLightByte, step.light_byte) << step.volts;
        EXPECT_EQ(tables.LightChange, step.change) << step.volts;
    }
    tables.LightsOn = 32;
    tables.LightSwitches = 32;
    tables.MainBusVoltage = 8.5F;
    tick();
    EXPECT_EQ(tables.MainBusLightByte, 192) << "lights that are switched on come with the power";
}

TEST_F(LightLogic, both_buses_coming_up_count_as_two_changes) {
    tables.MainBusVoltage = tables.AvionicsBusVoltage = 28;
    tick();
    EXPECT_EQ(tables.LightChange, 2);
    EXPECT_EQ(tables.AvionicsLightByte, 128);
}

TEST_F(LightLogic, the_dimmer_acts_beyond_its_deadband_and_in_levels) {
    struct Case {
        int dimmer;
        int brightness;
        int seen;
        int change;
    };
    // 64 units a level, rounded to the nearest, ties to even; 20 units of play.
    for (const Case& step : {Case{20, 0, 0, 0}, Case{21, 0, 21, 0}, Case{96, 16 + 2, 96, 1}, Case{110, 16 + 2, 96, 0},
                             Case{160, 16 + 2, 160, 0}, Case{960, 16 + 15, 960, 1}, Case{0, 16, 0, 1}}) {
        tables.MacroValue = static_cast<std::int16_t>(step.dimmer);
        tick();
        EXPECT_EQ(BrightnessByte, step.brightness) << step.dimmer;
        EXPECT_EQ(tables.DimmerSeen, step.seen) << step.dimmer;
        EXPECT_EQ(tables.LightChange, step.change) << step.dimmer;
    }
    EXPECT_EQ(cluster.ClusterBrightnessFlag, 1);
    tables.MacroValue = 640;
    tick();
    EXPECT_EQ(cluster.ClusterBrightness, 160);
}

TEST_F(LightLogic, the_extremes_of_the_dimmer_do_no_harm) {
    for (const int dimmer : {32767, -32768, 32767}) {
        tables.MacroValue = static_cast<std::int16_t>(dimmer);
        tick();
        EXPECT_EQ(tables.DimmerSeen, dimmer);
    }
}

TEST_F(LightLogic, modes_without_switches_are_left_alone_and_always_off_sends_nothing) {
    for (const int mode : {run::kLightsAlwaysOn, run::kLightsAlwaysOff}) {
        tables.LightMode = static_cast<std::int16_t>(mode);
        tables.LightSwitches = 32;
        tables.MainBusVoltage = 28;
        tables.MacroValue = 640;
        tick();
        EXPECT_EQ(tables.LightChange, 0);
        EXPECT_EQ(tables.MainBusLightByte, 0);
        EXPECT_EQ(BrightnessByte, 0);
    }
    tables.LightChange = 1;  // left over from another mode
    EXPECT_FALSE(run::light_frames_due(tables));
}

TEST_F(LightLogic, a_device_on_a_dead_avionics_bus_goes_dark) {
    run::ActiveGauge radio;
    radio.OnAvionicsBus = 1;
    tables.MainBusLightByte = 192;
    EXPECT_EQ(run::light_value(tables, radio, 0x15), 0x15);
    EXPECT_EQ(run::light_value(tables, run::ActiveGauge{}, 0x15), 192 + 0x15);
    tables.AvionicsLightByte = 128;
    EXPECT_EQ(run::light_value(tables, radio, 0), 192);
    tables.AvionicsLightByte = 0;
    tables.LightMode = run::kLightsAlwaysOn;
    EXPECT_EQ(run::light_value(tables, radio, 0), 192);
}

}  // namespace
