#pragma once

#include <array>
#include <memory>
#include <string>
#include <string_view>

#include "platform/event_loop.h"
#include "platform/serial_port.h"

namespace platform {

// What the serial ports of all back ends share: the input buffer, the receive threshold and the events as tasks of the
// loop. A back end opens, closes, writes, and hands in what has arrived.
class BufferedSerialPort : public SerialPort {
  public:
    void set_number(int number) override;
    int number() const override { return number_; }
    void set_receive_threshold(std::size_t bytes) override { threshold_ = bytes; }
    void set_read_length(std::size_t bytes) override { read_length_ = bytes; }
    void set_event_handler(EventHandler handler) override { handler_ = std::move(handler); }
    std::string read() override;
    void read_into(std::string& bytes) override;
    void clear_input() override { drop_input(); }

    std::size_t receive_threshold() const { return threshold_; }
    std::size_t read_length() const { return read_length_; }

  protected:
    explicit BufferedSerialPort(EventLoop& loop) : loop_(loop), alive_(std::make_shared<bool>(true)) {}

    // Bytes of the line. Queues a receive event when the threshold is reached. Beyond kInputLimit the oldest bytes go.
    void arrived(std::string_view bytes);
    // Queues an event for the handler; events that come while it runs follow when it has ended, each kind once.
    void raise(SerialEvent event);
    void drop_input() {
        input_.clear();
        ++reads_;
    }

    EventLoop& loop() const { return loop_; }

  private:
    static constexpr std::size_t kInputLimit = 65536;
    static constexpr std::size_t kEventKinds = 5;

    // A fixed list of events without repetition, in their order.
    class EventList {
      public:
        void add(SerialEvent event);
        // Gives the events and empties the list.
        EventList take();
        const SerialEvent* begin() const { return events_.data(); }
        const SerialEvent* end() const { return events_.data() + count_; }

      private:
        std::array<SerialEvent, kEventKinds> events_{};
        std::size_t count_ = 0;
    };

    void dispatch(SerialEvent event);
    void call_handler(SerialEvent event);
    void raise_receive_if_due();

    EventLoop& loop_;
    std::shared_ptr<bool> alive_;
    int number_ = 0;
    std::size_t threshold_ = 0;
    std::size_t read_length_ = 0;
    EventHandler handler_;
    std::string input_;
    std::size_t reads_ = 0;  // reads and clearings, so that dispatch knows whether the handler took something
    bool receive_queued_ = false;
    bool in_handler_ = false;
    EventList held_back_;  // came while the handler ran
};

}  // namespace platform
