#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/signal_set.hpp>
#include <functional>

#include "platform/event_loop.h"

namespace platform::posix {

// The event loop on Asio. Asio's handlers only queue tasks or serve the page; the tasks run outside of them.
class PosixLoop : public EventLoop {
  public:
    // Throws a Failure when the system gives no timer.
    PosixLoop();

    TimePoint now() const override { return std::chrono::steady_clock::now(); }

    boost::asio::io_context& io_context() { return io_context_; }

    // Called as a task when the program is first asked to end (SIGINT, SIGTERM). The default stops the loop. The second
    // time the loop is stopped without asking, the third time the system ends the program.
    std::function<void()> on_terminate;

    // Waits until the descriptor can be read, serving the page meanwhile (Asio's handlers, no tasks). False when the
    // deadline has passed, or at once when the program has been asked to end.
    bool wait_readable_serving_page(int descriptor, TimePoint deadline);
    // The same until it can be written.
    bool wait_writable_serving_page(int descriptor, TimePoint deadline);
    // Serves the page until the deadline, or until the program is asked to end.
    void serve_page_until(TimePoint deadline);

  protected:
    void wait(std::optional<TimePoint> until) override;
    void collect_events() override;

  private:
    bool wait_for_descriptor(int descriptor, short events, TimePoint deadline);
    void set_wake_up(TimePoint due);
    void await_wake_up();
    void await_signal();
    bool ending() const { return signal_count_ > 0 || stopped(); }

    boost::asio::io_context io_context_{1};
    // A timer of the system behind all sleeping: the context's own timed waits count in whole milliseconds, and its
    // timers take memory and must be cancelled when another event comes first. One wait for it is always under way.
    boost::asio::posix::stream_descriptor wake_up_;
    TimePoint wake_up_due_{};
    boost::asio::signal_set signals_;
    int signal_count_ = 0;
};

}  // namespace platform::posix
