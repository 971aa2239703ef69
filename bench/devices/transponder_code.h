#pragma once

#include <string>

#include "platform/event_loop.h"

namespace bench {

// Four octal digits.
class TransponderCode {
  public:
    static constexpr int kDigits = 4;
    static constexpr int kHighest = 07777;

    explicit TransponderCode(int octal_word) : word_(octal_word) {}

    int word() const { return word_; }
    // Sets all digits, 3 bits each. False, and nothing changes, beyond 7777.
    bool set_word(int octal_word) {
        if (octal_word < 0 || octal_word > kHighest) {
            return false;
        }
        word_ = octal_word;
        return true;
    }
    // Turns digit 1..4, counted from the left; 7 is followed by 0, and the next digit stays.
    void turn(int digit, int clicks) {
        const int shift = 3 * (kDigits - digit);
        const int turned = (((word_ >> shift) & 7) + clicks % 8 + 8) % 8;
        word_ = (word_ & ~(7 << shift)) | (turned << shift);
    }
    // One digit a nibble, as the telegrams bear it.
    int nibbles() const {
        int nibbles = 0;
        for (int shift = 9; shift >= 0; shift -= 3) {
            nibbles = nibbles * 16 + ((word_ >> shift) & 7);
        }
        return nibbles;
    }
    std::string text() const {
        std::string text;
        for (int shift = 9; shift >= 0; shift -= 3) {
            text.push_back(static_cast<char>('0' + ((word_ >> shift) & 7)));
        }
        return text;
    }

  private:
    int word_;
};

// A button whose press lasts for a moment, and until a report has told it.
class MomentButton {
  public:
    void press(platform::TimePoint now) {
        until_ = now + kMoment;
        untold_ = true;
    }
    void told() { untold_ = false; }
    void forget() { *this = MomentButton(); }
    bool pressed(platform::TimePoint now) const { return untold_ || now < until_; }

  private:
    static constexpr platform::Milliseconds kMoment{1000};

    platform::TimePoint until_{};
    bool untold_ = false;
};

}  // namespace bench
