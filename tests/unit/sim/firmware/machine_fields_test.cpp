// The fields of a machine's text, one by one.
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "sim/firmware/factory.h"

namespace qrx::sim {

namespace {

using Json = nlohmann::json;

// The path without the places in lists: what the field is, wherever it stands.
std::string kind_of(const Json::json_pointer& path)
{
    std::string kind;
    for (Json::json_pointer at = path; !at.empty(); at = at.parent_pointer()) {
        const bool place = at.back().find_first_not_of("0123456789") == std::string::npos;
        kind.insert(0, place ? "*" : at.back()).insert(0, 1, '/');
    }
    return kind;
}

// Other values that the field may have. Words stand for numbers, which are allowed too.
std::vector<Json> others(const Json& value)
{
    if (value.is_boolean()) {
        return {!value.get<bool>()};
    }
    if (value.is_number()) {
        const auto number = value.get<QRX_U64>();
        return {number + 1, number - 1, 0, 40, 4096};
    }
    const auto text = value.get<std::string>();
    return {text.substr(0, text.size() - (text.empty() ? 0 : 1)) + (text.ends_with('1') ? '2' : '1'), text + "11", 200};
}

// The field of the machine as it is after it was loaded and saved, or nothing if it is refused.
Json kept(const Json& machine, const Json::json_pointer& path)
{
    const auto loaded = load_machine(machine.dump(), "changed");
    return loaded ? Json::parse(save_machine(**loaded)).value(path, Json()) : Json();
}

// Fields of the gallery that others depend on, so that they cannot change alone.
constexpr char kBound[] =
    "/controllers/*/drives/*/id\n"
    "/controllers/*/drives/*/slots/slot4\n"
    "/controllers/*/drives/*/slots/slot5\n"
    "/controllers/*/drives/*/slots/slot6\n"
    "/controllers/*/drives/*/slots/slot7\n"
    "/controllers/*/namespaces/*/nsid\n"
    "/controllers/*/namespaces/*/parent\n"
    "/controllers/*/slots/active\n"
    "/controllers/*/slots/slot4\n"
    "/controllers/*/slots/slot5\n"
    "/controllers/*/slots/slot6\n"
    "/controllers/*/slots/slot7\n"
    "/controllers/*/virtual_disks/*/id\n"
    "/controllers/*/virtual_disks/*/members/*\n"
    "/controllers/*/virtual_disks/*/rebuild_target\n";

TEST(MachineFields, EachIsSavedAsItWasRead)
{
    const auto gallery = make_scenario("gallery");
    ASSERT_TRUE(gallery);
    const Json machine = Json::parse(save_machine(**gallery));
    std::map<std::string, Json::json_pointer> fields;
    const Json flat = machine.flatten();
    for (const auto& [path, value] : flat.items()) {
        const std::string kind = kind_of(Json::json_pointer(path));
        const bool word_of_set = value.is_string() && kind.ends_with('*');  // such are saved in their own order
        if (value.is_primitive() && !value.is_null() && !word_of_set) {
            fields.emplace(kind, path);
        }
    }
    std::string refused;
    for (const auto& [kind, path] : fields) {
        Json changed = machine;
        Json now;
        for (const Json& other : others(machine[path])) {
            changed[path] = other;
            now = other == machine[path] ? Json() : kept(changed, path);
            if (!now.is_null()) {
                break;
            }
        }
        if (now.is_null()) {
            refused += kind + "\n";
        } else {
            EXPECT_EQ(now, changed[path]) << path;
        }
    }
    EXPECT_EQ(refused, kBound);
}

}  // namespace

}  // namespace qrx::sim
