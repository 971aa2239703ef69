#pragma once

#include <string>
#include <string_view>

namespace bench {

// Writes JSON text piece by piece into one string whose capacity is kept. Commas are set by itself; the caller keeps
// the order of names and values.
class JsonWriter {
  public:
    void clear();
    const std::string& text() const { return text_; }

    JsonWriter& begin_object() { return open('{'); }
    JsonWriter& end_object() { return close('}'); }
    JsonWriter& begin_array() { return open('['); }
    JsonWriter& end_array() { return close(']'); }

    // Names are literals of the program: plain letters.
    JsonWriter& name(std::string_view name);
    // Not-a-number and infinity become null. At most three decimals.
    JsonWriter& value(double number);
    JsonWriter& value(int number) { return value(static_cast<double>(number)); }
    JsonWriter& value(bool flag);
    // Bytes of the Windows-1252 character set, as names stand in a configuration file.
    JsonWriter& value(std::string_view text);
    JsonWriter& value(const char* text) { return value(std::string_view(text)); }

  private:
    JsonWriter& open(char bracket);
    JsonWriter& close(char bracket);
    void separate();
    void append_escaped(unsigned char byte);

    std::string text_;
    bool comma_due_ = false;
};

}  // namespace bench
