#include "sim/transport/overlay.h"

#include <array>
#include <cctype>

namespace qrx::sim {
namespace {

// "nvme..." with anything behind it, and the generic character devices "ng<N>n<M>".
bool is_nvme_name(std::string_view name)
{
    return name.starts_with("nvme") || (name.size() > 2 && name.starts_with("ng") && std::isdigit(name[2]) != 0);
}

}  // namespace

bool is_real_nvme(std::string_view path)
{
    constexpr std::array<std::string_view, 6> kPlaces = {"/dev/",       "/sys/devices/", "/sys/class/",
                                                         "/sys/block/", "/sys/dev/",     "/sys/bus/pci/devices/"};
    if (path.starts_with("/dev/shm/")) {  // files in memory, whatever their names
        return false;
    }
    for (const std::string_view place : kPlaces) {
        if (!path.starts_with(place)) {
            continue;
        }
        std::string_view rest = path.substr(place.size());
        while (!rest.empty()) {
            const std::size_t slash = rest.find('/');
            if (is_nvme_name(rest.substr(0, slash))) {
                return true;
            }
            rest = slash == std::string_view::npos ? std::string_view{} : rest.substr(slash + 1);
        }
    }
    return false;
}

}  // namespace qrx::sim
