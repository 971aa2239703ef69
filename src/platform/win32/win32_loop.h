#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <functional>

#include "platform/event_loop.h"

namespace platform::win32 {

// The event loop on Asio. Asio's handlers only queue tasks or serve the page; the tasks run outside of them.
//
// The loop asks for a timer resolution of one millisecond, and that the process keeps it without a visible window:
// the system gives background processes 15.6 ms otherwise.
class Win32Loop : public EventLoop {
  public:
    Win32Loop();
    ~Win32Loop() override;

    TimePoint now() const override { return std::chrono::steady_clock::now(); }

    boost::asio::io_context& io_context() { return io_context_; }

    // Called as a task when the program is first asked to end (Ctrl-C, the console's close). The default stops the
    // loop. The second time the loop is stopped without asking.
    std::function<void()> on_terminate;

    // Queues a task from any thread.
    void post_from_any_thread(Task task);

    // Waits until the handle is signalled, serving the page meanwhile (Asio's handlers, no tasks). False when the
    // deadline has passed, or soon after the program has been asked to end.
    bool wait_signalled_serving_page(void* handle, TimePoint deadline);
    // Serves the page until the deadline, or until the program is asked to end.
    void serve_page_until(TimePoint deadline);

  protected:
    void wait(std::optional<TimePoint> until) override;
    void collect_events() override;

  private:
    void await_signal();
    bool ending() const { return signal_count_ > 0 || stopped(); }

    boost::asio::io_context io_context_{1};
    // Keeps the context waiting when nothing else is under way.
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_;
    boost::asio::signal_set signals_;
    int signal_count_ = 0;
};

}  // namespace platform::win32
