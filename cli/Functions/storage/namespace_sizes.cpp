#include "cli/Functions/storage/namespace_sizes.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "api/src/interface/globals.h"
#include "cli/Public/common.h"
#include "cli/Public/frame/controller.h"
#include "cli/Public/frame/list.h"
#include "cli/Public/frame/number.h"
#include "cli/Public/frame/question.h"
#include "cli/Public/frame/report.h"

namespace {

using qrx::complain;
using qrx::print;

constexpr unsigned kGigabyteBits = 30;
constexpr QRX_U64 kGigabyte = QRX_U64{1} << kGigabyteBits;
constexpr QRX_U8 kSkuB = 2;

constexpr char kExamples[] =
    "        \n"
    "        e.g.\n"
    "            Create two namespace which are 20GB and 30GB\n"
    "            20,30\n"
    "\n"
    "            Create two namespace and last one use all remaining size of VD\n"
    "            20,0\n"
    "\n"
    "            Create one namespace and use all of VD\n"
    "            0\n"
    "\n"
    "            or type enter directly without any character.\n";

// A number of GB as it is shown: in 32 bits, of which the largest stands for all above it.
int shown(QRX_U64 gigabytes)
{
    return static_cast<int>(std::min<QRX_U64>(gigabytes, std::numeric_limits<std::int32_t>::max()));
}

// In GB. A sector size that cannot be one leaves no room for a size.
QRX_U64 capacityOf(const NVME_PreCreate_VD& vd)
{
    if (vd.SectorSize == 0 || vd.SectorSize > kGigabyte) {
        return 0;
    }
    const QRX_U64 most = std::numeric_limits<QRX_U64>::max() / vd.SectorSize;
    return std::min<QRX_U64>(vd.LBA, most) * vd.SectorSize >> kGigabyteBits;
}

bool refuseSize(int gigabytes)
{
    return complain("The namespace size is wrong(%d GB), please type again.\n", gigabytes);
}

// The sizes of a list in GB, a zero at the end; nothing after a complaint.
std::optional<std::vector<QRX_U64>> parseSizes(const std::string& list, QRX_U64 capacity)
{
    std::vector<QRX_U64> sizes;
    unsigned zeros = 0;
    QRX_U64 total = 0;
    const bool good = qrx::eachElement(list, [&](const char* element) {
        const std::int32_t size = qrx::strtol32(element, 10);
        if (!isNumber(element)) {
            return refuseSize(size);
        }
        if (size == 0) {
            ++zeros;
        } else {
            sizes.push_back(static_cast<QRX_U64>(size));
            total += sizes.back();
        }
        return true;
    });
    if (!good) {
        return std::nullopt;
    }
    if (zeros > 1) {
        complain("The namespace size is wrong, it contain more than  two '0', please type again.\n");
        return std::nullopt;
    }
    if (total > capacity) {
        refuseSize(shown(total));
        return std::nullopt;
    }
    sizes.insert(sizes.end(), zeros, 0);
    return sizes;
}

// Nothing at the end of input.
std::optional<std::string> ask()
{
    for (;;) {
        print("Please type namespace size list:");
        std::optional<std::string> line = qrx::readLine(kNamespaceListMax);
        if (!line || line->size() <= kNamespaceListMax) {
            return line;
        }
        print("The namespace size list is too long (at most %d characters), please type again.\n",
              static_cast<int>(kNamespaceListMax));
    }
}

// The list to begin with, asked for where none was given; nothing at the end of input.
std::optional<std::string> firstList(const char* list, QRX_U64 capacity)
{
    const NVME_Adapter_Info& record = qrx::recordOf(gCurrentAdapter);
    if (list[0] != '\0' || (record.SKUID == kSkuB && record.MaxNSPerVD == 1)) {
        return list;
    }
    print("%s\nAvailable Size of VD for creating namespace : %d GB\n", kExamples, shown(capacity));
    return ask();
}

}  // namespace

bool assignNamespaceList(PNVME_Create_VD ldParam, const NVME_PreCreate_VD* preCreate, const char* list)
{
    const QRX_U64 capacity = capacityOf(*preCreate);
    for (auto text = firstList(list, capacity); text; text = ask()) {
        if (const auto sizes = parseSizes(*text, capacity)) {
            std::fill(std::begin(ldParam->NSSize), std::end(ldParam->NSSize), QRX_U64{0});
            for (std::size_t i = 0; i < std::min(sizes->size(), std::size(ldParam->NSSize)); ++i) {
                // A size is above 0 only where there is room for it, and then there is a sector size.
                ldParam->NSSize[i] = (*sizes)[i] == 0 ? 0 : ((*sizes)[i] << kGigabyteBits) / preCreate->SectorSize;
            }
            ldParam->NSCount = static_cast<QRX_U16>(sizes->size());
            return false;
        }
    }
    return true;
}
