#pragma once

#include <span>
#include <string_view>

namespace web {

// A file of a page, embedded into the program.
struct Asset {
    std::string_view path;  // "/", "/page.js"
    std::string_view content_type;
    std::string_view bytes;
};

// The panels' page, and the virtual cockpit's page; made by the build.
std::span<const Asset> page_assets();
std::span<const Asset> bench_assets();

}  // namespace web
