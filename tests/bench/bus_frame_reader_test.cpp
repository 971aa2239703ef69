#include "bench/devices/bus_frame_reader.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "bus/frames.h"

namespace bench {
namespace {

using Found = BusFrameReader::Found;
using Bytes = std::vector<int>;

// What the reader finds in the bytes, padding and incomplete frames left out.
struct Finding {
    Found kind;
    int id = 0;
    int command_or_new_id = 0;
    int value = 0;
    bool operator==(const Finding&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Finding& finding) {
    return out << "kind " << static_cast<int>(finding.kind) << " id " << finding.id << " command or new id "
               << finding.command_or_new_id << " value " << finding.value;
}

std::vector<Finding> read(const Bytes& bytes) {
    BusFrameReader reader;
    std::vector<Finding> found;
    for (const int byte : bytes) {
        const Found kind = reader.take(static_cast<std::uint8_t>(byte));
        if (kind == Found::command) {
            found.push_back({kind, reader.id(), reader.command().number, reader.command().value});
        } else if (kind == Found::identify) {
            found.push_back({kind, reader.id()});
        } else if (kind == Found::change_id) {
            found.push_back({kind, reader.id(), reader.new_id()});
        } else if (kind != Found::nothing) {
            found.push_back({kind});
        }
    }
    return found;
}

struct GoldenFrame {
    int id;
    int command;
    int value;
    Bytes bytes;
};

// The same bytes that the program must send: one mistake cannot hide in both ends.
const std::vector<GoldenFrame> kGolden = {
    {17, 5, 300, {0, 17, 88, 45, 3, 255}},
    {1, 12, -2, {0, 1, 204, 3, 2, 255}},
    {9, 1, 0, {0, 9, 24, 1, 2, 255}},
    {9, 5, 255, {0, 9, 89, 255, 2, 255}},
    {9, 5, 256, {0, 9, 88, 1, 3, 255}},
    {9, 5, 514, {0, 9, 90, 3, 2, 255}},
    {9, 5, 1, {0, 9, 89, 1, 2, 255}},
    {9, 5, -1, {0, 9, 93, 1, 2, 255}},
    {255, 15, 65535, {0, 255, 251, 255, 255, 255}},
    {255, 15, -65535, {0, 255, 255, 255, 255, 255}},
    {2, 6, 0x45A6, {0, 2, 104, 167, 71, 255}},
    {40, 8, 192, {0, 40, 136, 193, 2, 255}},
    {40, 7, 2, {0, 40, 120, 3, 2, 255}},
};

TEST(BusFrameReader, reads_the_golden_frames) {
    for (const GoldenFrame& golden : kGolden) {
        EXPECT_EQ(read(golden.bytes),
                  (std::vector<Finding>{{Found::command, golden.id, golden.command, golden.value}}));
    }
    EXPECT_EQ(read({0, 5, 44, 9, 170, 255}), (std::vector<Finding>{{Found::change_id, 5, 9}}));
    EXPECT_EQ(read({0, 5, 44, 8, 170, 255}), (std::vector<Finding>{{Found::change_id, 5, 8}}));
    EXPECT_EQ(read({0, 5, 124, 128, 170, 255}), (std::vector<Finding>{{Found::identify, 5}}));
}

TEST(BusFrameReader, the_program_sends_the_golden_frames) {
    for (const GoldenFrame& golden : kGolden) {
        std::string sent;
        bus::append_frame(sent, golden.id, golden.command, golden.value);
        EXPECT_EQ(sent, std::string(golden.bytes.begin(), golden.bytes.end())) << "value " << golden.value;
    }
}

TEST(BusFrameReader, understands_every_value_that_the_program_can_send) {
    BusFrameReader reader;
    std::string sent;
    for (int value = -65535; value <= 65535; ++value) {
        sent.clear();
        bus::append_frame(sent, 200, 11, value);
        Found last = Found::nothing;
        for (const char byte : sent) {
            last = reader.take(static_cast<std::uint8_t>(byte));
        }
        ASSERT_EQ(last, Found::command) << value;
        ASSERT_EQ(reader.command().value, value);
    }
}

TEST(BusFrameReader, finds_the_next_frame_after_anything) {
    const Finding good = {Found::command, 17, 5, 300};
    struct Case {
        const char* what;
        Bytes before;
        std::vector<Finding> found;
    };
    const std::vector<Case> cases = {
        {"padding", {255, 255, 255}, {}},
        {"garbage", {3, 70, 255}, {{Found::stray_byte}, {Found::stray_byte}}},
        {"a frame without its end", {0, 17, 88, 45, 3}, {{Found::broken}}},
        {"a frame with a lost byte and padding in its place", {0, 17, 45, 3, 255, 255}, {{Found::bad_frame}}},
        {"a frame with a byte too many", {0, 17, 88, 88, 45, 3, 255}, {{Found::bad_frame}}},
        {"a start byte alone", {0}, {{Found::broken}}},
        {"a row of start bytes", {0, 0, 0}, {{Found::broken}, {Found::broken}, {Found::broken}}},
        {"a control byte without its mark", {0, 17, 80, 45, 3, 255}, {{Found::bad_frame}}},
        {"an even low byte", {0, 17, 88, 44, 3, 255}, {{Found::bad_frame}}},
        {"a high byte without its fill bit", {0, 17, 88, 45, 1, 255}, {{Found::bad_frame}}},
        {"a telegram for a yoke",
         {0, 15, 135, 128, 128, 128, 128, 128, 128, 128, 128, 255},
         {{Found::bad_frame},
          {Found::stray_byte},
          {Found::stray_byte},
          {Found::stray_byte},
          {Found::stray_byte},
          {Found::stray_byte}}},
    };
    for (const Case& one : cases) {
        Bytes bytes = one.before;
        for (const int byte : {0, 17, 88, 45, 3, 255}) {
            bytes.push_back(byte);
        }
        std::vector<Finding> expected = one.found;
        expected.push_back(good);
        EXPECT_EQ(read(bytes), expected) << one.what;
    }
}

}  // namespace
}  // namespace bench
