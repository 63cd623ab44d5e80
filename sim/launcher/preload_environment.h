// The environment in which a program finds the preload library.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace qrx::sim {

// While it lives, this process's environment makes its children load the library and find the launcher's socket.
class PreloadEnvironment {
public:
    // Throws std::runtime_error when the library is nowhere to be found.
    explicit PreloadEnvironment(const std::string& socket_path);
    PreloadEnvironment(const PreloadEnvironment&) = delete;
    PreloadEnvironment& operator=(const PreloadEnvironment&) = delete;
    ~PreloadEnvironment();

private:
    void set(const std::string& name, const std::string& value);

    std::map<std::string, std::optional<std::string>> before_;
};

}  // namespace qrx::sim
