#include "platform/posix/parmrk_decoder.h"

#include "support/bytes.h"

namespace platform::posix {

namespace {

constexpr char kMark = '\xFF';

}  // namespace

void ParmrkDecoder::decode(std::string_view bytes, const std::function<void(std::string_view)>& on_bytes,
                           const std::function<void(SerialEvent)>& on_event) {
    plain_.clear();
    const auto flush = [&] {
        if (!plain_.empty()) {
            on_bytes(plain_);
            plain_.clear();
        }
    };
    for (const char byte : bytes) {
        switch (state_) {
            case State::data:
                if (byte == kMark) {
                    state_ = State::marked;
                } else {
                    plain_.push_back(byte);
                }
                break;
            case State::marked:
                if (byte == '\0') {
                    state_ = State::error_byte;
                } else {
                    // 255 255 is data; 255 before anything else is not sent by a terminal, and taken as two bytes.
                    plain_.push_back(kMark);
                    if (byte != kMark) {
                        plain_.push_back(byte);
                    }
                    state_ = State::data;
                }
                break;
            case State::error_byte:
                flush();
                on_event(byte == '\0' ? SerialEvent::break_received : SerialEvent::framing_error);
                state_ = State::data;
                break;
        }
    }
    flush();
}

}  // namespace platform::posix
