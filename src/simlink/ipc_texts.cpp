#include "simlink/ipc_texts.h"

namespace simlink {

std::string_view result_text(std::int32_t result) {
    const auto index = static_cast<std::uint32_t>(result);
    return index < IpcResultTexts.size() ? IpcResultTexts[index] : std::string_view{};
}

std::string_view sim_name(const SimNameTable& names, std::uint32_t sim_version_word) {
    return sim_version_word < names.size() ? names[sim_version_word] : std::string_view{"Unknown"};
}

std::string version_text(std::uint32_t fsuipc_version_word) {
    const auto digit = [fsuipc_version_word](unsigned lowest_bit) {
        return static_cast<char>('0' + ((fsuipc_version_word >> lowest_bit) & 15U));
    };
    std::string text = {digit(28), '.', digit(24), digit(20), digit(16)};
    if ((fsuipc_version_word & 0xFFFFU) != 0) {
        text.push_back(static_cast<char>('a' + (fsuipc_version_word & 0xFFU) - 1U));
    }
    return text;
}

}  // namespace simlink
