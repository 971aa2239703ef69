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
    // Makes the terminal and its link (the folder ports/ too). A link to another pseudo-terminal is replaced, for it
    // may be left over; anything else of that name is the user's, and a Failure. Throws a Failure.
    PseudoTerminal(PosixLoop& loop, const std::string& folder, int number);
    // Takes the link away, if it is still ours, and hangs up.
    ~PseudoTerminal();
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;

    // Gets what the program has written, as a task of the loop.
    std::function<void(std::string_view bytes)> on_bytes;
    // Sends bytes to the program. While 2048 bytes lie unread, because nobody has the line open, what follows is lost,
    // as on any line that nobody reads.
    void write(std::string_view bytes);
    const std::string& link() const { return link_; }

  private:
    struct Side {
        explicit Side(boost::asio::io_context& context) : descriptor(context) {}
        boost::asio::posix::stream_descriptor descriptor;
        PseudoTerminal* terminal = nullptr;
    };

    void put_link() const;
    std::string link_target() const;
    void await_input();
    void take_input();

    PosixLoop& loop_;
    std::shared_ptr<Side> side_;
    // Our own hold on the other end: without it reading fails whenever the program has the line closed.
    Descriptor other_end_;
    std::string name_;  // of the other end, /dev/pts/N
    std::string link_;
};

}  // namespace platform::posix
