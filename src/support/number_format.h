#pragma once

#include <string>
#include <string_view>

namespace support {

// Writes a number by a picture: '0' is a digit that is always shown, '#' one that is shown when it carries meaning, '.'
// the decimal point ("000.00", "#####.0", "###.#0"). Digits before the picture's first place are shown all the same;
// decimals are rounded half away from zero. A negative value gets a leading '-', unless it rounds to zero. Not-a-number
// reads "nan", infinity "inf" or "-inf". The text replaces what stands in `out`, whose capacity is kept.
void format_number(double value, std::string_view picture, std::string& out);

// The same, as a new text.
std::string format_number(double value, std::string_view picture);

// The shortest text that reads back as the same 32-bit or 64-bit float, for the configuration file and for messages.
std::string shortest(float value);
std::string shortest(double value);

}  // namespace support
