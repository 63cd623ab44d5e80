#include "sim/launcher/preload_environment.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include "sim/transport/preload_protocol.h"

namespace qrx::sim {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLibrary = "libqrx_sim_preload.so";

std::string value_of(const char* name)
{
    const char* const value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

// Beside this program, or where an installation puts libraries.
std::string find_library()
{
    std::error_code ignored;
    const fs::path here = fs::read_symlink("/proc/self/exe", ignored).parent_path();
    const fs::path installed = here / ".." / QRX_SIM_LIBRARY_DIRECTORY;
    for (const fs::path& place : {here / kLibrary, installed / kLibrary}) {
        if (fs::exists(place, ignored)) {
            return fs::canonical(place, ignored).string();
        }
    }
    throw std::runtime_error(std::string("cannot find ") + kLibrary + " beside " + here.string() + "/qrx_sim or in " +
                             installed.string());
}

}  // namespace

PreloadEnvironment::PreloadEnvironment(const std::string& socket_path)
{
    const std::string others = value_of("LD_PRELOAD");
    set("LD_PRELOAD", find_library() + (others.empty() ? "" : ":" + others));
    set(kPreloadSocketVariable, socket_path);
    // A sanitized program would refuse to run with a library before its own.
    const std::string options = value_of("ASAN_OPTIONS");
    set("ASAN_OPTIONS", (options.empty() ? "" : options + ":") + "verify_asan_link_order=0");
}

PreloadEnvironment::~PreloadEnvironment()
{
    for (const auto& [name, value] : before_) {
        if (value) {
            (void)setenv(name.c_str(), value->c_str(), 1);
        } else {
            (void)unsetenv(name.c_str());
        }
    }
}

void PreloadEnvironment::set(const std::string& name, const std::string& value)
{
    const char* const old = std::getenv(name.c_str());
    before_.emplace(name, old == nullptr ? std::nullopt : std::optional<std::string>(old));
    (void)setenv(name.c_str(), value.c_str(), 1);
}

}  // namespace qrx::sim
