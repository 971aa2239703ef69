#include "bus/frames.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

#include "support/failure.h"

namespace {

std::string bytes_of(const std::vector<int>& values) {
    std::string bytes;
    for (const int value : values) {
        bytes.push_back(static_cast<char>(value));
    }
    return bytes;
}

std::string frame_of(int gauge_id, int command, double value) {
    std::string buffer;
    bus::append_frame(buffer, gauge_id, command, value);
    return buffer;
}

TEST(Frames, a_value_frame_has_its_golden_bytes) {
    struct Case {
        int gauge_id;
        int command;
        double value;
        std::vector<int> bytes;
    };
    const std::vector<Case> cases = {
        {17, 5, 300, {0, 17, 88, 45, 3, 255}},
        {9, 12, -2, {0, 9, 204, 3, 2, 255}},
        {1, 5, 0, {0, 1, 88, 1, 2, 255}},
        {1, 5, 1, {0, 1, 89, 1, 2, 255}},
        {1, 5, -1, {0, 1, 93, 1, 2, 255}},
        {1, 5, 255, {0, 1, 89, 255, 2, 255}},
        {1, 5, 256, {0, 1, 88, 1, 3, 255}},
        {1, 5, 514, {0, 1, 90, 3, 2, 255}},
        {255, 8, 192, {0, 255, 136, 193, 2, 255}},
        {1, 15, 65535, {0, 1, 251, 255, 255, 255}},
        {1, 15, -65535, {0, 1, 255, 255, 255, 255}},
        // Rounded to the nearest whole number, a half to the even neighbour.
        {1, 5, 1.5, {0, 1, 88, 3, 2, 255}},
        {1, 5, 2.5, {0, 1, 88, 3, 2, 255}},
        {1, 5, -0.4, {0, 1, 88, 1, 2, 255}},
        // High bits are lost, of magnitude, gauge id and control byte.
        {1, 5, 65536, {0, 1, 88, 1, 2, 255}},
        {1, 5, 65536.0 * 65536.0 + 300, {0, 1, 88, 45, 3, 255}},
        {256 + 3, 16 + 5, 0, {0, 3, 88, 1, 2, 255}},
    };
    for (const Case& expected : cases) {
        EXPECT_EQ(frame_of(expected.gauge_id, expected.command, expected.value), bytes_of(expected.bytes))
            << "command " << expected.command << " value " << expected.value;
    }
}

TEST(Frames, raw_frames_have_their_golden_bytes) {
    std::string change_id;
    bus::append_change_id_frame(change_id, 12, 200);
    EXPECT_EQ(change_id, bytes_of({0, 12, 44, 200, 170, 255}));
    std::string identify;
    bus::append_identify_frame(identify, 77);
    EXPECT_EQ(identify, bytes_of({0, 77, 124, 128, 170, 255}));
}

TEST(Frames, a_value_that_is_not_finite_is_a_failure_and_leaves_the_buffer) {
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {infinity, -infinity, std::numeric_limits<double>::quiet_NaN()}) {
        std::string buffer = "before";
        EXPECT_THROW(bus::append_frame(buffer, 1, 5, value), support::Failure);
        EXPECT_EQ(buffer, "before");
    }
}

TEST(Frames, what_was_encoded_is_decoded_for_every_value) {
    for (int value = -65535; value <= 65535; value += 7) {
        const int command = 3 + std::abs(value) % 13;
        const bus::DecodedFrame decoded = bus::decode_frame(frame_of(42, command, value));
        ASSERT_EQ(decoded.error, bus::FrameError::none) << value;
        ASSERT_EQ(decoded.frame.kind, bus::FrameKind::value) << value;
        ASSERT_EQ(decoded.frame.gauge_id, 42);
        ASSERT_EQ(decoded.frame.command, command);
        ASSERT_EQ(decoded.frame.value, value);
    }
    const bus::DecodedFrame change_id = bus::decode_frame(bytes_of({0, 12, 44, 201, 170, 255}));
    EXPECT_EQ(change_id.frame.kind, bus::FrameKind::change_id);
    EXPECT_EQ(change_id.frame.new_id, 201);
    const bus::DecodedFrame identify = bus::decode_frame(bytes_of({0, 77, 124, 128, 170, 255}));
    EXPECT_EQ(identify.frame.kind, bus::FrameKind::identify);
    EXPECT_EQ(identify.frame.gauge_id, 77);
}

TEST(Frames, a_bad_frame_is_named) {
    struct Case {
        std::vector<int> bytes;
        bus::FrameError error;
    };
    const std::vector<Case> cases = {
        {{}, bus::FrameError::too_short},
        {{0, 1, 88, 1, 2}, bus::FrameError::too_short},
        {{0, 1, 88, 1, 2, 255, 255}, bus::FrameError::too_long},
        {{1, 1, 88, 1, 2, 255}, bus::FrameError::bad_start},
        {{0, 1, 88, 1, 2, 254}, bus::FrameError::bad_end},
        {{0, 1, 80, 1, 2, 255}, bus::FrameError::bad_mark},
        {{0, 1, 88, 2, 2, 255}, bus::FrameError::bad_fill_bit},
        {{0, 1, 88, 1, 1, 255}, bus::FrameError::bad_fill_bit},
    };
    for (const Case& expected : cases) {
        EXPECT_EQ(bus::decode_frame(bytes_of(expected.bytes)).error, expected.error)
            << testing::PrintToString(expected.bytes);
    }
}

TEST(Frames, a_report_is_known_by_its_length_and_its_ends) {
    std::string report(bus::kReportLength, 'x');
    report.front() = 0;
    report.back() = static_cast<char>(255);
    EXPECT_EQ(bus::check_report(report), bus::ReportError::none);
    EXPECT_EQ(bus::check_report(report.substr(1)), bus::ReportError::bad_length);
    EXPECT_EQ(bus::check_report(report + "x"), bus::ReportError::bad_length);
    EXPECT_EQ(bus::check_report(""), bus::ReportError::bad_length);
    std::string bad = report;
    bad.front() = 1;
    EXPECT_EQ(bus::check_report(bad), bus::ReportError::bad_start);
    bad = report;
    bad.back() = 0;
    EXPECT_EQ(bus::check_report(bad), bus::ReportError::bad_end);
}

TEST(Frames, a_report_is_read_by_the_devices_byte_numbers_high_byte_first) {
    std::string bytes;
    for (int number = 1; number <= 25; ++number) {
        bytes.push_back(static_cast<char>(number == 1 ? 0 : 230 + number));
    }
    const bus::GaugeReport report(bytes);
    EXPECT_EQ(report.gauge_id(), 232);
    EXPECT_EQ(report.GaugeType(), 233);
    EXPECT_EQ(report.GaugeModel(), 234);
    EXPECT_EQ(report.GaugeVersion(), 235);
    EXPECT_EQ(report.byte(6), 236);
    EXPECT_EQ(report.byte(25), 255);
    EXPECT_EQ(report.word(7), 237 * 256 + 238);
    EXPECT_EQ(report.word(24), 254 * 256 + 255);
}

TEST(Frames, the_display_word_packs_digits_point_and_blank) {
    struct Case {
        double reading_tenths;
        int word;
    };
    const std::vector<Case> cases = {
        {456, 0x45A6},
        {1234, 0x123B},
        {0, 0x00A0},
        {7, 0x00A7},
        {999, 0x99A9},
        {1000, 0x100B},
        {9999, 0x999B},
        // Beyond what four digits can show.
        {-1, 0x00A0},
        {10000, 0x999B},
        {1e30, 0x999B},
        {-std::numeric_limits<double>::infinity(), 0x00A0},
    };
    for (const Case& expected : cases) {
        EXPECT_EQ(bus::display_word(expected.reading_tenths), expected.word) << expected.reading_tenths;
    }
}

}  // namespace
