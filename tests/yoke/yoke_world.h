#pragma once

#include "tests/run/run_world.h"
#include "yoke/frm_force_curve.h"
#include "yoke/frm_status_ffb.h"

namespace yoke_test {

inline constexpr int kFirstWire = 7;
inline constexpr int kSecondWire = 8;

// A run panel with both yokes beside it, whose ends of the lines are in the test's hand. The yoke functions hold 64-bit
// floats without scaling. Settings are those of a yoke as it is delivered, but for what a test changes.
struct YokeWorld : run_test::RunWorld {
    platform::manual::Wire& line1 = machine.serial_ports.wire(kFirstWire);
    platform::manual::Wire& line2 = machine.serial_ports.wire(kSecondWire);
    yoke::YokeParts parts{platform, tables, sim_com, ports, panels, status};
    yoke::YokeRoles roles;
    yoke::frmConfigY1 yoke1{parts, roles};
    yoke::frmConfigY2 yoke2{parts, roles};
    yoke::frmStatusFFB both{parts, roles, yoke1, yoke2};
    yoke::frmForceCurve curve{platform, tables, panels};

    YokeWorld() {
        panels.add(yoke1);
        panels.add(yoke2);
        panels.add(both);
        panels.add(curve);
        status.set_participant(run::ParticipantPlace::yokes, &both);
        tables.YokePort1 = kFirstWire;
        for (int function = 190; function <= 207; ++function) {
            define_function(function);
        }
        for (tables::YokeSettings& settings : tables.yokes) {
            set_up(settings);
        }
        set_linear_curve(tables.yoke_common.AileronForceCurve, 4);
        set_linear_curve(tables.yoke_common.ElevatorForceCurve, 4);
        tables.yoke_common.ModeSlaveToMasterY1 = yoke::kForceFeedback;
        tables.yoke_common.ModeSlaveToMasterY2 = yoke::kForceFeedback;
        tables.yoke_common.ModeMasterToSlaveY1 = yoke::kServo;
        tables.yoke_common.ModeMasterToSlaveY2 = yoke::kServo;
        tables.yoke_common.AutoSwitchForce = 50;
        tables.yoke_common.AutoSwitchTime = 5;
    }
    ~YokeWorld() { status.set_participant(run::ParticipantPlace::yokes, nullptr); }

    static void set_up(tables::YokeSettings& settings) {
        settings.StandbyTime = 600;
        settings.StandbyThreshold = 2;
        settings.ForceThresholdAilerons = settings.ForceThresholdElevator = 2;
        settings.DeadbandAilerons = 4;
        settings.DeadbandElevator = 5;
        settings.SensitivityCenterAilerons = 50;
        settings.SensitivityCenterElevator = 25;
        settings.MaxForceCenterAilerons = 100;
        settings.MaxForceCenterElevator = 90;
        settings.MaxForceFFBAilerons = 80;
        settings.MaxForceFFBElevator = 70;
        settings.MaxForceFollowAPAilerons = 60;
        settings.MaxForceFollowAPElevator = 50;
        settings.MaxForceServoAilerons = 40;
        settings.MaxForceServoElevator = 30;
        settings.FFBEffectAilerons = 50;
        settings.FFBEffectElevator = 100;
        settings.SensitivityFollowAPAilerons = 25;
        settings.SensitivityFollowAPElevator = 20;
        settings.SensitivityServoAilerons = 50;
        settings.SensitivityServoElevator = 40;
        settings.SwingAPAilerons = settings.SwingAPElevator = 50;
        settings.APOverruleForce = 20;
        settings.APOverruleTime = 25;
        settings.TrimSwitchSpeed = 20;
        settings.SlaveFollowsMaster = 1;
        settings.YokeSwitchFunctions[0] = tables::kYokeSwitchMark;
        settings.YokeCalibration = {0, 1023, 0, 1023};
        tables::derive_yoke_axes(settings);
    }
    static void set_linear_curve(tables::ForceCurve& curve, float hundred_knots) {
        for (int point = 0; point <= 10; ++point) {
            curve[static_cast<std::size_t>(point)] = {static_cast<float>(800 + 1000 * point),
                                                      static_cast<float>(5500 - 500 * point)};
        }
        curve[12].airspeed = hundred_knots;
    }

    tables::YokeSettings& settings() { return tables.yokes[0]; }

    // Starts a run; yoke 1 is the master in that mode.
    void start(int mode) {
        tables.yoke_common.ModeSlaveToMasterY1 = static_cast<std::uint8_t>(mode);
        status.cmdRun_Click();
        line1.written.clear();
        line2.written.clear();
    }
    // The same, until the forces have risen.
    void start_and_ramp(int mode) {
        start(mode);
        tick(110);
        line1.written.clear();
        line2.written.clear();
    }
    // Sets a yoke function's value and lets it arrive.
    void set_ffb(int number, double value) {
        set_value(190 + number, value);
        advance(20);
    }
    double ffb(int number) const { return value_of(190 + number); }
    // A telegram: raw positions, force words, closed switches.
    struct Telegram {
        int ailerons = 512;
        int elevator = 512;
        int ailerons_force = 0;
        int elevator_force = 0;
        int switches = 0;
        int type = 3;
    };
    // The run panel reads it, and the yokes take it from there.
    void set_airspeed(double knots) {
        set_value(2, knots);
        tick(3);
    }
    // Answers every tick, as a yoke does.
    void keep_answering(int ticks, const Telegram& telegram) {
        for (int count = 0; count < ticks; ++count) {
            answer(telegram);
        }
    }

    static std::string bytes_of(const Telegram& telegram) {
        std::string bytes(yoke::kStatusLength, '\0');
        const auto put = [&bytes](int number, int value) {
            bytes[static_cast<std::size_t>(number - 1)] = static_cast<char>(value);
        };
        const auto put_word = [&put](int number, int value) {
            put(number, value >> 8);
            put(number + 1, value);
        };
        const auto word = [](int force) { return force >= 0 ? force : 0x8000 | (force + 32767); };
        put(4, telegram.type);
        put_word(7, telegram.ailerons);
        put(9, 'P');
        put_word(10, telegram.elevator);
        put(12, 'S');
        put_word(13, telegram.switches);
        put_word(16, word(telegram.ailerons_force));
        put_word(18, word(telegram.elevator_force));
        return bytes;
    }
    // Arrives right behind a command, as a yoke answers.
    void answer(const Telegram& telegram) { answer_on(line1, telegram); }
    void answer_on(platform::manual::Wire& line, const Telegram& telegram) {
        const int writes = line.writes;
        for (int wait = 0; wait < 45 && line.writes == writes; ++wait) {
            advance(1);
        }
        line.deliver(bytes_of(telegram));
        advance(10);
    }

    // The commands on a line since the last call.
    std::vector<yoke::YokeCommand> take_commands(platform::manual::Wire& line) {
        std::vector<yoke::YokeCommand> commands;
        const std::string bytes = std::exchange(line.written, {});
        EXPECT_EQ(bytes.size() % 13, 0U);
        for (std::size_t at = 0; at + 13 <= bytes.size(); at += 13) {
            const auto command = yoke::decode_yoke_command(std::string_view(bytes).substr(at, 12));
            EXPECT_TRUE(command && command->device == 15 && bytes[at + 12] == '\xFF');
            commands.push_back(command.value_or(yoke::YokeCommand{}));
        }
        return commands;
    }
    // The last of the next ticks.
    yoke::YokeCommand next_command(int ticks = 1) {
        line1.written.clear();
        tick(ticks);
        const std::vector<yoke::YokeCommand> commands = take_commands(line1);
        return commands.empty() ? yoke::YokeCommand{} : commands.back();
    }
};

inline yoke::YokeCommand command(int number, int value1 = 0, int value2 = 0, int value3 = 0, int value4 = 0) {
    return {15, number, {value1, value2, value3, value4}};
}

}  // namespace yoke_test

namespace yoke {
inline std::ostream& operator<<(std::ostream& out, const YokeCommand& command) {
    out << "command " << command.command << ":";
    for (const int value : command.values) {
        out << " " << value;
    }
    return out;
}
}  // namespace yoke
