#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

enum class SerialEvent {
    receive,         // the receive threshold is reached
    break_received,  // the line was held at break
    framing_error,   // a byte came without its stop bit
    disconnected,    // the device has gone (unplugged) while the logic has the port open
    reconnected,     // it has come back under its number and was opened again
};

// A serial port with a receive event. Events are tasks of the event loop; the handler of one port is never entered
// again while it runs, waits inside it included. A port stays what the logic made it: one that disappears stays open
// for the logic (is_open), is not connected, and is opened again by itself when it comes back under its number.
class SerialPort {
  public:
    using EventHandler = std::function<void(SerialEvent)>;

    virtual ~SerialPort() = default;

    // 1..255; 0 = none. Only while closed.
    virtual void set_number(int number) = 0;
    virtual int number() const = 0;
    // "38400,N,8,1": speed, parity, data bits, stop bits. Takes effect at open, or at once on an open port.
    virtual void set_settings(const std::string& settings) = 0;
    // Bytes that must wait for a receive event; 0 = no receive events.
    virtual void set_receive_threshold(std::size_t bytes) = 0;
    // The most that one read returns; 0 = all that waits.
    virtual void set_read_length(std::size_t bytes) = 0;
    virtual void set_event_handler(EventHandler handler) = 0;

    // Throws a Failure when the port does not exist, is busy or refuses its settings.
    virtual void open() = 0;
    virtual void close() = 0;
    // Whether the logic has the port open.
    virtual bool is_open() const = 0;
    // Whether the port is open and its device is there.
    virtual bool connected() const = 0;

    // Takes up to the read length of waiting bytes. Empty when nothing waits or the port is closed.
    virtual std::string read() = 0;
    // The same into a text that keeps its capacity.
    virtual void read_into(std::string& bytes) { bytes = read(); }
    // Drops what waits at the input. Nothing on a closed port.
    virtual void clear_input() = 0;
    // Drops what has not gone out yet. Nothing on a closed port.
    virtual void clear_output() = 0;
    // Hands over all bytes in one block; does not wait for them to go out. Throws a Failure when the port is closed or
    // its device has gone.
    virtual void write(std::string_view bytes) = 0;
    // State of the carrier-detect input; false where the line has none.
    virtual bool carrier_detect() const = 0;
};

class SerialPorts {
  public:
    virtual ~SerialPorts() = default;
    virtual std::unique_ptr<SerialPort> create() = 0;
};

}  // namespace platform
