#pragma once

#include <boost/asio/posix/stream_descriptor.hpp>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/posix/posix_loop.h"

namespace platform::posix {

// Text lines from a descriptor (standard input, as a rule) as tasks of the loop. Its end, or one that cannot be waited
// for, such as a file, ends the lines and nothing else. The longest line is 1000 bytes; what is longer comes in pieces.
class LineInput {
  public:
    // `on_line` gets each line without its line break.
    LineInput(PosixLoop& loop, int descriptor, std::function<void(std::string_view line)> on_line);
    ~LineInput();
    LineInput(const LineInput&) = delete;
    LineInput& operator=(const LineInput&) = delete;

  private:
    struct Side {
        explicit Side(boost::asio::io_context& context) : descriptor(context) {}
        boost::asio::posix::stream_descriptor descriptor;
        LineInput* input = nullptr;
    };

    void await_input();
    void take_input();
    void take_lines();

    PosixLoop& loop_;
    std::function<void(std::string_view line)> on_line_;
    std::shared_ptr<Side> side_;
    std::string waiting_;
};

}  // namespace platform::posix
