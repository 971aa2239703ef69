#pragma once

#include <boost/asio/posix/stream_descriptor.hpp>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "platform/posix/posix_loop.h"
#include "platform/posix/system_failure.h"

namespace platform::posix {

// The device's end of a simulated serial line: a pseudo-terminal whose other end is linked as ports/COMN in a folder.
class PseudoTerminal {
  public:
    // Makes the terminal and its link (the folder ports/ too; a link that is there already is replaced). Throws a
    // Failure.
    PseudoTerminal(PosixLoop& loop, const std::string& folder, int number);
    // Takes the link away and hangs up.
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    // Gets what the program has written, as a task of the loop.
    std::function<void(std::string_view bytes)> on_bytes;
    // Sends bytes to the program. What the terminal does not take at once is lost, as on a line that nobody reads.
    void write(std::string_view bytes);
    const std::string& link() const { return link_; }

  private:
    struct Side {
        explicit Side(boost::asio::io_context& context) : descriptor(context) {}
        boost::asio::posix::stream_descriptor descriptor;
        PseudoTerminal* terminal = nullptr;
    };

    void await_input();
    void take_input();

    PosixLoop& loop_;
    std::shared_ptr<Side> side_;
    // Our own hold on the other end: without it reading fails whenever the program has the line closed.
    Descriptor other_end_;
    std::string link_;
};

}  // namespace platform::posix
