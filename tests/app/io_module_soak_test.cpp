// Hours at the boards of both modules: hands on every switch, encoder and potentiometer, LEDs that follow the
// simulator, and lines that fail in every way. What must come of it is worked out here, from the rows alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "tests/app/io_board.h"

namespace {

using namespace iom_test;
using std::chrono::hours;
using std::chrono::minutes;

#ifdef NDEBUG
constexpr platform::Duration kLength = hours(10);
#else
constexpr platform::Duration kLength = minutes(12);  // the builds that look for faults take ten times as long
#endif

// A way in which one line fails, for some seconds.
using Fault = std::function<void(Board&, int step)>;

std::vector<Fault> line_faults() {
    const auto once = [](auto change) {
        return [change](Board& board, int step) {
            if (step == 0) {
                change(board);
            }
        };
    };
    const auto storm = [](Board& board, int) {
        for (int burst = 0; burst < 6; ++burst) {
            std::string noise(board.random(60), '\0');
            for (char& byte : noise) {
                byte = board.random(3) == 0 ? '\0' : static_cast<char>(board.random(256));
            }
            board.line.deliver(noise);
        }
    };
    return {
        once([](Board& board) { board.line.faults.noise_to_program = 0.02; }),
        once([](Board& board) { board.line.faults.loss_to_program = 0.05; }),
        once([](Board& board) { board.line.faults.loss_to_device = 0.02; }),
        once([](Board& board) { board.line.faults.noise_to_device = 0.02; }),
        once([](Board& board) {
            board.line.faults.loss_to_device = board.line.faults.loss_to_program = 0.3;
            board.line.faults.noise_to_device = board.line.faults.noise_to_program = 0.3;
        }),
        once([](Board& board) { board.line.unplug(); }),
        once([](Board& board) { board.model.set_fault(bench::Fault::deaf); }),
        once([](Board& board) { board.model.set_fault(bench::Fault::half_report); }),
        once([](Board& board) { board.model.set_fault(bench::Fault::late_reply); }),
        once([](Board& board) { board.model.set_fault(bench::Fault::noise); }),
        storm,
        [](Board& board, int step) { step % 2 == 0 ? board.line.send_break() : board.line.send_framing_error(); },
        [](Board& board, int step) { step % 3 == 0 ? board.line.unplug() : board.line.plug(); },
        [](Board& board, int step) {
            if (step % 4 == 0) {
                board.model.power_cycle();
            }
        },
        // A hand stops the module and starts it: every switch acts as it stands.
        [](Board& board, int step) {
            if (step % 8 == 0) {
                board.panel.cmdStop_Click();
            } else if (step % 8 == 5) {
                board.panel.cmdRun_Click();
            }
        },
    };
}

class IomSoak : public testing::Test {
  protected:
    IomSoak() {
        world.tables.IomPort2 = iom_test::kSecondWire;
        world.add_gauge(1, 1, 2);
        world.space->write_f64(IomWorld::offset(world.function(9), 1), 28);
        world.server.on_write = [this](std::uint32_t offset, std::uint32_t) { ++writes[offset & 0xFFFFU]; };
        world.start();
        for (Board* board : boards) {
            board->flip(0);  // one that is on makes all act
            for (int input = 0; input < iomodule::kAnalogueInputs; ++input) {
                board->slide(input, 100);
            }
        }
        world.advance(200);
        for (Board* board : boards) {
            board->begin_anew();
        }
    }

    // Some seconds of hands at both boards and a changing aircraft; one of the lines may fail meanwhile.
    void play(Board* failing, const Fault& fault) {
        const int steps = 20 + static_cast<int>(world.machine.random.next() % 40);
        for (int step = 0; step < steps; ++step) {
            if (failing != nullptr) {
                fault(*failing, step);
            }
            for (Board* board : boards) {
                for (int hand = 0; hand < 3; ++hand) {
                    board->do_something();
                }
                board->move_sliders();
                if (step % 5 == 0) {
                    board->change_some_leds();
                }
            }
            world.advance(110 + static_cast<int>(world.machine.random.next() % 40));
        }
    }
    void expect_the_counts_of(const Board& board, const std::string& moment) {
        for (int function = 0; function < kLedFunction; ++function) {
            if (function < kBitFunction || function >= kInputFunction) {
                const std::uint32_t offset = IomWorld::offset(world.function(board.first + function), 1);
                EXPECT_EQ(writes[offset], board.writes_expected[static_cast<std::size_t>(function)])
                    << moment << ", module " << board.id() << ", function " << function;
            }
        }
    }
    void expect_the_bus_to_go_on(int round) {
        const int position = (round * 37 + 1) % 1000;
        world.wire.written.clear();
        world.set_value(2, position);
        world.advance(150);
        EXPECT_EQ(world.take_values(1, bus::kCommandNeedle1), std::vector<int>{position}) << "round " << round;
        EXPECT_TRUE(world.status.running());
    }

    IomWorld world;
    Board first{world, world.module1, world.line1, 0};
    Board second{world, world.module2, world.line2, 1};
    std::array<Board*, 2> boards = {&first, &second};
    std::vector<int> writes = std::vector<int>(simhost::kOffsetSpaceBytes);  // by offset
};

TEST_F(IomSoak, hours_of_hands_and_faults_leave_every_function_and_every_led_as_the_rows_say) {
    const std::vector<Fault> faults = line_faults();
    const platform::TimePoint end = world.machine.loop.now() + kLength;
    std::size_t next_fault = 0;
    long clicks_and_actions = 0;
    int round = 0;
    for (; world.machine.loop.now() < end && !HasFailure(); ++round) {
        // Every third round a line fails: each way on each module.
        const bool fails = round % 3 == 2;
        Board* const failing = fails ? boards[next_fault / faults.size() % 2] : nullptr;
        const std::size_t kind = next_fault % faults.size();
        next_fault += fails ? 1 : 0;
        const std::string moment =
            "round " + std::to_string(round) + (fails ? ", fault " + std::to_string(kind) : std::string());
        std::fill(writes.begin(), writes.end(), 0);
        for (Board* board : boards) {
            board->writes_expected.fill(0);
            board->keys_expected = 0;
            board->noise = static_cast<int>(board->random(kMostNoise + 1));
            board->model.set_noise(board->noise);
        }
        world.set_value(9, round % 5 == 4 ? 7.5 : 28);
        play(failing, faults[kind]);
        world.advance(9 * kClickMs);
        for (Board* board : boards) {
            if (board != failing) {
                expect_the_counts_of(*board, moment);
            }
        }
        if (fails) {
            failing->heal();
        } else {
            EXPECT_EQ(writes[simlink::kOffsetControlParameter], first.keys_expected + second.keys_expected) << moment;
        }
        for (Board* board : boards) {
            board->change_leds();
        }
        world.advance(300);
        for (Board* board : boards) {
            board->expect_right(moment);
            for (const int count : board->writes_expected) {
                clicks_and_actions += board == failing ? 0 : count;
            }
        }
        expect_the_bus_to_go_on(round);
    }
    // A module that sends half telegrams is asked about once in a run.
    for (const std::string& box : world.machine.boxes.shown()) {
        EXPECT_NE(box.find("processing: the input from the IO module"), std::string::npos) << box;
    }
    EXPECT_GE(next_fault, faults.size());
    RecordProperty("rounds", round);
    RecordProperty("writes_accounted_for", static_cast<int>(clicks_and_actions));
    RecordProperty("boxes", static_cast<int>(world.machine.boxes.shown().size()));
}

}  // namespace
