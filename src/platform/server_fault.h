#pragma once

namespace platform {

// What a simulator's server does with the sends it gets.
enum class ServerFault { none, silent };

}  // namespace platform
