#include "bench/devices/line_instrument.h"

#include <utility>

namespace bench {

LineInstrument::LineInstrument(platform::EventLoop& loop, Identity identity, ReplyTiming timing)
    : LineDevice(loop), identity_(identity), replies_(loop, timing, [this](const std::string& bytes) {
          count_report();
          send(bytes);
      }) {}

void LineInstrument::set_fault(Fault fault, int replies) {
    fault_ = fault;
    faulty_replies_ = replies;
}

void LineInstrument::power_cycle() {
    replies_.clear();
    power_on();
}

void LineInstrument::take_bytes(std::string_view bytes) {
    if (fault_ != Fault::deaf) {
        hear(bytes);
    }
}

void LineInstrument::reply(std::string bytes) {
    const Fault fault = fault_;
    if (fault != Fault::mute && faulty_replies_ > 0 && --faulty_replies_ == 0) {
        fault_ = Fault::none;
    }
    switch (fault) {
        case Fault::mute:
        case Fault::deaf:
        case Fault::drop_reply:
            return;
        case Fault::corrupt_byte:
            bytes.back() = static_cast<char>(kWrongLastByte);
            break;
        case Fault::half_report:
            bytes.resize(bytes.size() / 2);
            break;
        case Fault::late_reply:
            return replies_.add(std::move(bytes), kLateReply);
        case Fault::noise:
            bytes.insert(0, kNoiseBeforeReply);
            break;
        case Fault::wrong_id:
        case Fault::wrong_type:
        case Fault::none:
            break;
    }
    replies_.add(std::move(bytes));
}

}  // namespace bench
