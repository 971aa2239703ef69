#include "bench/devices/engine_cluster.h"

#include <algorithm>
#include <utility>

#include "bus/frames.h"
#include "support/bytes.h"

namespace bench {

namespace {

constexpr int kStepTimeUs = 1300;  // a turn in 1.4 s
// A telegram comes in one piece of 12 ms; after a pause of this length the next byte begins one.
constexpr platform::Milliseconds kPause{20};

constexpr std::size_t kReplyLength = 16;
constexpr std::string_view kVersion = "21";

// Byte 39: the level of byte 38 is to be taken.
constexpr int kTakeLevelBit = 1;

constexpr int kBlankPlace = 0;
constexpr int kHighestDigitPlace = 10;  // a digit stands as itself and 1
constexpr int kPointPlace = 11;

char place_character(int place) {
    if (place > kBlankPlace && place <= kHighestDigitPlace) {
        return static_cast<char>('0' + place - 1);
    }
    return place == kPointPlace ? '.' : ' ';
}

// A reading bears its point in the first byte. Blanks and fillings bear none, and a needle's position in the place that
// it shares with a display is none either.
bool is_reading(int word) {
    return word > cluster::kHighestClusterPosition && (word >> 12 == kPointPlace || (word >> 8 & 15) == kPointPlace);
}

template <std::size_t... Index>
std::array<Stepper, sizeof...(Index)> steppers(std::index_sequence<Index...>) {
    return {((void)Index, Stepper(kStepTimeUs))...};
}

}  // namespace

EngineCluster::EngineCluster(platform::EventLoop& loop, ReplyTiming timing)
    : LineInstrument(loop, {}, timing), needles_(steppers(std::make_index_sequence<cluster::kNeedles>{})) {
    telegram_.reserve(cluster::kTelegramLength);
}

double EngineCluster::target_steps(int needle) const {
    return static_cast<double>(needles_[static_cast<std::size_t>(needle)].target()) / kQuartersPerStep;
}

double EngineCluster::pointer_steps(int needle) const {
    const Stepper& stepper = needles_[static_cast<std::size_t>(needle)];
    return (stepper.position(now()) + stepper.lost_steps(now())) / kQuartersPerStep;
}

bool EngineCluster::calibrating() const {
    return std::any_of(needles_.begin(), needles_.end(),
                       [this](const Stepper& needle) { return needle.finding_zero(now()); });
}

std::string EngineCluster::display_text(int display) const {
    const int word = displays_[static_cast<std::size_t>(display - 1)];
    std::string text;
    // Low and high nibble of the second byte, then those of the first.
    for (const int shift : {0, 4, 8, 12}) {
        text.push_back(lights_.displays_on() ? place_character((word >> shift) & 15) : ' ');
    }
    return text;
}

void EngineCluster::hear(std::string_view bytes) {
    if (now() - last_byte_ >= kPause && !telegram_.empty()) {
        telegram_.clear();
        count_bad_frame();
    }
    last_byte_ = now();
    for (const char byte : bytes) {
        take_byte(byte);
    }
}

void EngineCluster::take_byte(char byte) {
    telegram_.push_back(byte);
    const bool begins =
        telegram_.front() == cluster::kTelegramNormal || telegram_.front() == cluster::kTelegramRecalibrate;
    if (!begins) {
        telegram_.clear();
        count_stray_byte();
    } else if (telegram_.size() == cluster::kTelegramLength) {
        if (support::byte_at(telegram_, cluster::kEndByte - 1) == cluster::kTelegramEnd) {
            count_frame();
            take_telegram();
        } else {
            count_bad_frame();
        }
        telegram_.clear();
    }
}

int EngineCluster::byte(int number) const {
    return support::byte_at(telegram_, static_cast<std::size_t>(number - 1));
}

void EngineCluster::take_telegram() {
    take_lights();
    if (telegram_.front() == cluster::kTelegramRecalibrate) {
        ++recalibrations_;
        find_zero();
    } else {
        for (std::size_t needle = 0; needle < needles_.size(); ++needle) {
            const int at = cluster::kNeedleByte[needle];
            const int position = byte(at) << 8 | byte(at + 1);
            // Blanks, and the digits of the display that shares a needle's place, lie beyond every position.
            if (position <= cluster::kHighestClusterPosition) {
                needles_[needle].move_to(position, now());
            }
        }
    }
    for (std::size_t display = 0; display < displays_.size(); ++display) {
        const int at = cluster::kDisplayByte[display];
        const int word = byte(at) << 8 | byte(at + 1);
        displays_[display] = static_cast<std::uint16_t>(is_reading(word) ? word : 0);
    }
    std::string answer(kReplyLength, '\0');
    answer.front() = static_cast<char>(cluster::kReplyMark);
    answer.replace(cluster::kReplyVersionByte - 1, kVersion.size(), kVersion);
    reply(std::move(answer));
}

void EngineCluster::take_lights() {
    const auto bits = static_cast<unsigned>(byte(cluster::kLightsByte));
    int lights = static_cast<int>(bits >> 4);
    lights |= (bits & cluster::kLightsOnBit) != 0 ? bus::kLightOn : 0;
    lights |= (bits & cluster::kNoPowerBit) == 0 ? bus::kLightPower : 0;
    lights |= (byte(cluster::kBrightnessFlagByte) & kTakeLevelBit) != 0 ? bus::kLightApplyLevel : 0;
    lights_.take(lights);
}

void EngineCluster::find_zero() {
    for (Stepper& needle : needles_) {
        needle.find_zero(now());
    }
}

void EngineCluster::power_on() {
    telegram_.clear();
    displays_.fill(0);
    lights_.power_on();
    find_zero();
}

void EngineCluster::show(StateSink& sink) const {
    static constexpr std::array<std::string_view, cluster::kNeedles> kNeedleNames = {
        "needle0", "needle1", "needle2",  "needle3",  "needle4",  "needle5",  "needle6",  "needle7",
        "needle8", "needle9", "needle10", "needle11", "needle12", "needle13", "needle14", "needle15"};
    static constexpr std::array<std::string_view, cluster::kDisplays> kDisplayNames = {"display1", "display2",
                                                                                       "display3", "display4"};
    sink.flag("lit", lights_.lit());
    sink.number("level", lights_.level());
    sink.flag("power", lights_.displays_on());
    for (int needle = 0; needle < cluster::kNeedles; ++needle) {
        sink.number(kNeedleNames[static_cast<std::size_t>(needle)], pointer_steps(needle));
    }
    for (int display = 1; display <= cluster::kDisplays; ++display) {
        sink.text(kDisplayNames[static_cast<std::size_t>(display - 1)], display_text(display));
    }
    sink.flag("calibrating", calibrating());
}

bool EngineCluster::knock(int needle, int steps) {
    if (needle < 1 || needle > cluster::kNeedles) {
        return false;
    }
    needles_[static_cast<std::size_t>(needle - 1)].lose_steps(steps * kQuartersPerStep);
    return true;
}

}  // namespace bench
