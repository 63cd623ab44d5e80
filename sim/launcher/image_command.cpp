#include "sim/launcher/image_command.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <optional>

#include "sim/firmware/firmware_image.h"
#include "sim/launcher/files.h"
#include "sim/launcher/program.h"

namespace qrx::sim {
namespace {

constexpr std::string_view kImageUsage =
    R"(Usage: qrx_sim make-image [--revision <version>] [--raw plain|digit|no-digit] [--size <bytes>] [--revoked] <file>

Makes a firmware image. The same words make the same bytes.

  --revision <version>   what the device shows when the image runs, such as 2.5.0.1100; an image without one is
                         called after its checksum
  --raw <layout>         plain (default), or a raw flash picture with its components behind a digest (digit) or not
                         (no-digit); its sum and checksums are right
  --size <bytes>         length of the file
  --revoked              devices take the image, but do not let it run
  --help                 print this page
)";

struct Wanted {
    ImagePlan plan;
    std::string file;
    bool help = false;
};

std::optional<Failure> store(Wanted& wanted, const std::string& name, const std::string& value)
{
    constexpr std::array<std::pair<std::string_view, ImageKind>, 3> kKinds{
        {{"plain", ImageKind::kPlain}, {"digit", ImageKind::kRawDigit}, {"no-digit", ImageKind::kRawNoDigit}}};
    if (name == "--revision") {
        if (value.empty()) {
            return Failure{"--revision needs a value, such as 2.5.0.1100"};
        }
        wanted.plan.version = value;
        return std::nullopt;
    }
    if (name == "--size") {
        std::size_t size = 0;
        const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), size);
        if (error != std::errc() || end != value.data() + value.size()) {
            return Failure{"--size: '" + value + "' is no number of bytes"};
        }
        wanted.plan.size = size;
        return std::nullopt;
    }
    for (const auto& [word, kind] : kKinds) {
        if (word == value) {
            wanted.plan.kind = kind;
            return std::nullopt;
        }
    }
    return Failure{"--raw: '" + value + "' is none of plain, digit, no-digit"};
}

Result<Wanted> read_words(const std::vector<std::string>& words)
{
    Wanted wanted;
    std::size_t at = 0;
    for (; at < words.size() && words[at].starts_with("--"); ++at) {
        const std::size_t equals = words[at].find('=');
        const std::string name = words[at].substr(0, equals);
        if (words[at] == "--help" || words[at] == "--revoked") {
            (words[at] == "--help" ? wanted.help : wanted.plan.revoked) = true;
            continue;
        }
        if (name != "--revision" && name != "--size" && name != "--raw") {
            return Failure{"unknown option '" + name + "'; known are --revision, --raw, --size, --revoked, --help"};
        }
        std::string value;
        if (equals != std::string::npos) {
            value = words[at].substr(equals + 1);
        } else if (at + 1 < words.size()) {
            value = words[++at];
        }
        if (std::optional<Failure> failure = store(wanted, name, value)) {
            return *failure;
        }
    }
    if (!wanted.help) {
        if (words.size() - at != 1) {
            return Failure{at == words.size() ? "no file given" : "takes one file, and options in front of it"};
        }
        wanted.file = words[at];
    }
    return wanted;
}

int complain(const std::string& text)
{
    (void)std::fprintf(stderr, "qrx_sim make-image: %s\n", text.c_str());
    return kExitOwnFailure;
}

}  // namespace

std::string_view image_usage()
{
    return kImageUsage;
}

int run_make_image(const Options& options)
{
    const Result<Wanted> wanted = read_words(options.program.command);
    if (!wanted) {
        return complain(wanted.error());
    }
    if (wanted->help) {
        std::cout << kImageUsage;
        return std::cout.flush() ? 0 : kExitOwnFailure;
    }
    const Result<std::vector<QRX_U8>> image = make_image(wanted->plan);
    if (!image) {
        return complain(image.error());
    }
    const std::string content(image->begin(), image->end());
    if (!replace_file(wanted->file, content)) {
        return complain("cannot write '" + wanted->file + "': " + std::strerror(errno));
    }
    return 0;
}

}  // namespace qrx::sim
