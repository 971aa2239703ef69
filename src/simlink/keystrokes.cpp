#include "simlink/keystrokes.h"

#include <algorithm>
#include <array>

#include "platform/send_keys.h"

namespace simlink {

namespace {

constexpr std::uint32_t kPressParameter = 0x800;
constexpr std::uint32_t kPressControl = 0x200;
constexpr std::uint32_t kPressShift = 0x100;

struct NamedKey {
    int code;
    std::string_view name;
};

constexpr std::array<NamedKey, 37> kNamedKeys = {{
    {3, "Cancel"},         {8, "BackSpace"},  {9, "Tab"},         {12, "Clear"},         {13, "Return"},
    {19, "Pause"},         {20, "CapsLock"},  {27, "Esc"},        {32, " Space"},        {33, " PgeUp"},
    {34, "PgeDwn"},        {35, "End"},       {36, "Home"},       {37, "Left"},          {38, "Up"},
    {39, "Right"},         {40, "Down"},      {41, "Select"},     {42, "Print"},         {45, "Insert"},
    {46, "Delete"},        {106, "Multiply"}, {107, "Add"},       {108, "Separator"},    {109, "Subtract"},
    {111, "Divide"},       {144, "Numlock"},  {186, "Semicolon"}, {187, "Equals"},       {188, "Comma"},
    {189, "Minus"},        {190, "Dot"},      {191, "Slash"},     {219, "Open Bracket"}, {220, "BackSlash"},
    {221, "Clse Bracket"}, {222, "Quote"},
}};

std::string numbered(std::string_view name, int number) {
    std::string text(name);
    text += std::to_string(number);
    return text;
}

}  // namespace

std::uint32_t key_press_parameter(std::uint16_t KeyCode) {
    std::uint32_t parameter = (KeyCode & kKeyMask) + kPressParameter;
    if ((KeyCode & kKeyControl) != 0) {
        parameter += kPressControl;
    }
    if ((KeyCode & kKeyShift) != 0) {
        parameter += kPressShift;
    }
    return parameter;
}

std::string send_keys_text(std::uint16_t KeyCode) {
    std::string text;
    if ((KeyCode & kKeyControl) != 0) {
        text += '^';
    }
    if ((KeyCode & kKeyShift) != 0) {
        text += '+';
    }
    const char character = static_cast<char>(KeyCode & kKeyMask);
    if (platform::kBracedCharacters.find(character) != std::string_view::npos) {
        text += '{';
        text += character;
        text += '}';
    } else {
        text += character;
    }
    return text;
}

std::string key_name(int KeyCode) {
    if (KeyCode >= 112 && KeyCode <= 127) {
        return numbered("F", KeyCode - 111);
    }
    if ((KeyCode >= 'A' && KeyCode <= 'Z') || (KeyCode >= '0' && KeyCode <= '9')) {
        return std::string(1, static_cast<char>(KeyCode));
    }
    if (KeyCode >= 96 && KeyCode <= 105) {
        return numbered("Numpad", KeyCode - 96);
    }
    const auto* const key = std::find_if(kNamedKeys.begin(), kNamedKeys.end(),
                                         [KeyCode](const NamedKey& row) { return row.code == KeyCode; });
    return key == kNamedKeys.end() ? std::string{} : std::string{key->name};
}

}  // namespace simlink
